# The system's own sort on the same lines.
export LC_ALL=C
digits=$(awk 'BEGIN {
    x = 1
    for (i = 0; i < 185000; ++i) {
        x = (x * 7141 + 54773) % 259200
        printf "%d", x
    }
}' | head -c 1000003)
for i in 1 2 3 4; do
    digits=$digits$digits
done
echo "$digits" | fold -b -w 16 | sort | awk '
    NR == 1 || NR == 500001 || NR == 1000003 { found = found " " $0 }
    END { print NR found }'
