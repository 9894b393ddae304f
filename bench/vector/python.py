def main():
    v = []
    for i in range(1000000):
        v.append(i)
    total = 0
    for x in v:
        total += x
    print(total)


main()
