use strict;
use warnings;
my $text = "2026-11-23 01:45:10 host01 daemon[1234]: INFO  request served, 200 bytes out\n";
$text .= "2026-11-23 01:45:11 host02 daemon[1235]: ERROR no space left on the device\n";
for my $i (1 .. 19) {
    $text .= $text;
}
my @errors = grep { /: ERROR/ } split /\n/, $text;
print length($text), " ", scalar(@errors), " ", $errors[300000], "\n";
