import os


def main():
    with open("log.txt", "rb") as source:
        lines = source.read().splitlines()
    with open("copy-python.txt", "wb") as out:
        for line in lines:
            out.write(line + b"\n")
    print(len(lines), os.path.getsize("copy-python.txt"), lines[777777].decode())


main()
