def main():
    pieces = []
    for _ in range(300000):
        pieces.append("piece;")
    print(len("".join(pieces)))


main()
