def main():
    text = "some text;"
    for i in range(20):
        text += text
    items = text.split(";")
    if items[-1] == "":
        items.pop()
    total = 0
    for item in items:
        total += len(item)
    print(total, len(text), len(items), items[777777])


main()
