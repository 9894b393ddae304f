local a, b, total = 2, 3, 0
for i = 0, 199999 do
    total = total + (((i + 1) * a - (i - b)) * 4 + ((i + 5) * (a - 7) - ((i - 8) * b + (10 + i) * 0.5))) * ((a - 12) * (13 + (b - (15 - (a + 17)))))
end
print(string.format("%.0f", total))
