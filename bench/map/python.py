def main():
    count = {}
    for i in range(500000):
        word = "word" + str(i * 7 % 50000)
        count[word] = count.get(word, 0) + 1
    print(len(count), count["word123"])


main()
