#!/usr/bin/env python3
"""Times the workloads against other languages, in the same run on the same machine.

Each folder here is a workload with one program a language, written as its users
would write it for speed; all must print the same. The fastest of the rounds
counts, and the rounds of all languages take turns, so that a busy machine slows
them alike. bash, mostly far slower, runs once. The programs run in a folder of
build/bench, which has the files that they read.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

import bundles
import directories
import growth
import network

HERE = pathlib.Path(__file__).resolve().parent
WORK = HERE.parent / "build" / "bench"
WORKLOADS = ("empty", "loop", "calls", "string", "expression", "split", "replace", "vector", "map",
             "set", "tree", "filter", "lines", "wholefile", "parserlines", "records", "sort",
             "config", "strdiff", "exec", "pipeexec")
STARTING = ("exec", "pipeexec")     # of programs: here bash is a peer like the others
RUNS_OF_EMPTY = 40
# What runs in the engine alone, whose instructions can be counted.
ENGINE = ("loop", "calls", "string", "expression", "split", "vector", "map", "set", "tree")
PARSED_FUNCTIONS = 5000     # of 20 lines each

# What makes a program of each language wait for a line of input at its end.
WAITS = {
    "lua": 'print("ready") io.stdout:flush() io.read()\n',
    "tcl": "puts ready\nflush stdout\ngets stdin\n",
    "perl": '$| = 1;\nprint "ready\\n";\n<STDIN>;\n',
    "python": 'import sys\nprint("ready", flush=True)\nsys.stdin.readline()\n',
    "bash": "echo ready\nread -r line\n",
}

LOG_LINES = 1000000
LARGE_SIZE = 500 * 1000 * 1000

# One function of the program that is parsed; each is about the same in every language.
PARSED = {
    "plaincast": ("function work{0} first second", "    number i sum", "    string text",
                  "    for ( i = 0 ) ( i < second ) ( i += 1 )",
                  "        if ( i % 2 == 0 & first > {0} )",
                  "            eval ( sum += ( first + i ) * {0} - second )",
                  "        end", "        else", "            eval ( sum -= i )", "        end",
                  '        eval ( text .= "round " . i . ", " )', "    end",
                  "    if ( sum > 100 )", '        echo ( "total of {0}: " . sum )', "    end",
                  "    eval ( first = sum )", "    # what the rounds were",
                  "    echo text", "    return ( sum > 0 )", "end"),
    "python": ("def work{0}(first, second):", "    total = 0", '    text = ""', "    i = 0",
               "    while i < second:", "        if i % 2 == 0 and first > {0}:",
               "            total += (first + i) * {0} - second",
               "        else:", "            total -= i",
               '        text += "round " + str(i) + ", "', "        i += 1",
               "    if total > 100:", '        print("total of {0}: " + str(total))', "",
               "    # keeps the sum for the next", "    first = total",
               "    print(text)", "    return total > 0", "", ""),
    "perl": ("sub work{0} {{", "    my ($first, $second) = @_;", "    my $sum = 0;",
             '    my $text = "";', "    for (my $i = 0; $i < $second; $i += 1) {{",
             "        if ($i % 2 == 0 && $first > {0}) {{",
             "            $sum += ($first + $i) * {0} - $second;",
             "        }}", "        else {{", "            $sum -= $i;", "        }}",
             '        $text .= "round " . $i . ", ";', "    }}", "    if ($sum > 100) {{",
             '        print "total of {0}: " . $sum . "\\n";', "    }}",
             "    $first = $sum;", '    print $text . "\\n";', "    return $sum > 0;", "}}"),
    "lua": ("function work{0}(first, second)", "    local sum = 0", '    local text = ""',
            "    for i = 0, second - 1 do", "        if i % 2 == 0 and first > {0} then",
            "            sum = sum + (first + i) * {0} - second", "        else",
            "            sum = sum - i", "        end",
            '        text = text .. "round " .. i .. ", "', "    end", "",
            "    if sum > 100 then", '        print("total of {0}: " .. sum)', "    end",
            "    -- keeps the sum for the next", "    first = sum",
            "    print(text)", "    return sum > 0", "end"),
    "bash": ("work{0}() {{", "    local first=$1 second=$2", "    local sum=0", '    local text=""',
             "    for ((i = 0; i < second; i++)); do",
             "        if ((i % 2 == 0 && first > {0})); then",
             "            ((sum += (first + i) * {0} - second))", "        else",
             "            ((sum -= i))", "        fi", '        text+="round $i, "', "    done",
             "    if ((sum > 100)); then", '        echo "total of {0}: $sum"', "    fi",
             "    # keeps the sum for the next", "    first=$sum", '    echo "$text"',
             "    ((sum > 0))", "}}"),
}


def commands(program):
    return {
        "plaincast": ([program, "--script"], "qcs"),
        "lua": (["lua5.4"], "lua"),
        "tcl": (["tclsh8.6"], "tcl"),
        "perl": (["/usr/bin/perl"], "pl"),
        "python": (["/usr/bin/python3"], "py"),
        "bash": (["bash"], "sh"),
    }


def parsers(program):
    return {
        "plaincast": [program, "--parse", "--script"],
        "lua": ["luac5.4", "-p"],
        "perl": ["/usr/bin/perl", "-c"],
        "python": ["/usr/bin/python3", "-m", "py_compile"],
        "bash": ["bash", "-n"],
    }


def write_log(path):
    """Writes a log of 75 MB; one line in 70 is an error of the later year."""
    levels = ("INFO ",) * 18 + ("DEBUG",) * 12 + ("WARN ",) * 4 + ("ERROR",)
    with open(path, "w", encoding="ascii") as file:
        for i in range(LOG_LINES):
            file.write(f"{2025 + i * 2 // LOG_LINES}-{1 + i % 12:02}-{1 + i % 28:02} "
                       f"{i % 24:02}:{i % 60:02}:{i % 59:02} {levels[i * 7919 % len(levels)]} "
                       f"[worker-{i % 16:02}] request {i:07} took {i * 31 % 1000:03} ms, "
                       f"state {i % 8}\n")


def write_large(path):
    line = b"0123456789 " * 7 + b"ends\r\n"
    with open(path, "wb") as file:
        for _ in range(LARGE_SIZE // len(line) // 1000):
            file.write(line * 1000)


def write_config(path):
    """Writes a configuration of 100,000 nodes in 1,000 groups."""
    with open(path, "w", encoding="ascii") as file:
        file.write("root\n{\n")
        for group in range(1000):
            file.write(f"\tgroup{group}\n\t{{\n")
            for node in range(100):
                file.write(f"\t\tnode{node}\n\t\t{{\n\t\t\ttype=int\n"
                           f"\t\t\tvalue={group * node}\n\t\t}}\n")
            file.write("\t}\n")
        file.write("}\n")


# The files that a workload reads, and what writes them.
READ_FILES = {
    "filter": {"log.txt": write_log},
    "lines": {"log.txt": write_log},
    "wholefile": {"large.txt": write_large},
    "config": {"config.conf": write_config},
}


def prepare(workload):
    """Gives the folder that a workload runs in, a copy of its own with the files that it reads."""
    folder = WORK / workload
    shutil.copytree(HERE / workload, folder, dirs_exist_ok=True)
    for name, write in READ_FILES.get(workload, {}).items():
        if not folder.joinpath(name).exists():
            write(folder / name)
    return folder


def measure(command, folder):
    """Runs a command; gives wall seconds, CPU seconds, greatest size in KiB, what it printed."""
    began = time.perf_counter()
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    output = process.stdout.read().decode(errors="replace")
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - began
    process.returncode = os.waitstatus_to_exitcode(status)
    process.stdout.close()
    if process.returncode != 0:
        sys.exit(f"{' '.join(command)} ended with {process.returncode}:\n{output[-2000:]}")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss, output.strip()


def best(runs, rounds, folder, compare=True):
    """Gives the least wall and CPU seconds and size of each language, and their one answer."""
    times = {}
    answers = {}
    for turn in range(rounds):
        for language, command in runs.items():
            if language == "bash" and turn > 0 and times["bash"][0] > 1:
                continue
            *figures, answer = measure(command, folder)
            times[language] = tuple(map(min, figures, times.get(language, figures)))
            answers[language] = answer
    if compare and len(set(answers.values())) != 1:
        sys.exit(f"the answers differ: {answers}")
    return times, answers["plaincast"]


def resident(command):
    """Runs a program that prints `ready` and waits; gives its greatest resident size in KiB."""
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
        for line in process.stdout:
            if line.strip() == b"ready":
                break
        status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
        process.communicate(b"\n")
    return int(next(line for line in status.splitlines() if line.startswith("VmHWM")).split()[1])


def waiting(language, source, suffix, name):
    """Writes a copy of a program that waits at its end, for the memory lines."""
    text = source.read_text()
    if language == "plaincast":
        text = text.rstrip().removesuffix("end") + '    echo "ready"\n    waitkey\nend\n'
    else:
        text += WAITS[language]
    copy = WORK / f"{name}.{suffix}"
    copy.write_text(text)
    return str(copy)


def row(name, cells):
    print(f"{name:<22}" + "".join(f"{cell:>11}" for cell in cells), flush=True)


def print_times(name, times, languages, index=0, rivals=("tcl", "perl", "python")):
    def seconds(language):
        return times[language][index] if language in times else None

    ours = seconds("plaincast")
    peers = [seconds(language) for language in rivals if language in times]
    cells = [f"{seconds(language):.4f}" if language in times else "-" for language in languages]
    lua = f"{ours / seconds('lua'):.2f}" if "lua" in times else "-"
    row(name, cells + [f"{ours / min(peers):.2f}", lua])


def parse_runs(program, functions=PARSED_FUNCTIONS):
    runs = {}
    for language, command in parsers(program).items():
        path = WORK / f"parsed.{commands(program)[language][1]}"
        with open(path, "w", encoding="utf-8") as file:
            for number in range(functions):
                file.write("\n".join(PARSED[language]).format(number) + "\n")
            if language == "plaincast":
                file.write("function main\nend\n")
        runs[language] = command + [str(path)]
    return runs


def print_directories(languages, source, rounds):
    least = directories.times(languages, source, measure, WORK / "directories", rounds)
    print()
    row("seconds", ["plaincast", "system", "/system"])
    for workload, found in least.items():
        ours, theirs = found["plaincast"], found["bash"]
        row(workload, [f"{ours:.4f}", f"{theirs:.4f}", f"{ours / theirs:.2f}"])


def peak(command, folder):
    """Gives the greatest size of a run in KiB. A child of this process would begin with ours."""
    told = WORK / "peak.txt"
    measure(["/usr/bin/time", "-f", "%M", "-o", str(told), *command], folder)
    return int(told.read_text())


def print_peaks(peaks, languages):
    """Prints the greatest size of each workload; the ratio is to the leanest other one."""
    print()
    row("greatest KiB", [*languages, "/leanest"])
    for workload, found in peaks.items():
        others = [size for language, size in found.items() if language != "plaincast"]
        row(workload, [*(found.get(language, "-") for language in languages),
                       f"{found['plaincast'] / min(others):.2f}" if others else "-"])


def print_instructions(command, folder_of):
    """Counts the instructions of the engine: they do not depend on what else the machine does."""
    print()
    row("million instructions", ["plaincast"])
    for workload in ENGINE:
        counted = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command,
                   "plaincast.qcs"]
        output = measure(counted, folder_of(workload))[3]
        row(workload, [f"{int(re.search(r'Collected : ([0-9]+)', output)[1]) / 1e6:.1f}"])


def main():
    parser = argparse.ArgumentParser(description="Times the workloads against other languages.")
    parser.add_argument("--program", required=True)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("names", nargs="*",
                        help="workloads, parse, growth, instructions or memory; all without a name")
    parser.add_argument("--megabytes", type=int, default=300, help="of files for bundles")
    arguments = parser.parse_args()
    arguments.program = os.path.abspath(arguments.program)
    languages = commands(arguments.program)
    WORK.mkdir(parents=True, exist_ok=True)
    os.environ["PATH"] = f"{pathlib.Path(arguments.program).parent}:{os.environ['PATH']}"

    def wanted(name):
        return not arguments.names or name in arguments.names

    def source(workload, language):
        return HERE / workload / f"{language}.{languages[language][1]}"

    answers = []
    peaks = {}
    row("seconds", [*languages, "/fastest", "/lua"])
    for workload in filter(wanted, WORKLOADS):
        folder = prepare(workload)
        runs = {language: start + [str(folder / source(workload, language).name)]
                for language, (start, _) in languages.items()
                if source(workload, language).exists()}
        times, answer = best(runs, RUNS_OF_EMPTY if workload == "empty" else arguments.rounds,
                             folder)
        print_times(workload, times, languages,
                    rivals=("bash", "perl", "python") if workload in STARTING
                    else ("tcl", "perl", "python"))
        if workload == "empty":
            print_times("empty, CPU", times, languages, 1)
        else:
            answers.append(f"{workload} {answer}")
            peaks[workload] = {language: peak(command, folder)
                               for language, command in runs.items() if times[language][0] < 5}
        if workload == "wholefile":
            row("wholefile, memory", [f"{times[language][2] * 1024 / LARGE_SIZE:.2f}"
                                      for language in times] + ["x its size"])
    if wanted("parse"):
        times, _ = best(parse_runs(arguments.program), arguments.rounds, WORK, compare=False)
        print_times("parse", times, languages)
    print("/fastest: against the fastest of tcl, perl and python; of bash, perl and python for "
          "programs that start others")
    print("answers, the same from all:", ", ".join(answers))
    if peaks:
        print_peaks(peaks, languages)
    if any(wanted(name) for name in directories.WORKLOADS):
        print_directories(languages, source, arguments.rounds)
    bundles.run(os.path.abspath(arguments.program), WORK, wanted, min(arguments.rounds, 2),
                arguments.megabytes)
    network.run(arguments.program, WORK, wanted, min(arguments.rounds, 3))
    ours = languages["plaincast"][0]
    if wanted("growth"):
        grown = growth.Growth(ours, HERE, WORK, arguments.rounds, row, measure)
        grown.print_workloads(lambda factor: parse_runs(
            arguments.program, PARSED_FUNCTIONS * factor)["plaincast"])
        grown.print_strdiff()
    if wanted("instructions"):
        print_instructions(ours, prepare)
    if wanted("memory"):
        print()
        row("resident KiB", languages)
        for name, workload in (("idle", "empty"), ("after the loop", "loop")):
            row(name, [resident(start + [waiting(language, source(workload, language), suffix,
                                                 workload)])
                       for language, (start, suffix) in languages.items()])


if __name__ == "__main__":
    main()
