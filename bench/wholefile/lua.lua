local file = io.open("large.txt", "rb")
local text = file:read("a"):gsub("\r", "")
file:close()
print(#text)
