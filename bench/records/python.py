def main():
    text = ""
    for i in range(9375):
        text += "alpha;" + str(i) + ";some text;2026-11-23;01:45;host;17;ok\n"
    for i in range(5):
        text += text
    records = [line.split(";") for line in text.splitlines()]
    record = records[123456]
    print(len(records), len(record), record[1])


main()
