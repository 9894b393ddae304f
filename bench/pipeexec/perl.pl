my $text = "";
for (1 .. 300) {
    $text .= `/bin/echo a line`;
}
print length($text), "\n";
