def main():
    total = 0
    for i in range(1000000):
        if i % 3 == 0:
            total += i * 2
        total -= 1
    print(total)


main()
