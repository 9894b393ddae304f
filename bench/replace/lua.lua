local text = "The quick brown fox is no dog but an old fox 51.\n "
for i = 1, 20 do
    text = text .. text
end
text = text:gsub("fox", "horse")
io.write(#text, " ")
text = text:gsub("horse", "ox")
io.write(#text, " ")
text = text:gsub("no such word", "")
print(#text)
