use strict;
use warnings;
my $text = "";
for my $i (1 .. 300000) {
    $text .= "piece;";
}
print length($text), "\n";
