local text = "some text;"
for i = 1, 20 do
    text = text .. text
end
local items = {}
local n = 0
for item in text:gmatch("([^;]*);") do
    n = n + 1
    items[n] = item
end
local total = 0
for _, item in ipairs(items) do
    total = total + #item
end
print(total .. " " .. #text .. " " .. n .. " " .. items[777778])
