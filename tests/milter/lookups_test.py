# SPDX-License-Identifier: Apache-2.0
"""qvmilter behind a Postfix that looks its clients up judges as qvscan does, also those whose names
are forged (agreement.py)."""
import unittest

from agreement import AgreementTest
from mail_server import HELLO
from milter import DEFAULT_RULES, example_zone
from postfix_test import PostfixTest
from private_machine import CLIENTS, NameServer, enter


class WithPostfixThatLooksUp(PostfixTest, AgreementTest):
    def setUp(self):
        self.addCleanup(NameServer().stop)

    def test_of_attributes_that_no_rule_reads(self):
        """The rules read nothing that comes from DNS, but the log shows all attributes."""
        daemon, postfix = self.flow(shared='dns = "auto"', own="log-details = 1",
                                    postfix={"looks_up": True})
        for number, client in enumerate(CLIENTS, 1):
            with self.subTest(client=client):
                self.check_message(daemon, postfix, number, HELLO, **client)

    def test_of_all_examples(self):
        daemon, postfix = self.flow(shared=f'dns-data = "{example_zone()}"', rules=DEFAULT_RULES,
                                    own="log-details = 1", postfix={"looks_up": True})
        self.check_examples(daemon, postfix, CLIENTS)


if __name__ == "__main__":
    enter()
    unittest.main()
