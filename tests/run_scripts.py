#!/usr/bin/env python3
"""Runs the script tests, the examples and the examples of the documents.

A test is a script with its expected output:

  tests/scripts/GROUP/NAME.qcs     the script; folders inside GROUP hold what it
                                   includes or reads, and are no tests
  tests/scripts/GROUP/NAME.out     what it prints, exactly; always there
                 .args             options, one a line, behind `--script NAME.qcs`; when
                                   the first line is {raw}, the others are all arguments
                 .in               standard input (else it is empty)
                 .err              standard error (else it must stay empty)
                 .code             the exit code (else 0): one number, or a line for
                                   each system, as `linux 136` and `windows 148`
  examples/NAME.qcs                tested with tests/scripts/examples/NAME.out and so on

In .args {script} stands for the script's absolute path and {dir} for its folder.

Comments at the head of a script can say:

  # systems: linux - REASON        the test belongs to one system
  # threads: REASON                the test also runs under the thread sanitizer
  # seconds: 60                    a longer time limit than the usual one

In README.md and docs/*.md a fenced block `plaincast` is a whole script, and
`plaincast main` the body of the function main; `--option` words on the fence are
options of the run. The fenced block `output` behind it is what the run prints,
`output 3` with an exit code of 3, and a block `input` between the two is its
standard input. `plaincast parse` is a script that must pass --parse, and
`plaincast file NAME` is kept as NAME for the page's later examples.

Each test runs in a folder of its own that holds a copy of its group, with a
registry file of its own. What two runs or two systems must not share is masked
before the comparison: the log's times, source file and line of a location
record, the number of a thread, the program's path ({program}), and the path of the
test's folder, with
`/` for all separators of the names behind it ({dir}/...).
"""

import argparse
import concurrent.futures
import dataclasses
import difflib
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SCRIPTS = ROOT / "tests" / "scripts"
COMPANIONS = ("out", "args", "in", "err", "code")
SECONDS = 60
HEAD = re.compile(rb"#\s*(systems|threads|seconds):\s*(.*?)\s*$")


@dataclasses.dataclass
class Test:
    name: str
    script: str                 # file name in the folder of the run
    material: pathlib.Path = None   # folder to copy, or none
    files: dict = dataclasses.field(default_factory=dict)   # further files: name to bytes
    expected: dict = dataclasses.field(default_factory=dict)  # companion to bytes
    home: pathlib.Path = None   # where the companions live, for --update
    options: list = dataclasses.field(default_factory=list)
    head: dict = dataclasses.field(default_factory=dict)
    fault: str = None           # why this test cannot be right


def read_head(script):
    head = {}
    for line in script.split(b"\n"):
        if not line.startswith(b"#"):
            break
        if match := HEAD.match(line):
            head[match[1].decode()] = match[2].decode()
    return head


def read_companions(home, name):
    paths = {kind: home / f"{name}.{kind}" for kind in COMPANIONS}
    return {kind: path.read_bytes() for kind, path in paths.items() if path.is_file()}


def script_tests():
    found = []
    groups = [group for group in sorted(SCRIPTS.glob("*")) if group.is_dir()]
    if ROOT.joinpath("examples").is_dir() and SCRIPTS / "examples" not in groups:
        groups.append(SCRIPTS / "examples")
    for home in groups:
        group = ROOT / "examples" if home.name == "examples" else home
        scripts = sorted(group.glob("*.qcs"))
        for script in scripts:
            test = Test(f"{home.name}/{script.stem}", script.name, material=group, home=home,
                        expected=read_companions(home, script.stem),
                        head=read_head(script.read_bytes()))
            if "out" not in test.expected:
                test.fault = f"no expected output: {home.relative_to(ROOT)}/{script.stem}.out"
            found.append(test)
        names = {script.stem for script in scripts}
        for path in sorted(home.glob("*.*")) if home.is_dir() else []:
            if path.suffix[1:] in COMPANIONS and path.stem not in names:
                found.append(Test(f"{home.name}/{path.name}", "", fault="belongs to no script"))
    return found


def fenced_blocks(text):
    """Gives (line number, words of the fence, content) of each fenced block."""
    block = None
    for number, line in enumerate(text.split("\n"), 1):
        if line.startswith("```"):
            if block:
                yield block[0], block[1], "".join(block[2])
                block = None
            else:
                block = (number, line[3:].split(), [])
        elif block:
            block[2].append(line + "\n")


def document_tests():
    found = []
    for page in [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]:
        if page.is_file():
            found += page_tests(page.relative_to(ROOT).as_posix(), page.read_text("utf-8"))
    return found


