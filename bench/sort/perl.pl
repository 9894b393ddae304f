use strict;
use warnings;
my $x = 1;
my $digits = "";
for my $i (1 .. 185000) {
    $x = ($x * 7141 + 54773) % 259200;
    $digits .= $x;
}
my $text = substr($digits, 0, 1000003);
for my $i (1 .. 4) {
    $text .= $text;
}
my @lines = sort(unpack("(a16)*", $text));
print scalar(@lines), " ", $lines[0], " ", $lines[500000], " ", $lines[1000002], "\n";
