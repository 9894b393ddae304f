use strict;
use warnings;
my %names;
for my $i (0 .. 299999) {
    $names{"name" . ($i * 7001 % 300000)} = 1;
}
my ($place, $sum) = (0, 0);
for my $name (sort keys %names) {
    $place++;
    $sum += $place * length($name) % 7;
}
print "$place $sum\n";