def page_tests(page, text):
    found = []
    files = {}
    open_test = None
    for number, words, content in fenced_blocks(text):
        kind = words[0] if words else ""
        name = f"{page}:{number}"
        if kind == "plaincast":
            options = [word for word in words if word.startswith("--")]
            words = [word for word in words if word not in options]
            if words[1:2] == ["file"] and len(words) == 3:
                files[words[2]] = content.encode()
                continue
            if words[1:] == ["main"]:
                content = f"function main\n{content}end\n"
            open_test = Test(name, "example.qcs", options=options,
                             files={**files, "example.qcs": content.encode()})
            found.append(open_test)
            if words[1:] == ["parse"]:
                open_test.options.append("--parse")
                open_test.expected["out"] = b""
                open_test = None
            elif words[1:] not in ([], ["main"]):
                open_test.fault = "unknown words on the fence: " + " ".join(words[1:])
            else:
                open_test.fault = "no output block behind this example"
        elif kind == "input" and open_test:
            open_test.expected["in"] = content.encode()
        elif kind == "output":
            if not open_test:
                found.append(Test(name, "", fault="an output block without its example"))
                continue
            open_test.expected["out"] = content.encode()
            open_test.expected["code"] = (words[1] if len(words) > 1 else "0").encode()
            if open_test.fault and open_test.fault.startswith("no output"):
                open_test.fault = None
            open_test = None
        elif kind != "input":
            open_test = None
    return found


def mask_times(text):
    """The times of the log; documents show real ones, and so do their expectations."""
    return re.sub(rb"\(\d\d:\d\d:\d\d\): ", b"(hh:mm:ss): ", text)


def mask_path(text, path, token):
    """Puts `token` for a path, in any of its spellings, and `/` for the separators behind it."""
    parts = [re.escape(part) for part in os.fsencode(path).split(b"/") if part]
    spelling = (rb"(?:\b[A-Za-z]:)?[/\\]+" + rb"[/\\]+".join(parts)
                + rb"((?:[/\\]+[^\s/\\\"']*)*)(?!\.?[\w-])")
    return re.sub(spelling, lambda m: token + re.sub(rb"[/\\]+", b"/", m[1]), text)


def mask(text, folder, program):
    r"""Replaces what two right runs may print differently.

    >>> mask(rb'in "Z:\t\u\sub\x.qcs", /t/u-2 and \t\u.', "/t/u", "/b/p")
    b'in "{dir}/sub/x.qcs", /t/u-2 and {dir}.'
    >>> mask(rb'ERROR    (14:05:09):    in file "c/library/source/a/B.cpp", line 7', "/t", "/b/p")
    b'ERROR    (hh:mm:ss):    in file "{source}", line {line}'
    >>> mask(rb'z:\b\p --script "a", line 7 (14:05:09)', "/t", "/b/p")
    b'{program} --script "a", line 7 (14:05:09)'
    """
    text = mask_path(text, folder, b"{dir}")
    text = mask_path(text, program, b"{program}")
    text = mask_times(text)
    text = re.sub(rb"(?:c/library/source|programs)/[\w/.-]+\.(?:cpp|h)\b", b"{source}", text)
    text = re.sub(rb"(\b[Tt]hread |handle of:)\d+", rb"\1{thread}", text)
    return re.sub(rb"(\{source\}\"?,? +line )\d+", rb"\1{line}", text)


def expected_code(text, system):
    for line in text.decode().splitlines():
        words = line.split()
        if len(words) == 1 or words[:1] == [system]:
            return int(words[-1])
    return 0


def difference(what, wanted, got):
    if wanted == got:
        return ""
    before, after = (text.decode("utf-8", "backslashreplace").replace("\r", "\\r")
                     .split("\n") for text in (wanted, got))
    lines = difflib.unified_diff(before, after, f"expected {what}", f"got {what}", lineterm="")
    return "\n".join(lines) + "\n"


