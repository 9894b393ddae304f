my $sum = 0;
for (1 .. 300) {
    $sum += 1 if system("/bin/true") == 0;
}
print "$sum\n";
