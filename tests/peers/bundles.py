#!/usr/bin/env python3
"""Bundles against a reader and writer of its own, and against gzip: bundles.py PROGRAM"""

import gzip
import os
import pathlib
import resource
import subprocess
import sys
import tempfile

PROGRAM = os.path.abspath(sys.argv[1])
BACKUP = pathlib.Path(__file__).resolve().parents[2] / "examples" / "backup.qcs"


def run(*statements, size=resource.RLIM_INFINITY):
    """Runs statements, with files of at most `size` bytes; tells which were done."""
    tells = ["if success", 'echo "done"', "end", "else", 'echo "no"', "end"]
    body = [line for statement in statements for line in (statement, *tells)]
    pathlib.Path("run.qcs").write_text("\n".join(["function main", *body, "end", ""]))
    result = subprocess.run(
        [PROGRAM, "--script", "run.qcs"], timeout=60, stdout=subprocess.PIPE, check=True,
        restore_signals=False,  # SIGXFSZ stays ignored
        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, -1)))
    return "".join("+" if line == b"done" else "-" for line in result.stdout.split(b"\n")
                   if line in (b"done", b"no"))


def entries(data):
    header, data = data.split(b"\n", 1)
    assert header == b"$Quorel_Bundle_v1", header
    while data:
        size, name, data = data.split(b"\n", 2)
        yield os.fsdecode(name), data[:int(size)]
        data = data[int(size):]


def main():
    files = {f"f{number:03}": os.urandom(number * 997) for number in range(1, 60)}
    files["\udcff\udc80"] = b"named in bytes"
    for folder in ("tree", "out", "fifo"):
        os.mkdir(folder)
    for name, data in files.items():
        pathlib.Path("tree", name).write_bytes(data)
    pathlib.Path("tree", r"..\..\victim").write_bytes(b"inside")
    pathlib.Path("victim").write_bytes(b"next door")
    assert run('bundle "b" "tree/*"') == "+"
    plain = subprocess.run(["zcat", "b.gz"], stdout=subprocess.PIPE, check=True).stdout
    assert dict(entries(plain)) == files
    written = b"".join(b"%d\n%s\n" % (len(data), os.fsencode(name)) + data
                       for name, data in files.items())
    pathlib.Path("w.gz").write_bytes(gzip.compress(b"$Quorel_Bundle_v1\n" + written))
    assert run('explode "w.gz" "out"', 'zip "w" "zip" "v"', 'zip "b.gz" "unzip"') == "+++"
    assert {file.name: file.read_bytes() for file in pathlib.Path("out").iterdir()} == files
    subprocess.run(["gzip", "-d", "v.gz"], check=True)
    assert pathlib.Path("v").read_bytes() == pathlib.Path("w").read_bytes()

    for day in ("01", "02", "03"):
        subprocess.run([PROGRAM, "--script", BACKUP, "--var", "source=" + os.path.abspath("out"),
                        "--var", "target=" + os.path.abspath("kept"), "--var", "keep=2",
                        "--var", "day=2026-11-" + day], check=True, stdout=subprocess.DEVNULL)
    assert sorted(os.listdir("kept")) == ["out-2026-11-02.gz", "out-2026-11-03.gz"]

    # Full disks, at the close of what is small and in the midst of what is not.
    assert run('zip "v" "zip" "n"', 'bundle "n" "w" true', size=9) == "--"
    assert run('bundle "p" "victim" false false') == "+"
    assert run('bundle "p" "victim" true', 'attachbundle "p" "victim"', size=40) == "--"
    assert run('bundle "p2" "tree/*" true', 'zip "w" "zip"', size=100000) == "--"
    os.symlink("/dev/full", "full.gz")
    assert run('zip "victim" "zip" "full"') == "-"
    assert len(os.listdir("tree")) == len(files) + 1 and os.path.exists("w")
    os.mkfifo("fifo/waits")
    assert run('bundle "q" "fifo/*"', 'bundle "q" "/dev/zero"', 'zip "fifo/waits" "zip"') == "---"
    assert pathlib.Path("victim").read_bytes() == b"next door"


with tempfile.TemporaryDirectory() as place:
    os.chdir(place)
    os.environ["QUOREL_REGISTRY"] = os.path.join(place, "registry.db")
    main()