class Runner:
    def __init__(self, arguments):
        self.arguments = arguments
        self.program = pathlib.Path(arguments.program).resolve()

    def environment(self, folder):
        kept = ("WINEPREFIX", "WINEARCH", "WINEDEBUG", "WINEDLLOVERRIDES", "WINESERVER", "USER",
                "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS")
        result = {name: os.environ[name] for name in kept if name in os.environ}
        result |= {"HOME": str(folder), "XDG_DATA_HOME": str(folder), "TMPDIR": str(folder),
                   "LC_ALL": "C.UTF-8", "TZ": "UTC"}
        result["PATH"] = f"{self.program.parent}:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin"
        result["QUOREL_REGISTRY"] = str(folder / "registry.db")
        result["QUOREL_LOCKS"] = str(folder / "locks")
        if self.arguments.system == "windows":
            result["WINEPATH"] = self.path_for_program(self.program.parent)
            result["HOME"] = os.environ.get("HOME", "/root")
            # Wine finds its server below TMPDIR: one of its own would start a server, and the
            # services of a whole system, for each test, all on the same prefix.
            del result["TMPDIR"]
            if "TMPDIR" in os.environ:
                result["TMPDIR"] = os.environ["TMPDIR"]
        return result

    def path_for_program(self, path):
        if self.arguments.system == "windows":
            return "Z:" + str(path).replace("/", "\\")
        return str(path)

    def command(self, test, folder):
        start = ["wine"] if self.arguments.system == "windows" else []
        start.append(str(self.program))
        lines = test.expected.get("args", b"").split(b"\n")
        if lines[-1] == b"":
            lines.pop()
        script, above = (os.fsencode(self.path_for_program(path))
                         for path in (folder / test.script, folder))
        lines = [line.replace(b"{script}", script).replace(b"{dir}", above) for line in lines]
        if lines[:1] == [b"{raw}"]:
            return start + lines[1:]
        return start + ["--script", test.script] + test.options + lines

    def run(self, test):
        """Gives the complaint about the test, or an empty text."""
        if test.fault and not (self.arguments.update and test.fault.startswith("no expected")):
            return test.fault + "\n"
        with tempfile.TemporaryDirectory(prefix="plaincast-") as outer:
            folder = pathlib.Path(outer).resolve() / "test"
            if test.material:
                shutil.copytree(test.material, folder)
            folder.mkdir(exist_ok=True)
            for name, content in test.files.items():
                folder.joinpath(name).write_bytes(content)
            private = pathlib.Path(outer).resolve()
            seconds = int(test.head.get("seconds", SECONDS)) * self.arguments.patience
            # A process group of its own, so that what a script started can be ended with it.
            process = subprocess.Popen(self.command(test, folder), cwd=folder,
                                       env=self.environment(private), start_new_session=True,
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       stderr=subprocess.PIPE)
            try:
                out, err = process.communicate(test.expected.get("in", b""), seconds)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                tail = process.communicate()[0][-2000:].decode("utf-8", "backslashreplace")
                return f"not done after {seconds} seconds; the end of its output:\n{tail}\n"
            code = process.returncode if process.returncode >= 0 else 128 - process.returncode
            out, err = (mask(text, folder, self.program) for text in (out, err))
            return self.judge(test, out, err, code)

    def judge(self, test, out, err, code):
        if self.arguments.update and test.home and self.update(test, out, err, code):
            return ""
        complaint = difference("output", mask_times(test.expected["out"]), out)
        complaint += difference("standard error", test.expected.get("err", b""), err)
        wanted = expected_code(test.expected.get("code", b""), self.arguments.system)
        if code != wanted:
            complaint += f"exit code {code}, expected {wanted}\n"
        return complaint

    def update(self, test, out, err, code):
        """Rewrites the expectations; a code that differs between the systems is left alone."""
        test.home.mkdir(parents=True, exist_ok=True)
        stem = test.script.removesuffix(".qcs")
        test.home.joinpath(f"{stem}.out").write_bytes(out)
        for kind, content in (("err", err), ("code", b"%d\n" % code if code else b"")):
            path = test.home / f"{stem}.{kind}"
            if kind == "code" and expected_code(test.expected.get(kind, b""),
                                                self.arguments.system) == code:
                continue
            if content:
                path.write_bytes(content)
            else:
                path.unlink(missing_ok=True)
        return True


def chosen(tests, arguments):
    """Gives the tests that this run is for, and tells which belong to the other system."""
    other = []
    result = []
    for test in tests:
        if arguments.filters and not any(word in test.name for word in arguments.filters):
            continue
        if arguments.threads and "threads" not in test.head:
            continue
        systems = test.head.get("systems")
        if systems is None:
            result.append(test)
            continue
        name, _, reason = systems.partition(" ")
        if name not in ("linux", "windows") or not reason.strip(" -:,"):
            test.fault = "`# systems:` names linux or windows, and the reason"
        if test.fault or name == arguments.system:
            result.append(test)
        else:
            other.append(f"  {test.name}: {systems}")
    return result, other


def parse_arguments():
    parser = argparse.ArgumentParser(description="Runs the script tests.")
    parser.add_argument("--program", default=str(ROOT / "build/linux/quorel_plaincast"))
    parser.add_argument("--system", choices=("linux", "windows"), default="linux")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--patience", type=int, default=1, help="factor on the time limits")
    parser.add_argument("--threads", action="store_true",
                        help="only tests for the thread sanitizer")
    parser.add_argument("--update", action="store_true", help="rewrite the expectations")
    parser.add_argument("--count", help="file to write the numbers passed and failed to")
    parser.add_argument("filters", nargs="*", help="parts of names of tests")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    if arguments.update and arguments.system != "linux":
        sys.exit("--update takes the expectations from the Linux program")
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    tests, other = chosen(script_tests() + document_tests(), arguments)
    runner = Runner(arguments)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for test, complaint in zip(tests, pool.map(runner.run, tests)):
            if complaint:
                failed += 1
                print(f"FAILED {test.name}\n{complaint}", flush=True)
    if other:
        print("tests of the other system:", *other, sep="\n")
    if arguments.count:
        pathlib.Path(arguments.count).write_text(f"{len(tests) - failed} {failed}\n")
    if not tests:
        print("no test to run")
    print(f"{len(tests) - failed} passed, {failed} failed")
    return 1 if failed or not tests else 0


if __name__ == "__main__":
    sys.exit(main())
