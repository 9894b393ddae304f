def grow(node, level):
    for i in range(1000):
        child = [i, {}]
        node[1]["n" + str(i)] = child
        if level < 3 and i % 100 == 0:
            grow(child, level + 1)


def walk(node):
    total = 0
    for child in node[1].values():
        total += child[0] + walk(child)
    return total


root = [0, {}]
grow(root, 1)
print(walk(root))
