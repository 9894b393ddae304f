use strict;
use warnings;
my @v;
for my $i (0 .. 999999) {
    push @v, $i;
}
my $sum = 0;
for my $x (@v) {
    $sum += $x;
}
print "$sum\n";
