total=0
for ((i = 0; i < 1000000; i++)); do
    if ((i % 3 == 0)); then
        ((total += i * 2))
    fi
    ((total -= 1))
done
echo $total
