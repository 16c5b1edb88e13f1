# SPDX-License-Identifier: Apache-2.0
"""What many processes make of an archive is what one program makes of it."""
import bz2
import csv
import io
import json
import os
import tarfile
import unittest

from dask_programs import ArchiveTest, mailbox, mails

import archive
import cluster

# Bodies with lines that look like the start of a message, and line breaks of both kinds.
TRICKY = mailbox([
    b"Subject: 1\n\nbody\nFrom here on\n\n>From there on\n\n From outside\n",
    b"\n", # no header field
    b"Subject: 3\n\n\n\n\n",
    b"Subject: 4\nFrom nobody: x\n\n" + b"x" * 300 + b"From \n",
    b"Subject: 5",
]) + mailbox([b"Subject: 6\n\n\n", b"Subject: 7\n\nbody\n"], b"\r\n") + b"From end\nSubject: 8"
SETUP = archive.Setup(None)


def read(pieces):
    """The messages and problems of pieces."""
    problems = archive.Problems()
    messages = [(source, message.headers)
                for source, message in archive.messages(pieces, SETUP, problems)]
    return messages, problems.all()


class Pieces(ArchiveTest):
    def test_a_mailbox_may_be_cut_anywhere(self):
        path = str(self.write("tricky.mbox", TRICKY))
        whole = read([archive.Piece(path)])
        self.assertEqual((len(whole[0]), len(whole[1])), (7, 1))
        for step in (*range(1, 60), 100, 500, len(TRICKY)):
            with self.subTest(step):
                ranges = [archive.starts(path, begin, min(begin + step, len(TRICKY)))
                          for begin in range(0, len(TRICKY), step)]
                pieces = archive.cut(path, len(TRICKY), ranges)
                self.assertEqual(read(pieces), whole)
                self.assertGreaterEqual(len(pieces), 8 if step < 10 else 1)

    def test_a_cut_beside_a_block_loses_nothing(self):
        """Files are searched in blocks; a start may lie across the edge of one."""
        for shift in range(-8, 3):
            with self.subTest(shift):
                head = b"From a\nSubject: 1\n\n"
                text = head.ljust(archive._BLOCK + shift, b"x") + b"\n\nFrom b\nSubject: 2\n\n"
                path = str(self.write("edge.mbox", text))
                self.assertEqual(archive.starts(path, 0, len(text)), (0, 2))
                self.assertEqual(archive.starts(path, 1, len(text)),
                                 (archive._BLOCK + shift + 2, 1))

    def test_a_mailbox_that_shrinks_is_reported(self):
        path = str(self.write("short.mbox", TRICKY))
        _, problems = read([archive.Piece(path, 0, len(TRICKY) + 1)])
        self.assertEqual(problems[-1].source, path)
        self.assertIn("it ended at byte", problems[-1].text)
        self.assertEqual(problems[-1].status, 66)

    def test_only_plain_mailboxes_are_cut(self):
        for name, content, expected in (("a.mbox", TRICKY, True),
                                        ("b.mbox.bz2", bz2.compress(TRICKY), False),
                                        ("c.eml", mails()[0], False)):
            with self.subTest(name):
                self.assertEqual(archive.is_plain_mailbox(str(self.write(name, content))), expected)

    def test_of_very_many_problems_some_are_shown(self):
        path = str(self.write("empty.mbox", mailbox([b"\n"] * 150)))
        _, problems = read([archive.Piece(path)])
        self.assertEqual(len(problems), 101)
        self.assertEqual(problems[-1], (path, "50 more are no messages", 65))

    def test_partitions_hold_all_pieces_in_order(self):
        pieces = [archive.Piece("x", 0, size) for size in (5, 5, 5, 100, 1, 1, 1, 1)]
        groups = list(archive.partitions(pieces, 10, 3))
        self.assertEqual([[piece.end for piece in group] for group in groups],
                         [[5, 5], [5], [100], [1, 1, 1], [1]])


