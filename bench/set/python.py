def main():
    names = set()
    for i in range(300000):
        names.add("name" + str(i * 7001 % 300000))
    place = 0
    total = 0
    for name in sorted(names):
        place += 1
        total += place * len(name) % 7
    print(place, total)


main()
