use strict;
use warnings;
open my $in, '<:raw', "large.txt" or die;
local $/;
my $text = <$in>;
$text =~ tr/\r//d;
print length($text), "\n";
