#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""bench/python_module.py BUILD [MESSAGES]: the Python package against qvscan on the same mailbox.

Both judge all messages (default 100,000), made from those in examples/. They take turns, and the
figures are the medians of the ratios: times on a machine that does other things mean little. What two
threads can reach at most is what two processes reach that share the messages and nothing else. Against
qvscan whole processes are timed, and scan_many against itself without the start of the interpreter.
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
JUDGE = """
import sys
import time
import qvdeepheader

scanner = qvdeepheader.Scanner(settings={"dns": "off"})
start = time.monotonic()
count = sum(answer.error is None for answer in scanner.scan_many(
    qvdeepheader.messages(sys.argv[1]), threads=int(sys.argv[2])))
print(time.monotonic() - start)
assert count == int(sys.argv[3]), count
"""


def writeMailbox(path, messages):
    examples = [file.read_bytes() for file in sorted((SOURCE / "examples").glob("*.eml"))]
    with path.open("wb") as out:
        for number in messages:
            out.write(b"From a@b.example Thu Jan  1 00:00:00 2026\n")
            out.write(examples[number % len(examples)] + b"\n" + b"A line of the body.\n" * 50 + b"\n")


def wholeTime(command):
    start = time.monotonic()
    status = subprocess.run(command, stdout=subprocess.DEVNULL, check=False).returncode
    if status not in (0, 1):
        sys.exit(f"{command[0]} ended with status {status}")
    return time.monotonic() - start


def packageTimes(*commands, **options):
    """The time of these processes, side by side, and that of scan_many alone, the longest of these."""
    start = time.monotonic()
    runs = [subprocess.Popen(each, stdout=subprocess.PIPE, **options) for each in commands]
    scans = [run.communicate()[0] for run in runs]
    whole = time.monotonic() - start
    if any(run.returncode for run in runs):
        sys.exit("the package failed")
    return whole, max(map(float, scans))


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    messages = int(sys.argv[2]) if len(sys.argv) > 2 else 100_000
    environment = os.environ | {"PYTHONPATH": str(build / "lib/python3/dist-packages")}
    with tempfile.TemporaryDirectory() as folder:
        box = pathlib.Path(folder, "all.mbox")
        writeMailbox(box, range(messages))
        halves = [pathlib.Path(folder, "half-1.mbox"), pathlib.Path(folder, "half-2.mbox")]
        for begin, half in enumerate(halves):
            writeMailbox(half, range(begin, messages, 2))

        def qvscan(jobs):
            return wholeTime([build / "bin/qvscan", "--root", build / "share/qvdeepheader/root",
                              "--dns", "off", "--format", "json", "--jobs", str(jobs), box])

        def judge(mail, threads, count):
            return ["/usr/bin/python3", "-B", "-c", JUDGE, mail, str(threads), str(count)]

        def package(threads):
            return packageTimes(judge(box, threads, messages), env=environment)

        def processes():
            counts = (messages + 1) // 2, messages // 2
            return packageTimes(*(judge(half, 1, count) for half, count in zip(halves, counts)),
                                env=environment)

        ratios = {"scan_many to qvscan, 1 thread": [], "scan_many to qvscan, 2 threads": [],
                  "scan_many, 1 thread to 2": [], "qvscan, 1 thread to 2": [],
                  "scan_many, 1 process to 2": [], "scan_many, 2 processes to 2 threads": []}
        for _ in range(TURNS):
            (whole1, scan1), qvscan1 = package(1), qvscan(1)
            (whole2, scan2), qvscan2 = package(2), qvscan(2)
            _, shared = processes()
            for row, ratio in zip(ratios.values(), (whole1 / qvscan1, whole2 / qvscan2,
                                                    scan1 / scan2, qvscan1 / qvscan2,
                                                    scan1 / shared, shared / scan2)):
                row.append(ratio)
    print(f"{messages:,} messages, medians of {TURNS} turns")
    for name, row in ratios.items():
        print(f"{name}: {statistics.median(row):.2f} ({min(row):.2f} to {max(row):.2f})")


if __name__ == "__main__":
    main()
