# SPDX-License-Identifier: Apache-2.0
"""qvmilter in the mail flow of a real Sendmail, set up as docs/sendmail.md says. The Sendmail finds the
names of its clients itself."""
import email
import unittest

from agreement import AgreementTest, newest_received
from debian import unpacked
from mail_server import HELLO
from milter import DEFAULT_RULES, example_zone
from planted import PlantedTest
from private_machine import CLIENTS, NameServer, enter
from sendmail import PACKAGES, SOCKET, Sendmail

SPAMMER = {"address": "192.0.2.55", "helo": "localhost"}

class SendmailTest(AgreementTest):
    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(NameServer().stop)

    def flow(self, **settings):
        """A daemon and a Sendmail that asks it."""
        daemon = self.daemon(socket=SOCKET, **settings).start()
        sendmail = Sendmail()
        self.addCleanup(sendmail.stop)
        return daemon, sendmail.start()


class Actions(SendmailTest, PlantedTest):
    def test_an_accepted_message_has_the_header_above_all_that_a_sender_can_write(self):
        _, sendmail = self.flow()
        self.assertEqual(sendmail.send(HELLO, **SPAMMER)[0], 250)
        message = email.message_from_bytes(sendmail.newest(1))
        names = message.keys()
        self.assertLess(names.index("X-QV-Deep-Header"), names.index("Received"))
        self.assertEqual(message["X-QV-Deep-Header"],
                         "spam; node=7; confidence=0.99; support=10; ips=192.0.2.55")

    def test_spam_can_be_rejected_at_the_door(self):
        _, sendmail = self.flow(own='on-spam = "reject"\nreject-text = "100% spam"')
        self.assertEqual(sendmail.send(HELLO, **SPAMMER), (550, "5.7.1 100% spam"))

    def test_result_headers_that_a_sender_wrote_are_removed(self):
        _, sendmail = self.flow()
        self.check_planted(sendmail, [b"spam"], **SPAMMER)

    def test_quarantined_spam_stays_in_the_queue(self):
        _, sendmail = self.flow(own='on-spam = "quarantine"')
        self.assertEqual(sendmail.send(HELLO, **SPAMMER)[0], 250)
        self.assertIn("quarantine: spam; node=7;", sendmail.held().lower())


class Agreement(SendmailTest):
    def test_of_all_examples(self):
        daemon, sendmail = self.flow(shared=f'dns-data = "{example_zone()}"',
                                     rules=DEFAULT_RULES, own="log-details = 1")
        self.check_examples(daemon, sendmail, CLIENTS)

    def test_of_clients_that_encrypt(self):
        daemon, sendmail = self.flow(own="log-details = 1")
        self.check_message(daemon, sendmail, 1, HELLO, tls=True, **CLIENTS[0])
        self.assertIn(" with ESMTPS id ", daemon.judged(1)["hop"])

    def test_of_the_header_of_clients_that_log_in(self):
        daemon, sendmail = self.flow(own="log-details = 1\nexempt-authenticated = 0")
        for number, (tls, protocol) in enumerate(((False, "ESMTPA"), (True, "ESMTPSA")), 1):
            with self.subTest(protocol):
                delivered = self.passed(sendmail, number, HELLO, login=True, tls=tls, **CLIENTS[0])
                logged = daemon.judged(number)
                self.check_hop(logged, newest_received(delivered))
                self.assertIn(f" with {protocol} id ", logged["hop"])
                # The daemon was told to judge such clients. Later scans of the message skip them.
                self.assertEqual((logged["verdict"], logged["node"]), ("none", "4"))
                self.assertEqual(self.scanned(daemon, delivered)["node"], 0)

    def test_of_clients_that_do_not_say_their_name(self):
        daemon, sendmail = self.flow(shared=f'dns-data = "{example_zone()}"',
                                     own="log-details = 1")
        self.check_without_helo(daemon, sendmail, CLIENTS)


if __name__ == "__main__":
    enter(lambda: unpacked(*PACKAGES))
    unittest.main()
