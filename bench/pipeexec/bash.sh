text=
for ((i = 0; i < 300; i++)); do
    text+=$(/bin/echo a line)$'\n'
done
echo ${#text}
