use strict;
use warnings;
my $text = "";
for my $i (0 .. 9374) {
    $text .= "alpha;" . $i . ";some text;2026-11-23;01:45;host;17;ok\n";
}
for my $i (1 .. 5) {
    $text .= $text;
}
my @records = map { [split /;/] } split /\n/, $text;
my $record = $records[123456];
print scalar(@records), " ", scalar(@$record), " ", $record->[1], "\n";
