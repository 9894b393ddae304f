sum=0
for ((i = 0; i < 300; i++)); do
    /bin/true && ((sum += 1))
done
echo $sum
