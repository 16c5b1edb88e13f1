# SPDX-License-Identifier: Apache-2.0
"""qvmilter in the mail flow of a real Postfix."""
import email
import email.policy
import os
import threading
import unittest

from mail_server import HELLO
from milter import MilterTest, wait_for
from planted import PlantedTest
from postfix import Postfix

SPAMMER = {"address": "192.0.2.55", "helo": "localhost"}
HAM = {"address": "192.0.2.56", "name": "mail.example.org", "helo": "mail.example.org"}


@unittest.skipUnless(os.geteuid() == 0, "Postfix starts as root only")
class PostfixTest(MilterTest):
    def flow(self, own="", later_milters=(), postfix=None, **settings):
        """A daemon and a Postfix, with these arguments, that asks it."""
        daemon = self.daemon(own=own + '\nsocket-group = "postfix"', **settings).start()
        mail_server = Postfix(f"unix:{daemon.socket}", *later_milters, **(postfix or {}))
        self.addCleanup(mail_server.stop)
        return daemon, mail_server.start()

    def judged(self):
        """A message that was judged spam and one that was judged ham, as delivered."""
        _, postfix = self.flow()
        postfix.send(HELLO, **SPAMMER)
        spam = postfix.newest(1)
        postfix.send(HELLO, **HAM)
        ham = postfix.newest(2)
        self.assertIn(b"\nX-QV-Deep-Header: spam;", spam)
        self.assertIn(b"\nX-QV-Deep-Header: ham;", ham)
        return spam, ham

    def only_delivered(self, postfix):
        messages = postfix.delivered(1)
        self.assertEqual(len(messages), 1)
        return email.message_from_bytes(messages[0], policy=email.policy.compat32)


class Actions(PostfixTest, PlantedTest):
    def test_an_accepted_message_has_the_header_above_all_that_a_sender_can_write(self):
        _, postfix = self.flow()
        self.assertEqual(postfix.send(HELLO, **SPAMMER)[0], 250)
        message = self.only_delivered(postfix)
        names = message.keys()
        self.assertLess(names.index("X-QV-Deep-Header"), names.index("From"))
        self.assertRegex(message["X-QV-Deep-Header"],
                         r"^spam; node=7; confidence=0.99; support=10; ips=192.0.2.55$")

    def test_spam_can_be_rejected_at_the_door(self):
        _, postfix = self.flow(own='on-spam = "reject"\nreject-text = "100% spam"')
        self.assertEqual(postfix.send(HELLO, **SPAMMER), (550, "5.7.1 100% spam"))

    def test_a_failure_can_ask_the_client_to_come_again(self):
        _, postfix = self.flow(own='on-no-rules = "tempfail"', rules=None)
        self.assertEqual(postfix.send(HELLO, **SPAMMER)[0], 451)

    def test_quarantine_is_the_hold_queue(self):
        _, postfix = self.flow(own='on-spam = "quarantine"')
        self.assertEqual(postfix.send(HELLO, **SPAMMER)[0], 250)
        wait_for(postfix.held, "a message on hold")

    def test_discarded_spam_is_accepted_and_gone(self):
        _, postfix = self.flow(own='on-spam = "discard"')
        self.assertEqual(postfix.send(HELLO, **SPAMMER)[0], 250)
        self.assertEqual(postfix.send(HELLO, **HAM)[0], 250)
        self.assertTrue(self.only_delivered(postfix)["X-QV-Deep-Header"].startswith("ham;"))

    def test_result_headers_that_a_sender_wrote_are_removed(self):
        _, postfix = self.flow(own="add-reasons = 1")
        self.check_planted(postfix, [b"Node", b"spam"], **SPAMMER)

    def test_those_of_an_authenticated_client_are_removed_too(self):
        _, postfix = self.flow()
        self.check_planted(postfix, [], login="alice", **SPAMMER)

    def test_an_authenticated_client_is_not_judged(self):
        _, postfix = self.flow()
        postfix.send(HELLO, login="alice", **SPAMMER)
        self.assertNotIn("X-QV-Deep-Header", self.only_delivered(postfix))

    def test_an_ipv6_client_is_not_judged_by_address(self):
        _, postfix = self.flow()
        postfix.send(HELLO, address="IPv6:2001:db8::5", helo="localhost")
        self.assertEqual(self.only_delivered(postfix)["X-QV-Deep-Header"], "none; node=0")

    def test_a_message_without_any_header_is_judged_by_its_client(self):
        _, postfix = self.flow()
        postfix.send(b"\r\nhello\r\n", **SPAMMER)
        self.assertTrue(self.only_delivered(postfix)["X-QV-Deep-Header"].startswith("spam;"))


class UnderLoad(PostfixTest):
    MESSAGES = 300
    CLIENTS = 6

    def load(self, postfix, results):
        """Sends numbered messages from several clients at once; their numbers by reply code."""
        numbers = iter(range(self.MESSAGES))
        lock = threading.Lock()

        def work():
            while True:
                with lock:
                    number = next(numbers, None)
                if number is None:
                    return
                message = HELLO.replace(b"hello\r\n\r\n", b"hello\r\nX-Number: %d\r\n\r\n" % number)
                code, _ = postfix.send(message, **SPAMMER)
                with lock:
                    results.setdefault(code, set()).add(number)

        threads = [threading.Thread(target=work) for _ in range(self.CLIENTS)]
        for thread in threads:
            thread.start()
        return threads

    def check_delivered(self, postfix, results):
        accepted = results.get(250, set())
        messages = [email.message_from_bytes(message)
                    for message in postfix.delivered(len(accepted))]
        self.assertEqual(sorted(int(message["X-Number"]) for message in messages),
                         sorted(accepted))
        for message in messages:
            self.assertTrue(message["X-QV-Deep-Header"].startswith("spam;"))

    def test_reloads_under_load_lose_and_repeat_nothing(self):
        daemon, postfix = self.flow()
        results = {}
        threads = self.load(postfix, results)
        version = 1
        while any(thread.is_alive() for thread in threads):
            version += 1
            daemon.install(version)
            daemon.reload()
            daemon.wait_for_log(f"rule version {version}")
        for thread in threads:
            thread.join()
        self.assertEqual(set(results), {250})
        self.check_delivered(postfix, results)

    def test_a_killed_daemon_loses_nothing_and_lets_nothing_through(self):
        daemon, postfix = self.flow()
        results = {}
        threads = self.load(postfix, results)
        for count in (20, 60):
            wait_for(lambda: len(results.get(250, ())) >= count, f"{count} messages")
            daemon.kill()
            daemon.start()
        for thread in threads:
            thread.join()
        self.assertLessEqual(set(results), {250, 421, 451})
        self.assertEqual(sum(map(len, results.values())), self.MESSAGES)
        self.check_delivered(postfix, results)


if __name__ == "__main__":
    unittest.main()
