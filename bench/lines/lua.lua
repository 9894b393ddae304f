local lines = {}
for line in io.lines("log.txt") do
    lines[#lines + 1] = line
end
local out = io.open("copy-lua.txt", "w")
for _, line in ipairs(lines) do
    out:write(line, "\n")
end
local size = out:seek("end")
out:close()
print(#lines .. " " .. size .. " " .. lines[777778])
