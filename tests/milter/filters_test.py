# SPDX-License-Identifier: Apache-2.0
"""Other programs that read our header, set up as docs/with-other-filters.md says: the recipes are
taken from that page."""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from milter import wait_for
from postfix_test import HELLO, SPAMMER, PostfixTest

PAGE = pathlib.Path(os.environ["QV_DOCS"]) / "with-other-filters.md"
HAM = {"address": "192.0.2.56", "name": "mail.example.org", "helo": "mail.example.org"}


def recipes(heading):
    """The blocks of code below a heading of the page."""
    section = PAGE.read_text().split(f"\n## {heading}\n")[1].split("\n## ")[0]
    return re.findall(r"```[a-z]*\n(.*?)```", section, re.S)


class OtherFilters(PostfixTest):
    def judged(self):
        """A message that was judged spam and one that was judged ham, as delivered."""
        _, postfix = self.flow()
        postfix.send(HELLO, **SPAMMER)
        postfix.delivered(1)
        postfix.send(HELLO, **HAM)
        messages = postfix.delivered(2)
        spam = next(text for text in messages if b"X-QV-Deep-Header: spam;" in text)
        ham = next(text for text in messages if b"X-QV-Deep-Header: ham;" in text)
        return spam, ham

    def folder(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        pathlib.Path(folder.name).chmod(0o777) # other users' programs work in it
        return pathlib.Path(folder.name)

    def test_spamassassin_scores_our_header(self):
        folder = self.folder()
        (folder / "check.pre").write_text("loadplugin Mail::SpamAssassin::Plugin::Check\n")
        (folder / "local.cf").write_text(
            recipes("SpamAssassin")[0] + "add_header all Status _TESTS_\n")
        for message, expected, other in zip(self.judged(), ("QV_TRAIL_SPAM", "QV_TRAIL_HAM"),
                                            ("QV_TRAIL_HAM", "QV_TRAIL_SPAM")):
            done = subprocess.run(
                ["spamassassin", "--local", f"--siteconfigpath={folder}",
                 f"--prefspath={folder}/prefs", f"--configpath={folder}"],
                input=message, capture_output=True, env={**os.environ, "HOME": str(folder)})
            report = done.stdout.decode(errors="replace").split("\n\n")[0]
            self.assertIn(expected, report, done.stderr)
            self.assertNotIn(other, report)

    def test_sieve_files_by_our_header(self):
        folder = self.folder()
        (folder / "script.sieve").write_text(recipes("Dovecot Sieve")[0])
        for message, expected in zip(self.judged(), (True, False)):
            (folder / "message").write_bytes(message)
            done = subprocess.run(
                ["sieve-test", "-o", "mail_uid=65534", "-o", "mail_gid=65534", "-o",
                 f"mail_home={folder}", "-l", f"maildir:{folder}/mail",
                 str(folder / "script.sieve"), str(folder / "message")],
                capture_output=True, text=True)
            self.assertEqual("store message in folder: Junk" in done.stdout, expected,
                             done.stdout + done.stderr)

    def test_postfix_itself_can_act_on_our_header(self):
        folder = self.folder()
        checks = folder / "checks"
        checks.write_text(recipes("Postfix header_checks")[1])
        setting = recipes("Postfix header_checks")[0].replace("pcre:/etc/postfix/qv_header_checks",
                                                              f"regexp:{checks}")
        _, postfix = self.flow(postfix_settings=setting)
        self.assertEqual(postfix.send(HELLO, **SPAMMER)[0], 250)
        wait_for(postfix.held, "a message on hold")
        postfix.send(HELLO, **HAM)
        self.assertTrue(self.only_delivered(postfix)["X-QV-Deep-Header"].startswith("ham;"))


if __name__ == "__main__":
    unittest.main()
