import os


def main():
    hits = 0
    with open("log.txt", "rb") as source, open("hits-python.txt", "wb") as out:
        for line in source:
            if line.startswith(b"2026") and b"ERROR" in line:
                out.write(line)
                hits += 1
    print(hits, os.path.getsize("hits-python.txt"))


main()
