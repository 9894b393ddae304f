local out = io.open("hits-lua.txt", "w")
local hits = 0
for line in io.lines("log.txt") do
    if line:find("^2026.*ERROR") then
        out:write(line, "\n")
        hits = hits + 1
    end
end
local size = out:seek("end")
out:close()
print(hits .. " " .. size)
