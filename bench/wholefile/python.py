with open("large.txt", "rb") as source:
    text = source.read().replace(b"\r", b"")
print(len(text))
