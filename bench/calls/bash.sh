add() {
    sum=$(($1 + $2))
}
total=0
for ((i = 0; i < 500000; i++)); do
    add $i 2
    ((total += sum))
done
echo $total
