local text = "2026-11-23 01:45:10 host01 daemon[1234]: INFO  request served, 200 bytes out\n"
text = text .. "2026-11-23 01:45:11 host02 daemon[1235]: ERROR no space left on the device\n"
for i = 1, 19 do
    text = text .. text
end
local errors = {}
local n = 0
for line in text:gmatch("([^\n]*)\n") do
    if line:find(": ERROR", 1, true) then
        n = n + 1
        errors[n] = line
    end
end
print(#text .. " " .. n .. " " .. errors[300001])
