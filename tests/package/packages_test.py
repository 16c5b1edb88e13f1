#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""packages_test.py FOLDER: the packages in FOLDER, installed, upgraded and removed on a bare Debian 12."""
import pathlib
import re
import subprocess
import tempfile
import unittest

from bare_system import FOLDER, ROOT, SystemTest, enter, inside, run

SOURCE = pathlib.Path(__file__).resolve().parent.parent.parent
OURS = ("libqvplatform1", "libqvdeepheader1", "libqvdeepheader-dev", "qvdeepheader-tools", "qvmilter",
        "python3-qvdeepheader")
CONFIG, README = "etc/qvdeepheader.toml", "var/spool/etc/antispam/README"
# A client whose name says that it is a consumer line, as a mail server tells of it.
SCRIPT = """
    postfix_client("dsl-203-0-113-17.pool.provider.example", "203.0.113.17",
                   "dsl-203-0-113-17.pool.provider.example")
    message()
"""


def filters():
    """The users of all qvmilter that run."""
    found = []
    for status in pathlib.Path("/proc").glob("[0-9]*/status"):
        text = status.read_text()
        # This test is the first process here and buries nobody, so those that ended stay as zombies.
        if text.startswith("Name:\tqvmilter\n") and "\nState:\tZ" not in text:
            found.append(int(re.search(r"^Uid:\t(\d+)", text, re.M).group(1)))
    return found


def judged():
    """What the filter on the system makes of a message: the lines of the script."""
    prelude = (SOURCE / "tests/milter/prelude.lua").read_text()
    with tempfile.NamedTemporaryFile("w", suffix=".lua") as script:
        script.write(prelude + SCRIPT)
        script.flush()
        return run("miltertest", "-s", script.name, "-D",
                   f"address=unix:{ROOT}/run/qvmilter/qvmilter.sock")


def next_version():
    """A folder with the same packages as a later version."""
    folder = ROOT / "next"
    folder.mkdir()
    for package in FOLDER.glob("*.deb"):
        with tempfile.TemporaryDirectory() as name:
            content = pathlib.Path(name) / "content"
            run("dpkg-deb", "--raw-extract", package, content)
            control = content / "DEBIAN/control"
            version = re.search("^Version: (.*)$", control.read_text(), re.M).group(1)
            control.write_text(control.read_text().replace(
                f"Version: {version}\n", f"Version: {version}+next\n").replace(
                f"(= {version})", f"(= {version}+next)"))
            run("dpkg-deb", "--root-owner-group", "-Znone", "--build", content, folder)
    return folder


class Packages(SystemTest):
    def setUp(self):
        super().setUp()
        self.install("/src/build/package")

    def install(self, folder):
        found = [f"{folder}/{path.name}" for path in (ROOT / folder.strip("/")).glob("*.deb")]
        self.assertEqual(len(found), len(OURS))
        inside("apt-get", "install", "-q", "--no-install-recommends", *found)

    def test_everything_works_once_it_is_installed(self):
        user = int(inside("id", "-u", "qvmilter"))
        self.assertEqual(filters(), [user])
        self.assertIn("X-QV-Deep-Header: spam; node=9011;", judged())
        example = "/usr/share/qvdeepheader/examples/spam-bot-dynamic-name.eml"
        done = subprocess.run(["chroot", ROOT, "qvscan", "--format", "text", "--dns", "off", example],
                              capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout.splitlines()[1].split()[0]), (1, "spam"), done.stderr)
        self.assertEqual(inside("python3", "-c", "import qvdeepheader, sys\n"
                                "scanner = qvdeepheader.Scanner(settings={'dns': 'off'})\n"
                                f"print(scanner.scan(open('{example}', 'rb').read()).verdict)"),
                         "spam\n")

    def test_an_upgrade_keeps_settings_and_rules(self):
        config = ROOT / CONFIG
        config.write_text(config.read_text() + 'on-spam = "reject"\n')
        inside("qvrules", "install", "/usr/share/qvdeepheader/rules/starter.qvr")
        before = config.read_text(), (ROOT / README).read_text()
        self.install("/" + next_version().name)
        self.assertIn("+next", inside("dpkg-query", "-W", "qvmilter"))
        self.assertEqual((config.read_text(), (ROOT / README).read_text()), before)
        # The new filter runs, with both.
        self.assertEqual(len(filters()), 1)
        self.assertEqual(judged().splitlines(), ["replycode"])
        self.assertIn("Straight from a consumer line", inside("qvrules", "decompile", "/var/spool/etc/antispam"))

    def test_a_removal_leaves_no_process_and_keeps_what_the_site_wrote(self):
        inside("apt-get", "remove", "-q", "qvmilter")
        self.assertEqual(filters(), [])
        self.assertTrue((ROOT / CONFIG).exists())
        inside("apt-get", "purge", "-q", *OURS)
        self.assertFalse((ROOT / CONFIG).exists())
        self.assertTrue((ROOT / README).exists())
        left = inside("dpkg-query", "-W", "-f", "${Package}\n").split()
        self.assertFalse(set(OURS) & set(left))


if __name__ == "__main__":
    enter()
    unittest.main()
