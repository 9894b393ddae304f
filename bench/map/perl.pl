use strict;
use warnings;
my %count;
for my $i (0 .. 499999) {
    my $word = "word" . ($i * 7 % 50000);
    $count{$word}++;
}
print scalar(keys %count), " $count{word123}\n";
