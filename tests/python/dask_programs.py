# SPDX-License-Identifier: Apache-2.0
"""The programs of examples/dask, run as a user runs them, and mail for them."""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from support import EXAMPLES, SOURCE

FOLDER = SOURCE / "examples" / "dask"
TIME = 300  # seconds; far more than anything here takes

sys.path.insert(0, str(FOLDER))


def mails():
    """The example messages, as bytes."""
    return [path.read_bytes() for path in EXAMPLES]


def mailbox(messages, line_break=b"\n"):
    """An mbox of messages."""
    text = b"".join(b"From a@example.org Mon Jan  1 10:00:00 2024\n" +
                    b"\n".join(b">" + line if line.startswith(b"From ") else line
                               for line in message.replace(b"\r\n", b"\n").split(b"\n")) +
                    b"\n\n" for message in messages)
    return text.replace(b"\n", line_break)


def command(program, *arguments):
    """The command line of a program of examples/dask, or of one that was built."""
    if program.endswith(".py"):
        return [sys.executable, "-B", str(FOLDER / program), *map(str, arguments)]
    return [os.path.join(os.environ["QV_PROGRAMS"], program), *map(str, arguments)]


class ArchiveTest(unittest.TestCase):
    """A test with a folder of its own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        self.config = self.write("settings.toml", b'dns = "off"\n')

    def write(self, name, content):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return path

    def run_program(self, program, *arguments, status=0):
        """What it wrote: output and errors, as text."""
        done = subprocess.run(command(program, *arguments), cwd=self.folder, text=True,
                              capture_output=True, timeout=TIME)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout, done.stderr

    def start(self, program, *arguments, env=None):
        """The process of a program that runs on."""
        process = subprocess.Popen(command(program, *arguments), cwd=self.folder, text=True, env=env,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)

        def stop():
            process.kill()
            process.communicate()
        self.addCleanup(stop)
        return process
