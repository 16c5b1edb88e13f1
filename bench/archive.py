#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""bench/archive.py BUILD [MEGABYTES [FILES]]: qvscan over whole archives, against grep and cat.

An mbox of MEGABYTES (default 1000) and a Maildir of FILES messages (default 100,000), made of the
messages in examples/ with bodies of 1 to 27 KB. Both are in the page cache before the first turn.
The programs take turns; a row is the median of the ratios to the first program of its group, in
time and in CPU time. The peak of resident memory is the largest of all turns.
"""
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
TURNS = 5
LINE = b"Quick foxes from the river bank tell their friends about all kinds of mail.\n"


def messages():
    """Endlessly, each with another length of the body, the same at every run."""
    heads = [file.read_bytes().rstrip(b"\n").split(b"\n\n")[0] + b"\n\n"
             for file in sorted((SOURCE / "examples").glob("*.eml"))]
    number = 0
    while True:
        yield heads[number % len(heads)] + LINE * (20 + number * 37 % 330)
        number += 1


def writeMailbox(path, size):
    with path.open("wb") as out:
        count = 0
        for count, message in enumerate(messages(), 1):
            out.write(b"From a@b.example Thu Jan  1 00:00:00 2026\n" + message + b"\n")
            if out.tell() >= size:
                return count


def writeMaildir(path, files):
    for folder in ("cur", "new", "tmp"):
        (path / folder).mkdir(parents=True)
    for number, message in zip(range(files), messages()):
        (path / "cur" / f"{number}.host:2,S").write_bytes(message)


def run(command):
    """Seconds of time, of CPU, and peak of resident memory in KiB."""
    start = time.monotonic()
    # Into a pipe: grep stops at its first match when nobody reads what it writes.
    program = subprocess.Popen(command, stdout=subprocess.PIPE, shell=isinstance(command, str))
    while program.stdout.read(1 << 20):
        pass
    _, status, usage = os.wait4(program.pid, 0)
    program.returncode = os.waitstatus_to_exitcode(status)
    if program.returncode not in (0, 1):
        sys.exit(f"{command} ended with status {program.returncode}")
    return time.monotonic() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def measure(title, programs):
    turns = [{name: run(command) for name, command in programs.items()} for _ in range(TURNS)]
    base = next(iter(programs))
    print(f"\n{title}\n{'time':>9} {'CPU':>9} {'KiB':>10}")
    for name in programs:
        time_, cpu = (statistics.median(turn[name][i] / turn[base][i] for turn in turns)
                      for i in (0, 1))
        peak = max(turn[name][2] for turn in turns)
        print(f"{time_:9.2f} {cpu:9.2f} {peak:10,}  {name}")


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    megabytes, files = (int(value) for value in (sys.argv[2:] + ["1000", "100000"][len(sys.argv) - 2:]))

    def qvscan(*arguments):
        return [build / "bin/qvscan", "--root", build / "share/qvdeepheader/root", "--dns", "off",
                "--no-progress", *arguments]

    with tempfile.TemporaryDirectory() as folder:
        box, maildir = pathlib.Path(folder, "all.mbox"), pathlib.Path(folder, "Maildir")
        count = writeMailbox(box, megabytes * 1_000_000)
        measure(f"an mbox of {megabytes:,} MB, {count:,} messages", {
            "grep -c '^From '": ["grep", "-c", "^From ", box],
            "qvscan, one job": qvscan("--jobs", "1", box),
            "qvscan, two jobs": qvscan("--jobs", "2", box),
            "qvscan --format json, one job": qvscan("--jobs", "1", "--format", "json", box),
            "qvscan --explain, one job": qvscan("--jobs", "1", "--explain", box)})
        writeMaildir(maildir, files)
        measure(f"a Maildir of {files:,} files", {
            "cat of all files": f"find '{maildir}' -type f -print0 | xargs -0 cat",
            "qvscan, one job": qvscan("--jobs", "1", maildir),
            "qvscan, two jobs": qvscan("--jobs", "2", maildir)})


if __name__ == "__main__":
    main()
