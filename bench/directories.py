"""The workloads on directories, against the system's own tools."""

import shutil
import subprocess

WORKLOADS = ("copydir", "deldir", "getfiles")
FOLDERS = 500
FILES = 40              # in each folder, of 13 to 1600 bytes
ENTRIES = 100000        # of one large folder


def make_material(folder):
    shutil.rmtree(folder, ignore_errors=True)
    for number in range(FOLDERS):
        part = folder / "small" / f"part{number:03}"
        part.mkdir(parents=True)
        for name in range(FILES):
            (part / f"file{name:02}.txt").write_text("line of text\n" * (3 * name + 1))
    many = folder / "many"
    many.mkdir()
    for number in range(ENTRIES):
        (many / f"file{number:06}.txt").touch()


def commands(languages, source, folder):
    """Gives each language's command for each workload; a script runs in its own folder."""
    runs = {}
    for language in ("plaincast", "bash"):
        start, suffix = languages[language]
        runs[language] = {}
        for workload in WORKLOADS:
            copy = folder / f"{workload}.{suffix}"
            shutil.copy(source(workload, language), copy)
            runs[language][workload] = start + [str(copy)]
    return runs


def check_copy(folder):
    # A copy must be there to be deleted, and it must be one.
    if subprocess.run(["diff", "-r", "small", "copy"], cwd=folder, check=False).returncode != 0:
        raise SystemExit("copydir: the copy differs")


def times(languages, source, measure, folder, rounds):
    """Gives the least seconds of each workload and language."""
    make_material(folder)
    runs = commands(languages, source, folder)
    least = {workload: {} for workload in WORKLOADS}
    for turn in range(rounds):
        for language, programs in runs.items():
            answers = []
            for workload in WORKLOADS:
                seconds, *_, answer = measure(programs[workload], folder)
                before = least[workload].get(language, seconds)
                least[workload][language] = min(before, seconds)
                answers.append(answer)
                if workload == "copydir" and turn == 0:
                    check_copy(folder)
            if answers != ["copied", "deleted", f"{ENTRIES} file{ENTRIES - 1:06}.txt"]:
                raise SystemExit(f"{language}: wrong answers {answers}")
    shutil.rmtree(folder)
    return least
