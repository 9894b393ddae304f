text=
for ((i = 0; i < 300000; i++)); do
    text+="piece;"
done
echo ${#text}
