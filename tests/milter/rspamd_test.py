# SPDX-License-Identifier: Apache-2.0
"""A real rspamd, set up on a private machine as docs/with-other-filters.md says, reads our header."""
import pathlib
import re
import subprocess
import unittest

from debian import unpacked
from mail_server import HELLO
from milter import wait_for
from pages import blocks
from postfix_test import HAM, SPAMMER, PostfixTest
from private_machine import NameServer, enter

RECIPE, ORDER = blocks("with-other-filters.md", "rspamd")
SETTINGS = pathlib.Path("/etc/rspamd/local.d")


class Rspamd(PostfixTest):
    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(NameServer().stop)
        (SETTINGS / "multimap.conf").write_text(RECIPE)
        # A header that names what was found. Addresses of the web are not looked at: preparing for
        # all top-level domains takes longer than the test.
        (SETTINGS / "milter_headers.conf").write_text('use = ["x-spamd-result"];\n')
        (SETTINGS / "options.inc").write_text('url_tld = "/etc/rspamd/domains";\n')
        pathlib.Path("/etc/rspamd/domains").write_text("org\n")
        process = subprocess.Popen(["rspamd", "-f", "-i"], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        cls.addClassCleanup(process.wait)
        cls.addClassCleanup(process.terminate)
        wait_for(lambda: cls.ask(HELLO), "rspamd", 120)

    @staticmethod
    def ask(message):
        """What rspamd finds in a message; nothing when it does not answer."""
        return subprocess.run(["rspamc"], input=message, capture_output=True).stdout.decode()

    def test_it_scores_our_header(self):
        for message, expected in zip(self.judged(), ("QV_TRAIL_SPAM (3.00)", "QV_TRAIL_HAM (-1.00)")):
            found = re.findall(r"QV_TRAIL\w+ \(.*?\)", self.ask(message))
            self.assertEqual(found, [expected])

    def test_it_finds_nothing_in_a_message_without_our_header(self):
        self.assertNotIn("QV_TRAIL", self.ask(HELLO))

    def test_behind_qvmilter_it_sees_our_header(self):
        # flow() names our socket, and then these.
        later = ORDER.split("accept }, ")[1].strip()
        _, postfix = self.flow(later_milters=[later])
        for number, (client, expected) in enumerate(((SPAMMER, "SPAM"), (HAM, "HAM")), 1):
            self.assertEqual(postfix.send(HELLO, **client)[0], 250)
            self.assertRegex(postfix.newest(number).decode(), f"\n\\s+QV_TRAIL_{expected}\\(")


if __name__ == "__main__":
    enter(lambda: unpacked("rspamd"))
    unittest.main()
