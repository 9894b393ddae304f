local x = 1
local parts = {}
for i = 1, 185000 do
    x = (x * 7141 + 54773) % 259200
    parts[i] = x
end
local text = table.concat(parts):sub(1, 1000003)
for i = 1, 4 do
    text = text .. text
end
local lines = {}
local n = 0
for at = 1, #text, 16 do
    n = n + 1
    lines[n] = text:sub(at, at + 15)
end
table.sort(lines)
print(n .. " " .. lines[1] .. " " .. lines[500001] .. " " .. lines[1000003])
