# SPDX-License-Identifier: Apache-2.0
"""qvmilter in the mail flow of a real Postfix."""
import email
import email.policy
import json
import os
import pathlib
import re
import subprocess
import threading
import unittest

from milter import MilterTest, QVSCAN, wait_for
from postfix import Postfix

EXAMPLES = pathlib.Path(os.environ["QV_EXAMPLES"])
HELLO = b"From: a@example.org\r\nTo: b@example.net\r\nSubject: hello\r\n\r\nhello\r\n"
SPAMMER = {"address": "192.0.2.55", "helo": "localhost"}


@unittest.skipUnless(os.geteuid() == 0, "Postfix starts as root only")
class PostfixTest(MilterTest):
    def flow(self, **settings):
        """A daemon and a Postfix that asks it."""
        more = settings.pop("postfix_settings", "")
        own = settings.pop("own", "") + '\nsocket-group = "postfix"'
        daemon = self.daemon(own=own, **settings).start()
        postfix = Postfix(f"unix:{daemon.socket}", settings=more)
        self.addCleanup(postfix.stop)
        return daemon, postfix.start()

    def only_delivered(self, postfix):
        messages = postfix.delivered(1)
        self.assertEqual(len(messages), 1)
        return email.message_from_bytes(messages[0], policy=email.policy.compat32)


class Actions(PostfixTest):
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
        self.assertEqual(postfix.send(HELLO, address="192.0.2.56", name="mail.example.org",
                                      helo="mail.example.org")[0], 250)
        self.assertTrue(self.only_delivered(postfix)["X-QV-Deep-Header"].startswith("ham;"))

    def test_result_headers_that_a_sender_wrote_are_removed(self):
        _, postfix = self.flow()
        planted = b"X-QV-Deep-Header: ham; node=1\r\n" * 3 + b"x-qv-deep-header: ham\r\n" + HELLO
        postfix.send(planted, **SPAMMER)
        message = self.only_delivered(postfix)
        self.assertEqual([value.split(";")[0] for value in message.get_all("X-QV-Deep-Header")],
                         ["spam"])

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


class SameJudgement(PostfixTest):
    def scanned(self, daemon, message):
        """What qvscan says of a message as it was delivered."""
        path = daemon.folder / "delivered.eml"
        path.write_bytes(message)
        done = subprocess.run([QVSCAN, "--config", str(daemon.config), "--format", "json", str(path)],
                              capture_output=True, text=True)
        return json.loads(done.stdout)

    def test_daemon_and_qvscan_say_the_same_of_all_examples(self):
        rules = os.environ["QV_DEFAULT_TEXT"]
        daemon, postfix = self.flow(shared=f'dns-data = "{EXAMPLES}/dns.zone"',
                                    rules=pathlib.Path(rules).read_text().replace("{", "{{")
                                    .replace("}", "}}"))
        examples = sorted(EXAMPLES.glob("*.eml"))
        self.assertGreater(len(examples), 30)
        for number, example in enumerate(examples, 1):
            with self.subTest(example.name):
                content = example.read_bytes().replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")
                parsed = email.message_from_bytes(content, policy=email.policy.compat32)
                recipient = re.search(r"[\w.+-]+@[\w.-]+", str(parsed["To"] or "b@example.net"))
                code, text = postfix.send(
                    content, address="203.0.113.17", helo="client.example",
                    name="dsl-203-0-113-17.pool.provider.example",
                    recipient=recipient.group() if recipient else "b@example.net")
                self.assertEqual(code, 250, text)
                delivered = self.newest(postfix, number)
                header = email.message_from_bytes(delivered)["X-QV-Deep-Header"]
                record = self.scanned(daemon, delivered)
                self.assertEqual(header.split(";")[0], record["verdict"])
                self.assertIn(f"node={record['node']}", header)
                if record["ips"]:
                    self.assertIn(f"ips={record['ips']}", header)

    def test_they_agree_on_clients_that_announce_hostile_names(self):
        daemon, postfix = self.flow(shared='trusted-mta = ["203.0.113.1"]')
        client = "192.0.2.55"
        names = (("good.example(good.example[203.0.113.1])", client), ("x[203.0.113.1]", client),
                 ("[203.0.113.1]", client), ('a"b;c', client), ("a\\by<x>@y", client),
                 # Received headers with "helo=" have another form, in which this is the address.
                 ("helo=x[203.0.113.1]", ""))
        for number, (name, address) in enumerate(names, 1):
            with self.subTest(name):
                self.assertEqual(postfix.send(HELLO, address=client, helo=name)[0], 250)
                delivered = self.newest(postfix, number)
                record = self.scanned(daemon, delivered)
                header = email.message_from_bytes(delivered)["X-QV-Deep-Header"]
                self.assertEqual(record["ips"], address)
                self.assertEqual("ips=" in header, address != "")
                self.assertIn(address, header)
                self.assertTrue(header.startswith(f"{record['verdict']}; node={record['node']}"))

    def newest(self, postfix, count):
        postfix.delivered(count)
        files = (postfix.inbox / "new").glob("*")
        return max(files, key=lambda path: path.stat().st_mtime_ns).read_bytes()


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
