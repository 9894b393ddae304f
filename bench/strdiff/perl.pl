# Two reports of 50000 records, of which every 50th has changed, compared.
use strict;
use warnings;

use constant { RECORDS => 50000, REACH => 500, MOST_DEPTH => 2 };
use constant { LINE => 0, NUMBER => 1, FIELDS => 2, LEFT => 3, USED => 4, PARTNER => 5, DISTANCE => 6 };

my (@left, @right, %place);

sub compare {
    my ($one, $other) = ($_[0][FIELDS], $_[1][FIELDS]);
    for my $at (0 .. ($#$one < $#$other ? $#$one : $#$other)) {
        my $order = $one->[$at] cmp $other->[$at];
        return $order if $order;
    }
    return $#$one <=> $#$other;
}

sub read_records {
    my ($text, $left) = @_;
    my $number = 0;
    my @records = map { [$_, ++$number, [split /;/, $_, -1], $left, 0, undef, undef] }
        split /\n/, $text;
    return sort { compare($a, $b) } @records;
}

sub nearest {
    my $fields = $_[0][FIELDS];
    my $start = $place{$_[0][LINE]} // int(@right / 2);
    my $reach = @right < REACH ? @right : REACH;
    my ($best, $least) = (undef, 1 << 32);
    for my $away (0 .. $reach) {
        for my $at ($away ? ($start + $away, $start - $away) : $start) {
            next if $at < 0 || $at > $#right;
            my $record = $right[$at];
            next if $record->[USED];
            my $others = $record->[FIELDS];
            my $distance = abs($#$fields - $#$others);
            for my $field (0 .. ($#$fields < $#$others ? $#$fields : $#$others)) {
                ++$distance if $fields->[$field] ne $others->[$field];
            }
            next if $distance >= $least;
            ($best, $least) = ($record, $distance);
            return ($best, 0) if $least == 0;
        }
    }
    return ($best, $least);
}

sub pair {
    my ($one, $depth) = @_;
    return if $depth >= MOST_DEPTH;
    my ($other, $distance) = nearest($one);
    return unless $other;
    if ($distance == 0) {
        $one->[USED] = $other->[USED] = 1;
        pair($other->[PARTNER], $depth + 1) if $other->[PARTNER];
    } elsif ($other->[PARTNER]) {
        my $moved = $one;
        if ($distance < $other->[DISTANCE]) {
            $moved = $other->[PARTNER];
            $moved->[PARTNER] = $moved->[DISTANCE] = undef;
        }
        $other->[USED] = 1;
        pair($moved, $depth + 1);
        $other->[USED] = 0;
        return if $moved == $one;
    }
    ($one->[PARTNER], $other->[PARTNER]) = ($other, $one);
    $one->[DISTANCE] = $other->[DISTANCE] = $distance;
}

sub describe {
    my ($record) = @_;
    return ($record->[LEFT] ? "orig " : "new  ")
        . "($record->[NUMBER]):\t" . join("|", @{$record->[FIELDS]}) . "\n";
}

sub report {
    my (@out, $same);
    for my $record (@left) {
        my $partner = $record->[PARTNER];
        $partner->[USED] = 1 if $partner;
        if ($record->[USED]) {
            ++$same;
            next;
        }
        my $text = describe($record);
        if ($partner) {
            my ($one, $other) = ($record->[FIELDS], $partner->[FIELDS]);
            $text .= describe($partner) . "DIFF (field)";
            for my $at (0 .. ($#$one > $#$other ? $#$one : $#$other)) {
                $text .= " " . ($at + 1)
                    if $at > $#$one || $at > $#$other || $one->[$at] ne $other->[$at];
            }
        } else {
            $text .= "MISSING in new";
        }
        push @out, $text;
    }
    push @out, describe($_) . "MISSING in original" for grep { !$_->[USED] } @right;
    push @out, scalar(@out) . " diff of total " . (@out + $same) . " record(s)";
    return @out;
}

my ($old, $new) = ("", "");
for my $i (0 .. RECORDS - 1) {
    my $line = "package-" . (100000 + $i) . ";amd64;section-" . $i % 17 . ";" . $i * 37 % 9001 . ";ok;";
    $old .= $line . $i % 11 . "\n";
    $new .= $line . ($i % 11 + ($i % 50 == 7 ? 20 : 0)) . "\n";
}
@left = read_records($old, 1);
@right = read_records($new, 0);
$place{$right[$_][LINE]} = $_ for 0 .. $#right;
pair($_, 0) for @left;
my @out = report();
my $length = 0;
$length += length for @out;
print "$out[-2]\n$out[-1], $length bytes\n";
