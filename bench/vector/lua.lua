local v = {}
for i = 0, 999999 do
    v[#v + 1] = i
end
local sum = 0
for _, x in ipairs(v) do
    sum = sum + x
end
print(sum)