class Agreement(ArchiveTest):
    """With qvscan and qvrules."""

    def make_mail(self):
        """Everything that can hold mail, and what is left out of a folder."""
        examples = mails()
        for number, message in enumerate(examples):
            self.write(f"mail/folder/{number}.eml", message)
        self.write("mail/folder.eml", examples[0]) # sorted by bytes, after the folder
        self.write("mail/a.mbox", mailbox(examples))
        self.write("mail/b.mbox.bz2", bz2.compress(mailbox(examples[:5])))
        packed = io.BytesIO()
        with tarfile.open(fileobj=packed, mode="w:gz") as tar:
            tar.add(self.folder / "mail/folder/1.eml", "inner/1.eml")
        self.write("mail/c.tar.gz", packed.getvalue())
        self.write("mail/Maildir/cur/1:2,S", examples[1])
        self.write("mail/Maildir/new/2", examples[2])
        self.write("mail/Maildir/tmp/3", examples[3])
        self.write("mail/Maildir/.Sent/cur/4:2,", examples[4])
        self.write("mail/Maildir/.Sent/tmp/5", examples[5])
        self.write("mail/Maildir/dovecot.index", b"no mail")
        self.write("mail/folder/.hidden.eml", examples[5])
        self.write("mail/folder/dovecot-uidlist", b"no mail")
        os.symlink("folder", self.folder / "mail/link")
        os.symlink("folder/1.eml", self.folder / "mail/link.eml")

    def make_broken_mail(self):
        """Names of what is no message, or cannot be read."""
        self.write("mail/empty.eml", b"")
        self.write("mail/text.eml", b"no mail\n")
        self.write("mail/broken.mbox.bz2", bz2.compress(mailbox(mails()))[:200])
        os.symlink("nowhere", self.folder / "dangling.eml")

    def scan(self, *arguments, status):
        """The rows and problems of scan_archive and of qvscan."""
        table, errors = self.folder / "table.csv", ""
        _, errors = self.run_program("scan_archive.py", "--config", self.config, "-o", table,
                                     "--workers", 2, *arguments, status=status)
        with table.open(newline="") as file:
            found = [tuple(row.values()) for row in csv.DictReader(file)]
        text, expected_errors = self.run_program(
            "qvscan", "--config", self.config, "--format", "csv", "--csv", "verdicts",
            *[each for each in arguments if not str(each).startswith("--partition")],
            status=status)
        columns = ("source", "verdict", "confidence", "node", "ruleName", "relay", "error")
        expected = [tuple(row[name] for name in columns)
                    for row in csv.DictReader(io.StringIO(text, newline=""))]
        self.assertEqual(found, expected)
        return errors.splitlines(), expected_errors.splitlines()

    def test_the_table_is_that_of_qvscan(self):
        self.make_mail()
        errors, expected = self.scan("--partition-bytes=5000", "mail", "mail/a.mbox:3", status=1)
        self.assertEqual((errors, expected), ([], []))
        self.assertFalse(list(self.folder.glob(".table.csv-*")), "the parts are gone")

    def test_what_is_broken_is_reported_by_name(self):
        self.make_mail()
        self.make_broken_mail()
        errors, expected = self.scan("--partition-bytes=5000", "mail", "dangling.eml",
                                     "mail/folder/1.eml", status=66)
        self.assertEqual(len(expected), 4)
        self.assertEqual(errors.pop(), "scan_archive: 4 inputs were left out")
        self.assertEqual(sorted(errors),
                         sorted(line.replace("qvscan:", "scan_archive:") for line in expected))

    def test_verdicts_can_be_counted(self):
        path = self.write("all.mbox", mailbox(mails()))
        output, _ = self.run_program("scan_archive.py", "--config", self.config, path, status=1)
        counts = dict(csv.reader(output.splitlines()[1:]))
        self.assertEqual(list(counts), ["spam", "ham", "none"])
        self.assertEqual(sum(map(int, counts.values())), len(mails()))
        self.assertGreater(int(counts["spam"]), 0)

    def test_the_rules_learned_are_the_same_to_the_byte(self):
        """Twice the examples of two sites, labelled arbitrarily, and more mail of one kind."""
        dynamic = [message for message in mails() if b"dynamic" in message or b"pool" in message]
        self.assertGreater(len(dynamic), 2)
        for site, name in enumerate(("site-a", "site-b")):
            self.write(f"{name}/ham.mbox", mailbox(mails()[site:] * 20))
            self.write(f"{name}/spam/1.mbox", mailbox(dynamic * 30 + mails()[::3]))
            self.write(f"{name}/spam/2.eml", mails()[site])
        mail = ["--ham", "site-a/ham.mbox", "site-b/ham.mbox", "--ham", "x=site-a/spam/2.eml",
                "--spam", "site-a/spam", '"a, b"=site-b/spam']
        # Settings count: a relay of the site is none of the sender's. Names are not looked up.
        self.config.write_text('internal = ["192.0.2.0/24"]\ndns = "system"\n[milter]\n')
        table = self.folder / "vectors.csv"
        self.run_program("learn_archive.py", *mail, "--config", self.config, "-o", table,
                         "--partition-bytes=2000")
        self.run_program("qvrules", "learn", *mail, "--config", self.config, "--table", "one.csv",
                         "-o", "one.qvr")
        self.assertEqual(table.read_bytes(), (self.folder / "one.csv").read_bytes())
        self.run_program("qvrules", "learn", "--vectors", table, "-o", "many.qvr")
        one = (self.folder / "one.qvr").read_bytes()
        self.assertEqual((self.folder / "many.qvr").read_bytes(), one)
        self.assertGreater(one.count(b"\n"), 10, "there is a tree")


