local count, size = {}, 0
for i = 0, 499999 do
    local word = "word" .. i * 7 % 50000
    local n = count[word]
    if not n then
        n, size = 0, size + 1
    end
    count[word] = n + 1
end
print(size .. " " .. count.word123)
