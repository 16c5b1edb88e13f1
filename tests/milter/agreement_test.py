# SPDX-License-Identifier: Apache-2.0
"""qvmilter behind a Postfix judges as qvscan does (agreement.py)."""
import re
import unittest

from agreement import AgreementTest, newest_received, with_crlf
from mail_server import HELLO
from milter import DEFAULT_RULES, EXAMPLES, example_zone
from postfix_test import PostfixTest

CLIENTS = (
    {"address": "203.0.113.17", "name": "dsl-203-0-113-17.pool.provider.example",
     "helo": "client.example"},
    {"address": "192.0.2.10", "name": "mail.example.org", "helo": "mail.example.org"},
    {"address": "203.0.113.66", "helo": "[203.0.113.66]"},
    {"address": "10.1.2.3", "helo": "gateway"},
    {"address": "IPv6:2001:db8:10::25", "name": "mail.example.org", "helo": "mail.example.org"},
)


def without_tls_details(written):
    """A header of Postfix without what it does not tell filters."""
    return (re.sub(r" key-exchange [^()]+ server-signature [^()]+ \([^()]+\) [^()]+\)", ")", written)
            .replace(" (No client certificate requested)", ""))


class WithPostfix(PostfixTest, AgreementTest):
    def test_of_all_examples(self):
        daemon, postfix = self.flow(shared=f'dns-data = "{example_zone()}"', rules=DEFAULT_RULES,
                                    own="log-details = 1")
        self.check_examples(daemon, postfix, CLIENTS)

    def test_of_clients_that_the_settings_name(self):
        daemon, postfix = self.flow(
            shared='internal = ["203.0.113.1"]\ntrusted-mta = ["203.0.113.2"]\n'
                   'trusted-antispam-mta = ["203.0.113.3"]\nscore = ["203.0.113.4=9"]',
            own="log-details = 1")
        example = with_crlf((EXAMPLES / "sendmail.eml").read_bytes())
        for number in range(1, 6):
            with self.subTest(number):
                self.check_message(daemon, postfix, number, example,
                                   address=f"203.0.113.{number}", helo="localhost")

    def test_of_clients_that_do_not_say_their_name(self):
        daemon, postfix = self.flow(own="log-details = 1")
        self.check_without_helo(daemon, postfix, CLIENTS)

    def test_of_clients_that_encrypt_and_log_in(self):
        daemon, postfix = self.flow(own="log-details = 1\nexempt-authenticated = 0")
        for number, (login, protocol) in enumerate(((None, "ESMTPS"), ("alice", "ESMTPSA")), 1):
            with self.subTest(protocol):
                delivered = self.passed(postfix, number, HELLO, tls=True, login=login, **CLIENTS[0])
                logged = self.check_same_judgement(daemon, delivered, number)
                written = newest_received(delivered)
                self.assertIn(f" with {protocol} id ", written)
                self.assertRegex(logged["hop"], r"\(using TLSv1\.3 with cipher \w+ \((\d+)/\1 bits\)\)")
                self.check_hop(logged, without_tls_details(written))

    def test_of_clients_that_announce_hostile_names(self):
        daemon, postfix = self.flow(shared='trusted-mta = ["203.0.113.1"]', own="log-details = 1")
        client = "192.0.2.55"
        names = (("good.example(good.example[203.0.113.1])", client), ("x[203.0.113.1]", client),
                 ("[203.0.113.1]", client), ('a"b;c', client), ("a\\by<x>@y", client),
                 # Received headers with "helo=" have another form, in which this is the address.
                 ("helo=x[203.0.113.1]", ""))
        for number, (name, address) in enumerate(names, 1):
            with self.subTest(name):
                self.check_message(daemon, postfix, number, HELLO, address=client, helo=name)
                self.assertEqual(self.scanned(daemon, postfix.newest(number))["ips"], address)


if __name__ == "__main__":
    unittest.main()
