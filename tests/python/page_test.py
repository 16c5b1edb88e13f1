# SPDX-License-Identifier: Apache-2.0
"""The code of pages in docs, run in order. Below each piece stands what it prints."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

from pages import pieces, text_of
from support import SOURCE

PAGES = ("python.md", "python-relays.md")
END = "\x1e\n"


def outputs(page, folder):
    """What each piece of a page prints in a folder, where only the sources are."""
    (folder / "examples").symlink_to(SOURCE / "examples")
    program = folder / "page.py"
    program.write_text("".join(f"{code}print({END[0]!r}, flush=True)\n" for code, _ in pieces(page, "python")))
    done = subprocess.run([sys.executable, "-B", program], cwd=folder, capture_output=True,
                          text=True, timeout=300)
    if done.returncode != 0 or done.stderr:
        raise AssertionError(f"{page}: {done.returncode}: {done.stderr}")
    return done.stdout.split(END)[:-1]


class Pages(unittest.TestCase):
    def test_code_prints_what_stands_below_it(self):
        for page in PAGES:
            with self.subTest(page), tempfile.TemporaryDirectory() as folder:
                for (code, shown), found in zip(
                        pieces(page, "python"), outputs(page, pathlib.Path(folder)), strict=True):
                    self.assertEqual(found, shown, code)

    def test_all_code_is_run(self):
        for page in PAGES:
            self.assertEqual(text_of(page).count("```python"), len(pieces(page, "python")))
            self.assertGreater(len(pieces(page, "python")), 4)


if __name__ == "__main__":
    unittest.main()
