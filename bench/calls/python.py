def add(first, second):
    return first + second


def main():
    total = 0
    for i in range(500000):
        total += add(i, 2)
    print(total)


main()
