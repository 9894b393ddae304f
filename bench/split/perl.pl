use strict;
use warnings;
my $text = "some text;";
for my $i (1 .. 20) {
    $text .= $text;
}
my @items = split /;/, $text;
my $total = 0;
for my $item (@items) {
    $total += length($item);
}
print $total, " ", length($text), " ", scalar(@items), " ", $items[777777], "\n";
