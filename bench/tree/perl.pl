use strict;
use warnings;

sub grow {
    my ($node, $level) = @_;
    for my $i (0 .. 999) {
        my $child = [$i, {}];
        $node->[1]{"n$i"} = $child;
        grow($child, $level + 1) if $level < 3 && $i % 100 == 0;
    }
}

sub walk {
    my ($node) = @_;
    my $sum = 0;
    for my $child (values %{$node->[1]}) {
        $sum += $child->[0] + walk($child);
    }
    return $sum;
}

my $root = [0, {}];
grow($root, 1);
print walk($root), "\n";
