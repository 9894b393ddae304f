use strict;
use warnings;
my $text = "some text;";
for my $i (1 .. 20) {
    $text .= $text;
}
my @items = split /;/, $text;
print length($text), " ", scalar(@items), " ", $items[777777], "\n";
