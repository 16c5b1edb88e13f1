#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""mailboxes_test.py QVRULES RULES: mboxes that are cut and rewritten to measure the default rules.

RULES is the folder of the programs under test; what a rewritten message means is asked of QVRULES.
"""
import csv
import gzip
import pathlib
import subprocess
import sys
import tempfile
import unittest

QVRULES, RULES = sys.argv[1:3]
sys.path.insert(0, RULES)

import mailboxes

SEPARATOR = b"From x@example.invalid Mon Jan  1 10:00:00 2024\n"
RECEIVED = b"Received: from a.example (a.example [192.0.2.1])\n\tby mx.example.org; Mon, 1 Jan 2024\n"


class SentByAuthor(unittest.TestCase):
    def check(self, headers, wanted, body=b"\n"):
        self.assertEqual(mailboxes.sent_by_author(SEPARATOR + headers + body),
                         SEPARATOR + wanted + body)

    def test_author_becomes_envelope_sender(self):
        self.check(b"From: A <a@example.net>\nTo: b@example.org\n",
                   b"Return-Path: A <a@example.net>\nFrom: A <a@example.net>\nTo: b@example.org\n")

    def test_folded_author_stays_folded(self):
        self.check(b"To: b@example.org\nFrom: A\n\t<a@example.net>\nDate: today\n",
                   b"Return-Path: A\n\t<a@example.net>\n"
                   b"To: b@example.org\nFrom: A\n\t<a@example.net>\nDate: today\n")

    def test_other_envelope_senders_go(self):
        self.check(b"return-path:\n <x@example.com>\nX-QV-Orig-Env-From: y@example.com\n"
                   b"from: a@example.net\n",
                   b"Return-Path: a@example.net\nfrom: a@example.net\n")

    def test_last_author_counts(self):
        self.check(b"From: a@example.net\nFrom: b@example.net\n",
                   b"Return-Path: b@example.net\nFrom: a@example.net\nFrom: b@example.net\n")

    def test_no_author_no_envelope_sender(self):
        self.check(b"Return-Path: x@example.com\nTo: b@example.org\n", b"To: b@example.org\n")

    def test_body_is_left_alone(self):
        self.check(b"From: a@example.net\n", b"Return-Path: a@example.net\nFrom: a@example.net\n",
                   b"\nFrom: c@example.com\nReturn-Path: d@example.com\n\n")


class Mboxes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qv-mailboxes-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def mbox(self, senders):
        mails = [SEPARATOR + b"Return-Path: " + sender + b"\n" + RECEIVED +
                 b"From: a@author.example\nMessage-ID: <1@a.example>\n\n" for sender in senders]
        return mailboxes.write(self.folder, "mail", mails), mails

    def relations_to_envelope(self, path):
        """What the engine says of author and envelope sender, of each distinct vector."""
        table = self.folder / "table.csv"
        subprocess.run([QVRULES, "learn", "--dns", "off", "--ham", f"site={path}",
                        "--table", table], check=True, stderr=subprocess.DEVNULL)
        with open(table, newline="", encoding="utf-8") as rows:
            return sorted(row["from_matches_envelope"] for row in csv.DictReader(rows))

    def test_scan_takes_author_for_envelope_sender(self):
        path, _ = self.mbox([b"<x@elsewhere.invalid>", b"<a@author.example>"])
        self.assertEqual(self.relations_to_envelope(path), ["0", "1"])
        rewritten = mailboxes.all_sent_by_author({"site": {"ham": path}}, self.folder / "rewritten")
        self.assertEqual(self.relations_to_envelope(rewritten["site"]["ham"]), ["1"])
        self.assertEqual(len(mailboxes.messages(rewritten["site"]["ham"])), 2)

    def test_thirds_are_all_mail_in_order(self):
        path, mails = self.mbox([b"<%d@example.com>" % i for i in range(8)])
        packed = self.folder / "mail.mbox.gz"
        packed.write_bytes(gzip.compress(path.read_bytes()))
        first, last = mailboxes.thirds({"spam": packed}, self.folder)
        self.assertEqual(mailboxes.messages(first["spam"]), mails[:5])
        self.assertEqual(mailboxes.messages(last["spam"]), mails[5:])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
