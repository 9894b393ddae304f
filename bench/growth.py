"""How the time of a workload grows with its work: 1, 2, 4 and 8 times as much.

The exponent is the power of the work with which the time grows: 1 is linear, a
little more where keys are kept in order.
"""

import math
import re

FACTORS = (1, 2, 4, 8)

# The counts in a workload's program that are its work.
COUNTS = {
    "loop": r"\b1000000\b",
    "calls": r"\b500000\b",
    "map": r"\b50*0000\b",
    "vector": r"\b1000000\b",
    "set": r"\b300000\b",
}
# `split` doubles its text so often.
DOUBLINGS = re.compile(r"\bi < 20\b")
RECORDS = (10000, 20000, 40000, 80000)


def exponent(seconds):
    return math.log(seconds[-1] / seconds[0]) / math.log(FACTORS[-1])


def scaled(workload, text, factor):
    """Gives the program of a workload with so many times the work."""
    if workload == "split":
        return DOUBLINGS.sub(f"i < {20 + int(math.log2(factor))}", text)
    return re.sub(COUNTS[workload], lambda count: str(int(count.group()) * factor), text)


class Growth:
    """Measures and prints; `row` prints a line of a table, `measure` runs a command."""

    def __init__(self, command, home, work, rounds, row, measure):
        self.command = command
        self.home = home
        self.work = work
        self.rounds = rounds
        self.row = row
        self.measure = measure

    def least(self, command):
        return min(self.measure(command, self.work)[0] for _ in range(self.rounds))

    def program(self, workload):
        return (self.home / workload / "plaincast.qcs").read_text()

    def timed(self, text):
        script = self.work / "growth.qcs"
        script.write_text(text)
        return self.least(self.command + [str(script)])

    def print_workloads(self, parse):
        """Prints each workload's times; `parse` gives the command that parses so many times."""
        print()
        self.row("seconds of work x", [*FACTORS, "exponent"])
        for workload in (*COUNTS, "split"):
            text = self.program(workload)
            self.print_row(workload, [self.timed(scaled(workload, text, factor))
                                      for factor in FACTORS])
        self.print_row("parse", [self.least(parse(factor)) for factor in FACTORS])

    def print_row(self, name, seconds):
        self.row(name, [*(f"{second:.4f}" for second in seconds), f"{exponent(seconds):.2f}"])

    def print_strdiff(self):
        """Prints the times of more and more records, and those of diff.

        diff answers less: which lines differ, in their order.
        """
        print()
        self.row("records", [*RECORDS, "exponent"])
        text = self.program("strdiff")
        ours, theirs = [], []
        for count in RECORDS:
            for name, changed in (("old", 0), ("new", 20)):
                with open(self.work / f"{name}.txt", "w", encoding="utf-8") as file:
                    for i in range(count):
                        file.write(f"package-{100000 + i};amd64;section-{i % 17};{i * 37 % 9001};"
                                   f"ok;{i % 11 + (changed if i % 50 == 7 else 0)}\n")
            ours.append(self.timed(text.replace("50000", str(count))))
            # The shell makes a success of diff's answer that there are differences.
            theirs.append(self.least(["sh", "-c", "diff old.txt new.txt >/dev/null || "
                                                  "[ $? -eq 1 ]"]))
        self.print_row("strdiff", ours)
        self.print_row("diff", theirs)
