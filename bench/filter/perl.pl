use strict;
use warnings;
open my $in, '<', "log.txt" or die;
open my $out, '>', "hits-perl.txt" or die;
my $hits = 0;
while (my $line = <$in>) {
    if ($line =~ /^2026.*ERROR/) {
        print $out $line;
        ++$hits;
    }
}
close $in;
close $out or die;
print $hits, " ", -s "hits-perl.txt", "\n";
