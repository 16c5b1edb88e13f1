# SPDX-License-Identifier: Apache-2.0
"""Other programs that read our header, set up as docs/with-other-filters.md says: the recipes are
taken from that page."""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from mail_server import HELLO
from milter import wait_for
from pages import blocks
from planted import MESSAGES, results
from postfix_test import HAM, SPAMMER, PostfixTest



def recipes(heading):
    return blocks("with-other-filters.md", heading)


class OtherFilters(PostfixTest):
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

    def header_checks(self, heading):
        """The recipe of the page for main.cf, with its table in a folder of the test."""
        folder = self.folder()
        setting, table = recipes(heading)
        path = re.search("regexp:(.*)", setting).group(1)
        (folder / "checks").write_text(table)
        return setting.replace(path, str(folder / "checks"))

    def test_postfix_itself_can_act_on_our_header(self):
        _, postfix = self.flow(postfix={
            "settings": self.header_checks("Postfix header_checks")})
        self.assertEqual(postfix.send(HELLO, **SPAMMER)[0], 250)
        wait_for(postfix.held, "a message on hold")
        postfix.send(HELLO, **HAM)
        self.assertTrue(self.only_delivered(postfix)["X-QV-Deep-Header"].startswith("ham;"))

    def test_postfix_itself_can_remove_foreign_headers(self):
        heading = "Who sees the header, and why an outsider cannot plant it"
        daemon, postfix = self.flow(postfix={
            "settings": self.header_checks(heading), "default_action": "accept"})
        self.assertEqual(postfix.send(HELLO, **SPAMMER)[0], 250)
        self.assertIn(b"\nX-QV-Deep-Header: spam;", postfix.newest(1))
        daemon.stop()
        for number, message in enumerate(MESSAGES, 2):
            with self.subTest(message):
                self.assertEqual(postfix.send(message, **SPAMMER)[0], 250)
                self.assertEqual(results(postfix.newest(number)), [])


if __name__ == "__main__":
    unittest.main()
