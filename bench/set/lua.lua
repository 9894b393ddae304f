local names = {}
for i = 0, 299999 do
    names["name" .. i * 7001 % 300000] = true
end
local sorted = {}
for name in pairs(names) do
    sorted[#sorted + 1] = name
end
table.sort(sorted)
local sum = 0
for place, name in ipairs(sorted) do
    sum = sum + place * #name % 7
end
print(#sorted .. " " .. sum)
