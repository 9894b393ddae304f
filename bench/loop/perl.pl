use strict;
use warnings;
my $total = 0;
for my $i (0 .. 999999) {
    if ($i % 3 == 0) {
        $total += $i * 2;
    }
    $total -= 1;
}
print "$total\n";
