# SPDX-License-Identifier: Apache-2.0
"""Twice as much of a hostile header section takes about twice as much work to read and to scan.
Work is counted in instructions, by callgrind: times would depend on the machine.

work_test.py PROGRAM
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

# What is linear doubles; a square would make it four times as much.
MOST = 2.3


def instructions(program):
    """What each mark of the program counted."""
    counts = {}
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["valgrind", "-q", "--tool=callgrind", "--dump-line=no",
                        f"--callgrind-out-file={folder}/out", program], check=True)
        for path in pathlib.Path(folder).glob("out.*"):
            text = path.read_text()
            mark = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
            total = re.search(r"^(?:totals|summary): (\d+)", text, re.M)
            if mark and total:
                counts[mark[1]] = int(total[1])
    return counts


class Work(unittest.TestCase):
    def test_it_grows_with_the_size(self):
        counts = instructions(PROGRAM)
        shapes = {mark[:-2] for mark in counts if mark.endswith("/1")}
        self.assertGreater(len(shapes), 20)
        for shape in sorted(shapes):
            with self.subTest(shape):
                once, twice = counts[shape + "/1"], counts[shape + "/2"]
                print(f"{shape}: {once} instructions, {twice / once:.2f} times as many")
                self.assertLess(twice, MOST * once)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop()
    unittest.main()
