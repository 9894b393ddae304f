import os


class Node:
    __slots__ = ("name", "type", "values", "children", "by_name")

    def __init__(self, name):
        self.name = name
        self.type = None
        self.values = []
        self.children = []
        self.by_name = {}


def parse(lines):
    above = []
    node = root = None
    for line in lines:
        line = line.strip()
        if not line or line[0] == "#" or line == "{":
            continue
        if line == "}":
            if not above:
                break
            node = above.pop()
        elif line.startswith("type="):
            node.type = line[5:]
        elif line.startswith("value="):
            node.values.append(line[6:])
        else:
            child = Node(line)
            if node is None:
                root = child
            else:
                node.children.append(child)
                node.by_name.setdefault(line, child)
                above.append(node)
            node = child
    return root


def find(node, path):
    for name in path.split(".")[1:]:
        node = node.by_name[name]
    return node


def put(out, node, tabs):
    out.append(f"{tabs}{node.name}\n{tabs}{{\n")
    if node.type is not None:
        out.append(f"{tabs}\ttype={node.type}\n")
        for value in node.values:
            out.append(f"{tabs}\tvalue={value}\n")
    for child in node.children:
        put(out, child, tabs + "\t")
    out.append(f"{tabs}}}\n")


with open("config.conf") as file:
    tree = parse(file)
for i in range(1000):
    find(tree, f"root.group{i}.node{i % 100}").values = [str(i * 7)]
text = []
put(text, tree, "")
with open("config-python.conf.tmp", "w") as file:
    file.write("".join(text))
    file.flush()
    os.fsync(file.fileno())
os.rename("config-python.conf.tmp", "config-python.conf")
print(os.path.getsize("config-python.conf"))
