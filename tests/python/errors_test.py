#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Nothing that a caller, a message or a rule file does brings the interpreter down; errors say
where."""
import email.message
import os
import pathlib
import pickle
import random
import shutil
import tempfile
import threading
import unittest
import warnings

import qvdeepheader
from support import EXAMPLES, ROOT, SETTINGS, SOURCE


class Errors(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.scanner = qvdeepheader.Scanner(settings=SETTINGS)
        self.message = EXAMPLES[0].read_bytes()

    def path(self, name, text=None):
        path = pathlib.Path(self.folder.name, name)
        if text is not None:
            path.write_text(text)
        return path

    def place(self, kind, make):
        """File, line and column of the error; the text begins with them."""
        with self.assertRaises(kind) as caught:
            make()
        error = caught.exception
        self.assertIsInstance(error, qvdeepheader.Error)
        known = [str(part) for part in (error.file, error.line, error.column) if part is not None]
        self.assertTrue(str(error).startswith(":".join(known)), error)
        return error.file, error.line, error.column

    def testErrorsInSettingsFilesHaveTheirPlace(self):
        for text, line, column in (('dns = "off"\nspam-threshold = -1\n', 2, 18),
                                   ("interna = []\n", 1, 1)):
            file = self.path("bad.conf", text)
            place = self.place(qvdeepheader.SettingsError,
                               lambda file=file: qvdeepheader.Scanner(settings=file))
            self.assertEqual(place, (str(file), line, column))

    def testErrorsInRuleTextsHaveTheirPlace(self):
        rules = self.path("bad.qvr", "version 1\n\nnonsense 1\n")
        place = self.place(qvdeepheader.RulesError, lambda: qvdeepheader.Scanner(rules=rules))
        self.assertEqual((place[0], place[1]), (str(rules), 3))

    def testFilesThatAreMissingAreNamed(self):
        for kind, arguments in ((qvdeepheader.RulesError, {"rules": self.path("none.qvr")}),
                                (qvdeepheader.SettingsError, {"settings": self.path("none.conf")})):
            place = self.place(kind, lambda arguments=arguments: qvdeepheader.Scanner(**arguments))
            self.assertEqual(place, (str(*arguments.values()), None, None))

    def testSettingsOfAMappingAreChecked(self):
        for settings in ({"interna": []}, {"internal": ["x"]}, {"dns": ["a", "b"]}, {"jobs": -1},
                         {"spam-threshold": 96.0}, {"spam-threshold": None}, {"internal": [[]]},
                         {"dns-data": self.path("none.zone")}):
            with self.assertRaises(qvdeepheader.SettingsError, msg=settings):
                qvdeepheader.Scanner(settings=settings)
        with self.assertRaisesRegex(qvdeepheader.SettingsError, "did you mean \"env-from\""):
            self.scanner.scan(self.message, env_fro="a@b.example")

    def testSettingsThatAreHardlyMeantAreWarnedOf(self):
        with self.assertWarnsRegex(UserWarning, "spam-threshold"):
            qvdeepheader.Scanner(settings=SETTINGS | {"spam-threshold": 2})

    def testWhatIsNoMessageIsRefused(self):
        for nothing in (b"", b"no field", b"\0" * 1000, bytes(range(256)), b"\nBody"):
            with self.assertRaises(qvdeepheader.MessageError):
                self.scanner.scan(nothing)
        with self.assertRaisesRegex(qvdeepheader.MessageError, "^mine: .*1001 .*fields"):
            self.scanner.scan(qvdeepheader.Message(b"A: b\n" * 1001, "mine"))
        for wrong in (None, 3, "text", object(), ["x"]):
            with self.assertRaises(TypeError):
                self.scanner.scan(wrong)

    def testManyGoesOnAfterWhatCannotBeJudged(self):
        pathlib.Path(self.folder.name, "broken.eml.gz").write_bytes(b"\x1f\x8b\x08broken")
        found = [*qvdeepheader.messages(self.folder.name, "/nonexistent"), self.message, b"x"]
        for threads in (1, 2):
            broken, missing, good, bad = self.scanner.scan_many(found, threads=threads)
            self.assertIn("broken.eml.gz", broken.source)
            self.assertIsNotNone(broken.error)
            self.assertEqual(missing.source, "/nonexistent")
            self.assertIn("No such file", missing.error)
            self.assertIsNone(good.error)
            self.assertEqual((bad.verdict, bad.error),
                             ("none", "not a message: it has no header field"))

    def testANumberOfThreadsIsChecked(self):
        for wrong in (1_000_000, -1, "2"):
            with self.assertRaises((qvdeepheader.SettingsError, TypeError)):
                self.scanner.scan_many([], threads=wrong)

    def testNamesThatCannotBeReadAreWarnedOf(self):
        folder = self.path("rules")
        shutil.copytree(pathlib.Path(ROOT, "var/spool/etc/antispam"), folder)
        (folder / "qv.names").write_text("not a file of names")
        with self.assertWarnsRegex(UserWarning, "^/.*/rules: .*without names"):
            qvdeepheader.Scanner(rules=folder, settings=SETTINGS)

    def testAnErrorOfTheIteratorComesInItsTurn(self):
        def broken():
            yield self.message
            yield self.message
            raise KeyError("mine")
        for threads in (1, 2):
            answers = self.scanner.scan_many(broken(), threads=threads)
            self.assertEqual([next(answers).error, next(answers).error], [None, None])
            with self.assertRaisesRegex(KeyError, "mine"):
                next(answers)
            self.assertEqual(list(answers), [])
        answers = self.scanner.scan_many([self.message, "text"], threads=2)
        self.assertIsNone(next(answers).error)
        self.assertRaises(TypeError, next, answers)

    def testAHostileHeaderSectionIsOnlyAMessage(self):
        pieces = [b"Received: ", b"from ", b" by ", b"[", b"]", b"(", b")", b"@", b"<", b">",
                  b"192.0.2.1", b"\r\n ", b"\n", b"\0", b"\xff", b";", b"=?utf-8?b?", b"From: ",
                  b"a" * 5000, b"\\", b'"']
        dice = random.Random(7)
        hostile = [b"X: y\n" + b"".join(dice.choices(pieces, k=60)) for _ in range(500)]
        for answer in self.scanner.scan_many(hostile):
            self.assertIsNone(answer.error)
        for message in hostile[:20]:
            self.assertIsInstance(self.scanner.explain(message), dict)

    def testDamagedRulesAreRefusedOrLoaded(self):
        warnings.simplefilter("ignore")  # of names; unittest restores it
        dice = random.Random(8)
        good = pathlib.Path(ROOT, "var/spool/etc/antispam")
        for damage in range(100):
            folder = self.path(f"rules{damage}")
            folder.mkdir()
            for file in good.iterdir():
                data = bytearray(file.read_bytes())
                for _ in range(dice.randrange(4)):
                    data[dice.randrange(len(data))] = dice.randrange(256)
                (folder / file.name).write_bytes(data[:dice.randrange(len(data)) or None])
            try:
                scanner = qvdeepheader.Scanner(rules=folder, settings=SETTINGS)
            except qvdeepheader.RulesError:
                continue
            scanner.explain(self.message)

    def testOneThreadAtATimeTakesFromAnIterator(self):
        pipe = self.path("pipe")
        os.mkfifo(pipe)
        messages = qvdeepheader.messages(pipe)
        reader = threading.Thread(target=next, args=(messages,))
        reader.start()
        with pipe.open("wb") as out:  # the reader has opened it, and waits
            with self.assertRaisesRegex(ValueError, "another thread"):
                next(messages)
            out.write(self.message)
        reader.join()

    def testALaterScannerWithOtherRelaysTakesOver(self):
        judging = qvdeepheader.Scanner(settings=SETTINGS | {"spam-threshold": 0.5})
        self.scanner.scan(self.message)  # thresholds are each scanner's own
        later = qvdeepheader.Scanner(settings=SETTINGS | {"internal": ["192.0.2.0/24"]})
        for earlier in (self.scanner, judging):
            with self.assertRaisesRegex(RuntimeError, "later Scanner"):
                earlier.scan(self.message)
            with self.assertRaisesRegex(RuntimeError, "later Scanner"):
                earlier.scan_many([self.message])
        later.scan(self.message)

    def testWhatIsSeenCanPassBetweenProcesses(self):
        with self.assertRaises(qvdeepheader.SettingsError) as caught:
            qvdeepheader.Scanner(settings=self.path("bad.conf", "\ninterna = 1\n"))
        found = list(qvdeepheader.messages(EXAMPLES[0], "/nonexistent"))
        values = [*found, *self.scanner.scan_many([*found, b"x"])]
        self.assertEqual(pickle.loads(pickle.dumps(values)), values)
        error = pickle.loads(pickle.dumps(caught.exception))
        self.assertEqual((str(error), error.file, error.line, error.column),
                         (str(caught.exception), caught.exception.file, 2, 1))

    def testStatesThatNobodyPickledAreRefused(self):
        for kind in (qvdeepheader.Answer, qvdeepheader.Message):
            for state in ((), (1,), tuple(range(12)), (None, None, None)):
                with self.assertRaises((ValueError, RuntimeError, TypeError)):
                    kind.__new__(kind).__setstate__(state)

    def testAHeaderObjectIsText(self):
        message = email.message.Message()
        message["Subject"] = email.header.Header("grün", "utf-8")
        self.assertIsNone(self.scanner.scan(message).error)

    def testTheRulesOfThePackageAreUsedWhereNoneAreInstalled(self):
        text = (SOURCE / "data/rules/default.qvr").read_text()
        self.assertIn(f"\nversion {self.scanner.rule_version}\n", "\n" + text)


if __name__ == "__main__":
    unittest.main()