class Settings(ArchiveTest):
    def test_workers_get_what_the_settings_file_says_and_the_changes(self):
        config = self.write("all.toml", b'internal = ["192.0.2.0/24"]\ndns = "system"\n'
                            b'[milter]\nsocket = "unix:x"\n')
        setup = cluster.setup(os.devnull, str(config), dns="off")
        self.assertEqual(json.loads(setup.settings), {"internal": ["192.0.2.0/24"], "dns": "off"})

    def test_workers_find_the_files_that_the_settings_name(self):
        self.write("names.zone", b"")
        config = self.write("all.toml", b'dns-data = "names.zone"\n')
        setup = cluster.setup(os.devnull, os.path.relpath(config))
        path = json.loads(setup.settings)["dns-data"]
        self.assertTrue(os.path.isabs(path), path)
        self.assertTrue(os.path.samefile(path, self.folder / "names.zone"), path)


class Errors(ArchiveTest):
    def check(self, program, *arguments, status, text):
        _, errors = self.run_program(program, *arguments, status=status)
        self.assertIn(text, errors)

    def test_usage(self):
        for program, arguments, text in (
                ("scan_archive.py", ["-"], "workers cannot read standard input"),
                ("scan_archive.py", [], "PATH"),
                ("scan_archive.py", ["x", "--workers", "0"], "--workers: it takes a whole number"),
                ("scan_archive.py", ["x", "--partition-bytes", "0"], "--partition-bytes: a size"),
                ("scan_archive.py", ["x", "--memory-limit", "much"], "--memory-limit: a size"),
                ("scan_archive.py", ["x", "--scheduler", "tcp://127.0.0.1:1"], "absolute paths"),
                ("learn_archive.py", [], "give mail: --ham, --spam")):
            with self.subTest(arguments):
                self.check(program, *arguments, status=64, text=text)

    def test_settings_and_rules_are_checked_before_workers_start(self):
        bad = self.write("bad.toml", b"interal = 1\n")
        self.check("scan_archive.py", "--config", bad, "x", status=78, text=f"{bad}:1")
        rules = self.write("bad.qvr", b"node {\n")
        self.check("scan_archive.py", "--rules", rules, "x", status=78, text=f"{rules}:1")

    def test_a_table_that_cannot_be_written(self):
        self.check("scan_archive.py", "-o", "nowhere/table.csv", "x", status=73, text="nowhere")

    def test_no_cluster(self):
        os.environ["DASK_DISTRIBUTED__COMM__TIMEOUTS__CONNECT"] = "1s"
        self.addCleanup(os.environ.pop, "DASK_DISTRIBUTED__COMM__TIMEOUTS__CONNECT")
        self.check("scan_archive.py", "--scheduler", "tcp://127.0.0.1:1", "/x", status=69,
                   text="scan_archive: tcp://127.0.0.1:1: ")


if __name__ == "__main__":
    unittest.main()
