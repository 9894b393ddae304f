local function grow(node, level)
    for i = 0, 999 do
        local child = { value = i, children = {} }
        node.children["n" .. i] = child
        if level < 3 and i % 100 == 0 then
            grow(child, level + 1)
        end
    end
end

local function walk(node)
    local sum = 0
    for _, child in pairs(node.children) do
        sum = sum + child.value + walk(child)
    end
    return sum
end

local root = { value = 0, children = {} }
grow(root, 1)
print(walk(root))
