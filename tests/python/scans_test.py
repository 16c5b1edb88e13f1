#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What the package says of messages is what qvscan says of them."""
import array
import csv
import email
import email.policy
import gzip
import mailbox
import os
import pathlib
import tarfile
import tempfile
import threading
import unittest

import qvdeepheader
from support import EXAMPLES, SETTINGS, SOURCE, qvscan, records


def described(answer):
    """An answer with the keys of a JSON record."""
    return {"source": answer.source, "verdict": answer.verdict, "node": answer.node,
            "confidence": answer.confidence, "support": answer.support,
            "adjust": answer.adjustment, "addresses": list(answer.addresses),
            "reasons": answer.reasons, "ruleName": answer.name, "ruleSentence": answer.sentence}


class Scans(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scanner = qvdeepheader.Scanner(settings=SETTINGS)
        cls.folder = tempfile.TemporaryDirectory()
        cls.box = pathlib.Path(cls.folder.name, "all.mbox")
        with cls.box.open("wb") as out:
            for example in EXAMPLES * 20:
                out.write(b"From a@b.example Thu Jan  1 00:00:00 2026\n" + example.read_bytes() +
                          b"\n\n")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def testAnswersAreTheRecordsOfQvscan(self):
        for record in records(*EXAMPLES):
            answer = self.scanner.scan(pathlib.Path(record["source"]).read_bytes())
            expected = {key: record.get(key) for key in described(answer)}
            self.assertEqual(described(answer) | {"source": record["source"]}, expected)
            self.assertIsNone(answer.error)

    def testAnExplanationIsTheRecordOfQvscan(self):
        for record in records("--explain", *EXAMPLES):
            message = pathlib.Path(record["source"]).read_bytes()
            explained = self.scanner.explain(qvdeepheader.Message(message, record["source"]))
            self.assertEqual(explained, record)
            answer = self.scanner.scan(message)
            self.assertEqual(answer.is_judged, bool(record["explain"]["values"]))

    def testAVectorIsTheRowOfQvscan(self):
        rows = csv.reader(qvscan("--format", "csv", *EXAMPLES))
        names = tuple(next(rows)[1:])
        self.assertEqual(names, qvdeepheader.attributes)
        seen = set()
        for source, *values in rows:
            vector = self.scanner.vector(pathlib.Path(source).read_bytes())
            seen.add(vector is None)
            if vector is None:
                self.assertEqual(set(values), {""})
            else:
                self.assertIsInstance(vector, array.array)
                self.assertEqual(list(vector), [int(value) for value in values])
        self.assertEqual(seen, {True, False})

    def testKnownFactsCountAsInQvscan(self):
        for example in EXAMPLES:
            [record] = records("--explain", "--env-from", "a@other.example", "--client-score", "7",
                               example)
            explained = self.scanner.explain(example.read_bytes(), env_from="a@other.example",
                                             client_score=7)
            self.assertEqual(explained["explain"], record["explain"])

    def testMessagesOfTheEmailPackageAreJudgedLikeTheirBytes(self):
        for policy in (email.policy.compat32, email.policy.default, email.policy.SMTP):
            for example in EXAMPLES:
                message = example.read_bytes()
                parsed = email.message_from_bytes(message, policy=policy)
                self.assertEqual(self.scanner.scan(parsed), self.scanner.scan(message), example)

    def testAMessageThatIsPutTogetherIsJudged(self):
        message = email.message.EmailMessage()
        message["Received"] = "from a.example (b.example [192.0.2.1]) by c.example; date"
        message["From"] = "Jörg <joerg@a.example>"
        self.assertTrue(self.scanner.scan(message).is_judged)

    def testALineBreakCannotSmuggleAFieldIn(self):
        message = email.message.Message()
        message["Subject"] = "x\nReceived: from a.example (b.example [192.0.2.1]) by c.example"
        with self.assertRaisesRegex(ValueError, "Subject has a line break"):
            self.scanner.scan(message)

    def testManyKeepTheirOrderOnAnyNumberOfThreads(self):
        expected = [described(answer) for answer in map(self.scanner.scan,
                                                        qvdeepheader.messages(self.box))]
        self.assertEqual(len(expected), 20 * len(EXAMPLES))
        self.assertEqual(expected[2]["source"], f"{self.box}:3")
        for threads in (0, 1, 2, 7):
            answers = self.scanner.scan_many(qvdeepheader.messages(self.box), threads=threads)
            self.assertEqual([described(answer) for answer in answers], expected)

    def testManyTakesWhateverScanTakes(self):
        message = EXAMPLES[0].read_bytes()
        kinds = [message, bytearray(message), memoryview(message),
                 email.message_from_bytes(message), qvdeepheader.Message(message)]
        for threads in (1, 2):
            answers = list(self.scanner.scan_many(iter(kinds), threads=threads))
            self.assertEqual(answers, [self.scanner.scan(message)] * len(kinds))

    def testMailIsFoundInFoldersMailboxesAndArchives(self):
        top = pathlib.Path(self.folder.name)
        message = EXAMPLES[0].read_bytes()
        maildir = mailbox.Maildir(top / "Maildir")
        maildir.add(message)
        with gzip.open(top / "one.eml.gz", "wb") as out:
            out.write(message)
        with tarfile.open(top / "archive.tar", "w") as out:
            out.add(EXAMPLES[0], "in/one.eml")
        found = list(qvdeepheader.messages(top / "Maildir", str(top / "one.eml.gz"),
                                           os.fsencode(top / "archive.tar"), f"{self.box}:2"))
        self.assertEqual([each.error for each in found], [None] * 4)
        self.assertEqual(found[2].source, f"{top}/archive.tar/in/one.eml")
        self.assertEqual(found[3].source, f"{self.box}:2")
        section = message[:message.index(b"\n\n") + 2]
        self.assertEqual([each.headers for each in found[:3]], [section] * 3)

    def testFilesAreThoseThatMessagesReads(self):
        top = pathlib.Path(self.folder.name, "tree")
        for name in ("b/two.eml", "a.eml", ".hidden/x.eml", "M/cur/1", "M/new/2", "M/tmp/3",
                     "M/dovecot.index"):
            (top / name).parent.mkdir(parents=True, exist_ok=True)
            (top / name).write_bytes(EXAMPLES[0].read_bytes())
        paths = [top, f"{self.box}:2", "/nonexistent"]
        files = list(qvdeepheader.files(*paths))
        self.assertEqual(files, [message.source for message in qvdeepheader.messages(*paths)])
        self.assertEqual(files[:4], [f"{top}/{name}" for name in ("M/cur/1", "M/new/2", "a.eml",
                                                                  "b/two.eml")])

    def testOtherThreadsRunWhileOneWaitsForInput(self):
        pipe = pathlib.Path(self.folder.name, "pipe")
        os.mkfifo(pipe)
        found = []
        reader = threading.Thread(target=lambda: found.extend(
            self.scanner.scan_many(qvdeepheader.messages(pipe))))
        reader.start()
        with pipe.open("wb") as out:  # nobody would come here if the reader kept the others waiting
            out.write(EXAMPLES[0].read_bytes())
        reader.join()
        self.assertEqual(len(found), 1)

    def testAnAnswerDoesNotWaitForTheNextMessage(self):
        pipe = pathlib.Path(self.folder.name, "slow")
        os.mkfifo(pipe)
        answers = self.scanner.scan_many(qvdeepheader.messages(pipe), threads=2)
        found = []
        isFirstThere = threading.Event()

        def read():
            for answer in answers:
                found.append(answer.source)
                isFirstThere.set()
        reader = threading.Thread(target=read)
        reader.start()
        body = b"A line of the body.\n" * 100  # enough to tell a mailbox from an archive
        mail = (b"From a@b.example Thu Jan  1 00:00:00 2026\n" + EXAMPLES[0].read_bytes() + b"\n" +
                body + b"\n")
        with pipe.open("wb") as out:
            out.write(mail)
            out.flush()
            isFirstThere.wait()  # the writer sends no more before
            out.write(mail)
        reader.join()
        self.assertEqual(found, [f"{pipe}:1", f"{pipe}:2"])

    def testMessagesBelongToAScanWhileItLasts(self):
        for threads in (2, 7):
            messages = qvdeepheader.messages(self.box)
            answers = self.scanner.scan_many(messages, threads=threads)
            first = next(answers)
            with self.assertRaisesRegex(ValueError, "scan is reading these messages"):
                next(messages)
            with self.assertRaisesRegex(ValueError, "scan is reading these messages"):
                next(self.scanner.scan_many(messages, threads=threads))
            self.assertEqual(1 + sum(1 for _ in answers), 20 * len(EXAMPLES))
            self.assertEqual(first.source, f"{self.box}:1")
            self.assertEqual(list(messages), [])  # free, and at their end

    def testARuleTextIsCompiledForAScanner(self):
        rules = pathlib.Path(self.folder.name, "own.qvr")
        rules.write_text((SOURCE / "data/rules/starter.qvr").read_text())
        own = qvdeepheader.Scanner(rules=rules, settings=SETTINGS)
        verdicts = [[scanner.scan(example.read_bytes()).node for example in EXAMPLES]
                    for scanner in (own, self.scanner)]
        self.assertNotEqual(verdicts[0], verdicts[1])

    def testSettingsAreCheckedAndMeanTheSameInAnotherFolder(self):
        folder = pathlib.Path(self.folder.name)
        (folder / "site.conf").write_text(
            'internal = ["10.0.0.0/8", "192.0.2.1/32"]\ndns-data = "names.zone"\nmax-hops = 40\n')
        file = os.path.relpath(folder / "site.conf")
        seen = qvdeepheader.settings(file)
        self.assertEqual({name: seen[name] for name in ("internal", "max-hops")},
                         {"internal": ["10.0.0.0/8", "192.0.2.1/32"], "max-hops": "40"})
        self.assertTrue(os.path.isabs(seen["dns-data"]))
        self.assertEqual(os.path.normpath(seen["dns-data"]), str(folder / "names.zone"))
        self.assertEqual(qvdeepheader.settings(seen), seen)
        self.assertEqual(qvdeepheader.settings(None), {})
        with self.assertRaises(qvdeepheader.SettingsError):
            qvdeepheader.settings({"max-hops": -1})

    def testIPv6RelaysAreJudgedIfTheSettingsSaySo(self):
        message = (SOURCE / "examples/ipv6-newest-hop.eml").read_bytes()
        hops = []
        for ipv6 in ("stop", "judge"):
            scanner = qvdeepheader.Scanner(settings={**SETTINGS, "ipv6": ipv6})
            hops.append(scanner.explain(message)["explain"]["hopCount"])
            self.assertEqual(scanner.scan(message).is_judged, ipv6 == "judge")
        # The scanner of the class set other relays of the process in force.
        type(self).scanner = qvdeepheader.Scanner(settings=SETTINGS)
        self.assertEqual(hops, [0, 2])
        with self.assertRaises(qvdeepheader.SettingsError):
            qvdeepheader.settings({"ipv6": "yes"})

    def testWhatCannotBeReadHasTheExitStatusOfQvscan(self):
        no_message = pathlib.Path(self.folder.name, "no-message")
        no_message.write_text("\nA body.\n")
        statuses = [each.exit_status
                    for each in qvdeepheader.messages(EXAMPLES[0], no_message, "/nonexistent")]
        self.assertEqual(statuses, [0, 65, 66])

    def testASettingsFileIsThatOfThePrograms(self):
        file = pathlib.Path(self.folder.name, "site.conf")
        file.write_text('dns = "off"\ninternal = ["10.0.0.0/8"]\n\n[milter]\nmax-scans = 5\n')
        same = qvdeepheader.Scanner(settings=file)
        for example in EXAMPLES:
            self.assertEqual(same.scan(example.read_bytes()),
                             self.scanner.scan(example.read_bytes()))


if __name__ == "__main__":
    unittest.main()
