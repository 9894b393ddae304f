local parts = {}
for i = 0, 9374 do
    parts[#parts + 1] = "alpha;" .. i .. ";some text;2026-11-23;01:45;host;17;ok\n"
end
local text = table.concat(parts)
for i = 1, 5 do
    text = text .. text
end
local records = {}
local n = 0
for line in text:gmatch("([^\n]*)\n") do
    local record = {}
    local k = 0
    for field in line:gmatch("[^;]*") do
        k = k + 1
        record[k] = field
    end
    n = n + 1
    records[n] = record
end
local record = records[123457]
print(n .. " " .. #record .. " " .. record[2])
