local pieces = {}
for i = 1, 300000 do
    pieces[i] = "piece;"
end
print(#table.concat(pieces))
