# Two reports of 50000 records, of which every 50th has changed, compared.
from operator import ne

RECORDS = 50000
REACH = 500
MOST_DEPTH = 2


class Record:
    __slots__ = ("line", "number", "fields", "left", "used", "partner", "distance")

    def __init__(self, line, number, left):
        self.line = line
        self.number = number
        self.fields = line.split(";")
        self.left = left
        self.used = False
        self.partner = None
        self.distance = None


def read(text, left):
    records = [Record(line, number, left)
               for number, line in enumerate(text.split("\n")[:-1], 1)]
    records.sort(key=lambda record: record.fields)
    return records


def nearest(a, right, places):
    count = len(right)
    start = places.get(a.line, count // 2)
    fields = a.fields
    size = len(fields)
    best = None
    least = 1 << 32
    for away in range(min(count, REACH) + 1):
        for at in (start + away, start - away):
            if at < 0 or at >= count or (away == 0 and best is not None):
                continue
            record = right[at]
            if record.used:
                continue
            distance = sum(map(ne, fields, record.fields)) + abs(size - len(record.fields))
            if distance < least:
                best, least = record, distance
                if least == 0:
                    return best, 0
    return best, least


def join(a, c, distance):
    a.partner, c.partner = c, a
    a.distance = c.distance = distance


def pair(a, right, places, depth):
    if depth >= MOST_DEPTH:
        return
    c, distance = nearest(a, right, places)
    if c is None:
        return
    if distance == 0:
        a.used = c.used = True
        if c.partner is not None:
            pair(c.partner, right, places, depth + 1)
    elif c.partner is not None:
        moved = a
        if distance < c.distance:
            moved = c.partner
            moved.partner = moved.distance = None
        c.used = True
        pair(moved, right, places, depth + 1)
        c.used = False
        if moved is a:
            return
    join(a, c, distance)


def describe(record):
    name = "orig " if record.left else "new  "
    return f"{name}({record.number}):\t{'|'.join(record.fields)}\n"


def report(left, right):
    out = []
    same = 0
    for record in left:
        partner = record.partner
        if partner is not None:
            partner.used = True
        if record.used:
            same += 1
            continue
        text = describe(record)
        if partner is None:
            out.append(text + "MISSING in new")
            continue
        a, b = record.fields, partner.fields
        differ = [f" {at + 1}" for at in range(max(len(a), len(b)))
                  if at >= len(a) or at >= len(b) or a[at] != b[at]]
        out.append(text + describe(partner) + "DIFF (field)" + "".join(differ))
    for record in right:
        if not record.used:
            out.append(describe(record) + "MISSING in original")
    out.append(f"{len(out)} diff of total {len(out) + same} record(s)")
    return out


def main():
    old, new = [], []
    for i in range(RECORDS):
        line = f"package-{100000 + i};amd64;section-{i % 17};{i * 37 % 9001};ok;"
        old.append(f"{line}{i % 11}\n")
        new.append(f"{line}{i % 11 + (20 if i % 50 == 7 else 0)}\n")
    left, right = read("".join(old), True), read("".join(new), False)
    places = {record.line: at for at, record in enumerate(right)}
    for record in left:
        pair(record, right, places, 0)
    out = report(left, right)
    print(out[-2])
    print(f"{out[-1]}, {sum(map(len, out))} bytes")


main()
