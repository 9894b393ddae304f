# As one would write it here: not by the shell itself.
tr -d '\r' <large.txt >copy-bash.txt
stat -c %s copy-bash.txt
