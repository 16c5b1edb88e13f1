# SPDX-License-Identifier: Apache-2.0
"""picture_test.py QVSCAN ROOT SOURCE: docs/explained.svg shows what qvscan --explain writes on a terminal of today.
QV_APPROVE=1 draws it anew."""
import fcntl
import html
import os
import pathlib
import pty
import re
import struct
import subprocess
import sys
import termios
import unittest

QVSCAN, ROOT = sys.argv[1:3]
SOURCE = pathlib.Path(sys.argv[3])
del sys.argv[1:4]
PICTURE = SOURCE / "docs/explained.svg"
MESSAGE = "examples/spam-bot-no-reverse-name.eml"
COLUMNS = 110
# Of a letter, of a line, around them all.
WIDTH, HEIGHT, MARGIN = 7.8, 18, 16
# A reader's browser takes the colours for light or dark. The contrast of each with its ground is above 4.5.
STYLE = """rect { fill: #f6f8fa } text { fill: #1f2328; font: 13px ui-monospace, "DejaVu Sans Mono", monospace;
white-space: pre } .prompt { fill: #59636e } .c31 { fill: #b3261e; font-weight: bold }
@media (prefers-color-scheme: dark) { rect { fill: #161b22 } text { fill: #e6edf3 } .prompt { fill: #9198a1 }
.c31 { fill: #ff7b72 } }"""


def on_terminal():
    """What the program writes on a terminal, with its colours."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 50, COLUMNS, 0, 0))
    program = subprocess.Popen(
        [QVSCAN, "--root", ROOT, "--dns-data", "examples/dns.zone", "--no-pager", "--explain", MESSAGE],
        cwd=SOURCE, stdout=theirs, stderr=subprocess.DEVNULL,
        env={"LC_ALL": "C.UTF-8", "TERM": "xterm-256color", "HOME": "/nonexistent"})
    os.close(theirs)
    written = b""
    try:
        while part := os.read(ours, 65536):
            written += part
    except OSError:  # the program has ended
        pass
    os.close(ours)
    assert program.wait() == 1, "the message is spam"
    return written.decode().replace("\r\n", "\n").rstrip("\n")


def spans(line):
    """The line as SVG text, and its letters without colours."""
    plain = re.sub(r"\x1b\[\d*m", "", line)
    assert "\x1b" not in plain, "the terminal is told what this cannot draw"
    text = html.escape(line, quote=False)
    text = re.sub(r"\x1b\[([1-9]\d*)m(.*?)\x1b\[0?m", r'<tspan class="c\1">\2</tspan>', text)
    return text, plain


def drawing(lines):
    """The lines as a picture. Each has its width from here, so that it fits in the fonts of every reader."""
    width, height = 2 * MARGIN + COLUMNS * WIDTH, 2 * MARGIN + len(lines) * HEIGHT
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:.0f} {height}" role="img">'
           f"<title>qvscan --explain, on a terminal</title>\n<style>{STYLE}</style>\n"
           f'<rect width="{width:.0f}" height="{height}" rx="8"/>')
    for number, line in enumerate(lines):
        text, plain = spans(line)
        indent = len(plain) - len(plain.lstrip(" "))
        if plain:
            kind = ' class="prompt"' if number == 0 else ""
            yield (f'<text{kind} x="{MARGIN + indent * WIDTH:.1f}" y="{MARGIN + 13 + number * HEIGHT}" '
                   f'textLength="{(len(plain) - indent) * WIDTH:.1f}">{text[indent:]}</text>')
    yield "</svg>\n"


class Picture(unittest.TestCase):
    def test_shows_what_the_program_writes(self):
        lines = [f"$ qvscan --explain {MESSAGE}", *on_terminal().split("\n")]
        picture = "\n".join(drawing(lines))
        if "QV_APPROVE" in os.environ:
            PICTURE.write_text(picture, encoding="utf-8")
        self.assertEqual(PICTURE.read_text(encoding="utf-8"), picture)


if __name__ == "__main__":
    unittest.main()
