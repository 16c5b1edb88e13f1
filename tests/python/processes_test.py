#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The package in processes: signals, forks, and an end in the middle."""
import multiprocessing
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

import qvdeepheader
from support import EXAMPLES, SETTINGS

START = f"""
import os, qvdeepheader, threading
scanner = qvdeepheader.Scanner(settings={SETTINGS!r})
path = {str(EXAMPLES[0])!r}
message = open(path, "rb").read()
"""


def run(text, *arguments):
    return subprocess.run([sys.executable, "-B", "-c", START + text, *arguments],
                          capture_output=True, text=True, timeout=300, check=False)


def verdict(scanner, message):
    return scanner.scan(message).verdict


class Processes(unittest.TestCase):
    def testAnInterpreterMayEndWhileMessagesAreUnderWay(self):
        ended = run("""
class Cycle: pass
cycle = Cycle()
cycle.self = cycle
cycle.answers = scanner.scan_many((message for _ in range(100000)), threads=4)
print(next(cycle.answers).verdict)
kept = scanner.scan_many([message] * 1000, threads=4)
next(kept)
read = scanner.scan_many(qvdeepheader.messages(*[path] * 2000), threads=4)
next(read)
""")
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))

    def testAnIteratorThatIsGivenUpEndsItsThreads(self):
        ended = run("""
for _ in range(50):
    next(scanner.scan_many([message] * 1000, threads=4))
    next(scanner.scan_many(qvdeepheader.messages(*[path] * 2000), threads=4))
print(len(os.listdir("/proc/self/task")))
""")
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))
        self.assertLess(int(ended.stdout), 4)

    def testASignalEndsAWaitForInput(self):
        with tempfile.TemporaryDirectory() as folder:
            pipe = pathlib.Path(folder, "pipe")
            os.mkfifo(pipe)
            for wait in ("next(messages)", "next(scanner.scan_many(messages, threads=2))"):
                child = subprocess.Popen(
                    [sys.executable, "-B", "-c", START + f"""
messages = qvdeepheader.messages({str(pipe)!r})
try:
    print("waiting", flush=True)
    {wait}
except KeyboardInterrupt:
    print("interrupted")
"""], stdout=subprocess.PIPE, text=True)
                self.assertEqual(child.stdout.readline(), "waiting\n")
                with pipe.open("wb"):  # it has opened the pipe
                    child.send_signal(signal.SIGINT)
                    self.assertEqual(child.stdout.read(), "interrupted\n")
                self.assertEqual(child.wait(), 0)
                child.stdout.close()

    def testAChildOfAForkNeitherUsesNorEndsTheThreadsOfItsParent(self):
        for messages in ("[message] * 1000", "qvdeepheader.messages(*[path] * 1000)"):
            self.assertForkedChildIsRefused(messages)

    def assertForkedChildIsRefused(self, messages):
        ended = run(f"answers = scanner.scan_many({messages}, threads=2)" + """
next(answers)
child = os.fork()
if child == 0:
    try:
        next(answers)
    except RuntimeError:
        del answers
        os._exit(42)
_, status = os.waitpid(child, 0)
print(os.waitstatus_to_exitcode(status), sum(1 for _ in answers))
""")
        self.assertEqual((ended.stderr, ended.stdout), ("", "42 999\n"))

    def testChildrenOfAForkJudge(self):
        scanner = qvdeepheader.Scanner(settings=SETTINGS)
        messages = [example.read_bytes() for example in EXAMPLES]
        expected = [verdict(scanner, message) for message in messages]
        with multiprocessing.get_context("fork").Pool(2) as pool:
            self.assertEqual(pool.map(_judgeAll, [messages] * 4), [expected] * 4)


def _judgeAll(messages):
    """A scanner of the child's own."""
    scanner = qvdeepheader.Scanner(settings=SETTINGS)
    return [verdict(scanner, message) for message in messages]


if __name__ == "__main__":
    unittest.main()
