def main():
    x = 1
    parts = []
    for i in range(185000):
        x = (x * 7141 + 54773) % 259200
        parts.append(str(x))
    text = "".join(parts)[:1000003]
    for i in range(4):
        text += text
    lines = [text[at:at + 16] for at in range(0, len(text), 16)]
    lines.sort()
    print(len(lines), lines[0], lines[500000], lines[1000002])


main()
