use strict;
use warnings;

sub add {
    my ($first, $second) = @_;
    return $first + $second;
}

my $total = 0;
for my $i (0 .. 499999) {
    $total += add($i, 2);
}
print "$total\n";
