#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""trial_test.py FOLDER: what somebody does who has never seen the project, on a bare Debian 12 with the packages
in FOLDER. Every command, setting and rule is taken from the pages in docs, in their order, and so is what a
person should see. What people do by themselves is in this file: they edit, and read their mail."""
import pathlib
import re
import sys
import time
import unittest

from bare_system import NO, ROOT, YES, SystemTest, enter, inside, offline, on_terminal

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests/support"))

from pages import blocks, pieces, section, text_of

HOME = "/home/ann"
SETTINGS, INBOX = ROOT / "etc/qvdeepheader.toml", ROOT / "var/mail/root"
EXAMPLES = sorted((SOURCE / "examples").glob("*.eml"))
DEADLINE = 60 # for a mail server to deliver a message
FILE = re.compile(r"^<<< (\S+)\n(.*?)^>>>\n", re.S | re.M)


def as_ann(commands, status=0):
    """What a user sees who is not root."""
    return on_terminal("ann", HOME, commands, status)


def as_root(commands, folder="/root"):
    return on_terminal("root", folder, f"set -e; {commands}")


def with_network(commands):
    """Commands of root that fetch packages of Debian."""
    inside("sh", "-ec", f"cd /src; {commands}")


def set_lines(text):
    """Sets in the file of settings what a page shows, where the file has a line for it."""
    for line in re.findall("^[a-z-]+ = .*$", text, re.M):
        name = line.split(" = ")[0]
        changed, count = re.subn(f"^#?{name} = .*\n", lambda _: "", SETTINGS.read_text(), flags=re.M)
        if not count:
            raise AssertionError(f"the settings have no line for {name}")
        # The first settings are of all programs, the others of the filter.
        above = text.split("[milter]")[0]
        at = changed.index("[milter]\n") + (0 if line in above else len("[milter]\n"))
        SETTINGS.write_text(f"{changed[:at]}{line}\n{changed[at:]}")


def header():
    """That of the newest message in the mailbox of root."""
    found = re.findall("^X-QV-Deep-Header: .*\n", INBOX.read_text() if INBOX.exists() else "", re.M)
    return found[-1] if found else None


def send_until(commands, shown):
    """Sends a message again until the newest that was delivered has this header."""
    end = time.monotonic() + DEADLINE
    while header() != shown:
        if time.monotonic() > end:
            raise AssertionError(f"expected {shown}not {header()}")
        as_ann(commands)
        time.sleep(0.2)


class Trial(SystemTest):
    def setUp(self):
        super().setUp()
        inside("useradd", "--create-home", "--shell", "/bin/bash", "ann")

    def test_a_newcomer_follows_the_pages(self):
        self.install_and_judge()
        self.make_a_table()
        self.find_relays()
        self.filter_mail()
        self.write_a_rule()
        self.put_it_in_force()

    def install_and_judge(self):
        build, install, judge = blocks("index.md", "Getting started", "sh")
        self.assertEqual(build, "./dev package\n") # that has been done
        with_network(install)
        verdict, explanation = judge.splitlines()
        self.assertRegex(as_ann(verdict, status=1), r"\nspam 99\.9 % ")
        self.assertIn("Because: ", as_ann(explanation, status=1))
        for named in re.findall(r"`(/usr/[^`*]*)`", section("index.md", "Getting started")):
            self.assertTrue((ROOT / named.strip("/")).is_dir(), named)
        self.assertTrue((ROOT / "usr/share/doc/qvdeepheader-tools/docs/index.md").exists())

    def make_a_table(self):
        """docs/python.md up to the first table, of the examples and of one's own mailbox; and pandas."""
        install, copy = blocks("python.md", "Five minutes to a table of verdicts", "sh")
        self.assertEqual(install, blocks("index.md", "Getting started", "sh")[1])
        as_ann(copy)
        (listing, _), (table, _), (lines, shown) = pieces("python.md", "python")[:3]
        self.assertEqual(self.python(listing + table + lines), shown)
        own, = re.findall("`(mail = [^`]*)`", text_of("python.md"))
        (ROOT / "home/ann/inbox.mbox").write_bytes(b"".join(
            b"From ann@example.net Tue May 14 09:12:31 2024\n%s\n" % message.read_bytes() for message in EXAMPLES))
        rows = self.python(f"{listing}{own}\n{table}file.close()\nprint(open('verdicts.csv').read())").split()
        self.assertEqual(sum(row.startswith("inbox.mbox:") for row in rows), len(EXAMPLES))
        with_network("apt-get install -q --no-install-recommends python3-pandas")
        read, = re.findall(r"`(pandas\.read_csv.*?)`", text_of("python.md"))
        self.assertEqual(self.python(f"import pandas\nprint(*{read}.columns)"),
                         "source verdict confidence rule relay\n")

    def python(self, program):
        (ROOT / "home/ann/program.py").write_text(program)
        return as_ann("python3 program.py")

    def find_relays(self):
        settings, = blocks("own-relays.md", "Finding them")[-1:]
        as_ann("mv inbox.mbox archive.mbox")
        *find, judge = settings.splitlines()
        as_ann("\n".join(find))
        self.assertIn("\nspam ", as_ann(judge, status=1))

    def filter_mail(self):
        mail_server, settings, check, connect, send, look, shown = blocks(
            "postfix.md", "Five minutes to the first judged message")
        self.start_services(NO) # in this network; in their own one they start below
        with_network(mail_server)
        self.start_services(YES)
        offline("service", "postfix", "start")
        set_lines(settings)
        self.assertIn("in order", as_root(check))
        as_root(connect)
        send_until(send, shown)
        self.assertIn(shown, as_root(look))
        notes = (ROOT / "usr/share/doc/qvmilter/README.Debian").read_text()
        for named in re.findall("^(?:page )?(/usr/share/doc/[^ ]*)", notes, re.M):
            self.assertTrue((ROOT / named[1:]).exists(), named)

    def write_a_rule(self):
        """The transcripts of the page, as somebody who is not root."""
        for transcript in blocks("writing-rules.md", "From a message to a rule"):
            for name, content in FILE.findall(transcript):
                (ROOT / "home/ann" / name).write_text(content)
            typed = re.findall(r"^\$ (.*)\n((?:\| .*\n)*)(?:\[status (\d+)\]\n)?",
                               FILE.sub("", transcript), re.M)
            for command, output, status in typed:
                self.assertEqual(as_ann(command, int(status or 0)), output.replace("| ", "", 1)
                                 .replace("\n| ", "\n"), command)

    def put_it_in_force(self):
        copy, rule, attempt, verdict, install, send, shown = blocks("writing-rules.md", "Put it in force")
        as_ann(copy)
        text, line = ROOT / "home/ann/my.qvr", "elite first also-tree\n"
        self.assertEqual(text.read_text().count(f"\n{line}"), 1)
        text.write_text(text.read_text().replace(line, f"{line}\n{rule}"))
        self.assertTrue(as_ann(attempt, status=1).endswith(verdict))
        self.assertIn("be root ", as_ann(install.splitlines()[0], status=73))
        as_root(install, HOME)
        self.assertIn(" 9100 (Consumer line", as_ann("qvscan bot.eml", status=1))
        send_until(send, shown)


if __name__ == "__main__":
    enter()
    unittest.main()
