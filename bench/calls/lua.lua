local function add(first, second)
    return first + second
end

local total = 0
for i = 0, 499999 do
    total = total + add(i, 2)
end
print(total)
