use strict;
use warnings;
my $text = "The quick brown fox is no dog but an old fox 51.\n ";
for my $i (1 .. 20) {
    $text .= $text;
}
$text =~ s/fox/horse/g;
print length($text), " ";
$text =~ s/horse/ox/g;
print length($text), " ";
$text =~ s/no such word//g;
print length($text), "\n";
