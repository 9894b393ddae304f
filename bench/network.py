"""Times two programs that talk over loopback, one of each language with itself.

All speak the same protocol with the same sends and the same socket buffers of 8192
bytes: the length byte, the digits and the chunk each go out by themselves, and the next
chunk waits for the word that answers the last. The limit is a C program that does
nothing else. The time is that of the caller and the listener, from the caller's start
to the end of both; the listener waits for it by then.
"""

import pathlib
import shutil
import socket
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent / "network"
WORKLOADS = ("sendlist", "sendstring", "rounds")


def free_port():
    with socket.create_server(("", 0)) as taken:
        return taken.getsockname()[1]


def listens(port):
    return f":{port:04X} 00000000:0000 0A" in pathlib.Path("/proc/net/tcp").read_text()


def commands(program, folder, role, workload, port):
    ours = [program, "--script", HERE / "plaincast.qcs", "--startfunc", f"{role}_{workload}",
            "--var", f"port={port}"]
    tail = [role, workload, str(port)]
    return {"plaincast": ours, "perl": ["/usr/bin/perl", HERE / "perl.pl", *tail],
            "python": ["/usr/bin/python3", HERE / "python.py", *tail],
            "C": [folder / "limit", *tail]}


def measure(program, folder, workload, language):
    port = free_port()
    listener = subprocess.Popen(commands(program, folder, "listen", workload, port)[language],
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
    while not listens(port) and listener.poll() is None:
        time.sleep(0.005)
    began = time.perf_counter()
    subprocess.run(commands(program, folder, "call", workload, port)[language],
                   stdin=subprocess.DEVNULL, check=True)
    answer = listener.communicate()[0]
    return time.perf_counter() - began, answer, listener.returncode


def run(program, work, wanted, rounds):
    chosen = [name for name in WORKLOADS if wanted(name)]
    if not chosen:
        return
    folder = work / "network"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    subprocess.run(["cc", "-O2", "-o", folder / "limit", HERE / "limit.c"], check=True)
    languages = list(commands(program, folder, "", "", 0))
    print("\n" + f"{'seconds':<22}" + "".join(f"{name:>11}" for name in
                                              (*languages, "/fastest", "/C")), flush=True)
    for workload in chosen:
        best = {}
        answers = set()
        for _ in range(rounds):
            for language in languages:
                seconds, *answer = measure(program, folder, workload, language)
                best[language] = min(best.get(language, seconds), seconds)
                answers.add(tuple(answer))
        if len(answers) != 1:
            sys.exit(f"{workload}: the answers differ: {answers}")
        ours = best["plaincast"]
        cells = [f"{best[language]:.4f}" for language in languages]
        cells += [f"{ours / min(best['perl'], best['python']):.2f}", f"{ours / best['C']:.2f}"]
        print(f"{workload:<22}" + "".join(f"{cell:>11}" for cell in cells), flush=True)
    shutil.rmtree(folder)
