local total = 0
for i = 0, 999999 do
    if i % 3 == 0 then
        total = total + i * 2
    end
    total = total - 1
end
print(total)
