# As one would write it here: not by the shell itself.
LC_ALL=C grep '^2026.*ERROR' log.txt >hits-bash.txt
hits=$(wc -l <hits-bash.txt)
echo "$hits $(stat -c %s hits-bash.txt)"
