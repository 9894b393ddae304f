"""Times bundles against tar and gzip.

Each folder named below holds plaincast.qcs and tools.sh, which do the same work in the
folder that they are given, `folder` or $1. They take turns, and the fastest of their
rounds counts. What one workload leaves behind the next one works on.
"""

import pathlib
import random
import shutil
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
FILES = 1000


def make_logs(folder, megabytes):
    """Puts a thousand log files of random words into folder/files."""
    chance = random.Random(7)
    words = ["".join(chance.choices("abcdefghijklmnopqrstuvwxyz", k=chance.randint(3, 10)))
             for _ in range(3000)]
    lines = [f"2026-11-{chance.randint(1, 28):02} {chance.randint(0, 23):02}:"
             f"{chance.randint(0, 59):02} {chance.choice(('INFO', 'WARNING', 'ERROR'))} "
             f"{' '.join(chance.choices(words, k=8))}\n" for _ in range(200000)]
    folder.joinpath("files").mkdir(parents=True)
    for number in range(FILES):
        text = "".join(chance.choices(lines, k=megabytes * 1000000 // FILES // len(lines[0])))
        folder.joinpath("files", f"{number:04}.log").write_text(text)


def clear_bundles(folder):
    for path in folder.glob("*.gz"):
        path.unlink()


def clear_unpacked(folder):
    """Empties the folder `out`, after a look at what was unpacked."""
    out = folder / "out"
    if out.is_dir():
        subprocess.run(["diff", "-r", folder / "files", out], check=True)
        shutil.rmtree(out)
    out.mkdir()
    for name in ("ours", "theirs.tar"):
        folder.joinpath(name).unlink(missing_ok=True)


WORKLOADS = {"bundle": clear_bundles, "explode": clear_unpacked}


def measure(command):
    began = time.perf_counter()
    subprocess.run(command, check=True, stdin=subprocess.DEVNULL)
    return time.perf_counter() - began


def run(program, work, wanted, rounds, megabytes):
    chosen = [name for name in WORKLOADS if wanted(name)]
    if not chosen:
        return
    folder = work / "bundles"
    shutil.rmtree(folder, ignore_errors=True)
    make_logs(folder, megabytes)
    print(f"\n{'seconds':<22}{'plaincast':>11}{'tools':>11}{'/tools':>11}", flush=True)
    for name, clear in WORKLOADS.items():
        commands = ([program, "--script", HERE / name / "plaincast.qcs", "--var",
                     f"folder={folder}"], ["sh", HERE / name / "tools.sh", folder])
        best = [sys.maxsize, sys.maxsize]
        for _ in range(rounds if name in chosen else 1):
            # Both in turn, each from the same state; what the last round made stays.
            for index, command in enumerate(commands):
                if index == 0 or name == "explode":
                    clear(folder)
                best[index] = min(best[index], measure(command))
        if name in chosen:
            print(f"{name:<22}{best[0]:>11.3f}{best[1]:>11.3f}{best[0] / best[1]:>11.2f}",
                  flush=True)
    clear_unpacked(folder)
    shutil.rmtree(folder)
