def main():
    text = "2026-11-23 01:45:10 host01 daemon[1234]: INFO  request served, 200 bytes out\n"
    text += "2026-11-23 01:45:11 host02 daemon[1235]: ERROR no space left on the device\n"
    for i in range(19):
        text += text
    errors = [line for line in text.splitlines() if ": ERROR" in line]
    print(len(text), len(errors), errors[300000])


main()
