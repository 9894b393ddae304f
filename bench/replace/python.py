def main():
    text = "The quick brown fox is no dog but an old fox 51.\n "
    for i in range(20):
        text += text
    text = text.replace("fox", "horse")
    print(len(text), end=" ")
    text = text.replace("horse", "ox")
    print(len(text), end=" ")
    text = text.replace("no such word", "")
    print(len(text))


main()
