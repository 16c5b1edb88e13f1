# SPDX-License-Identifier: Apache-2.0
"""qvmilter judges a message before Postfix adds the newest Received header; qvscan reads that header
in the message that was delivered. Both find the same: verdict, node and all attributes."""
import email
import re
import unittest

from milter import DEFAULT_RULES, EXAMPLES, one_line
from postfix_test import HELLO, PostfixTest

CLIENTS = (
    {"address": "203.0.113.17", "name": "dsl-203-0-113-17.pool.provider.example",
     "helo": "client.example"},
    {"address": "192.0.2.10", "name": "mail.example.org", "helo": "mail.example.org"},
    {"address": "203.0.113.66", "reverse": "mail.example.com", "helo": "[203.0.113.66]"},
    {"address": "10.1.2.3", "helo": "gateway"},
    {"address": "IPv6:2001:db8:10::25", "name": "mail.example.org", "helo": "mail.example.org"},
)


def with_crlf(path):
    return path.read_bytes().replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")


def recipient(message):
    """An address of its To header, or ours."""
    found = re.search(r"[\w.+-]+@[\w.-]+", str(email.message_from_bytes(message)["To"]))
    return found.group() if found else "b@example.net"


class SameJudgement(PostfixTest):
    def newest(self, postfix, count):
        postfix.delivered(count)
        files = (postfix.inbox / "new").glob("*")
        return max(files, key=lambda path: path.stat().st_mtime_ns).read_bytes()

    def check_hop(self, logged, delivered):
        """Of a client without TLS, the daemon writes the very header of Postfix, up to the queue
        number."""
        written = one_line(email.message_from_bytes(delivered)["Received"])
        self.assertTrue(written.startswith(one_line(logged["hop"])), (written, logged["hop"]))
        self.assertTrue(logged["hop"].endswith(" id " + logged["queue"]), logged["hop"])

    def test_daemon_and_qvscan_find_the_same_in_all_examples(self):
        daemon, postfix = self.flow(shared=f'dns-data = "{EXAMPLES}/dns.zone"', rules=DEFAULT_RULES,
                                    own="log-details = 1")
        examples = sorted(EXAMPLES.glob("*.eml"))
        self.assertGreater(len(examples), 30)
        number = 0
        for example in examples:
            content = with_crlf(example)
            for client in CLIENTS:
                number += 1
                with self.subTest(example.name, client=client):
                    reply = postfix.send(content, recipient=recipient(content), **client)
                    self.assertEqual(reply[0], 250, reply)
                    delivered = self.newest(postfix, number)
                    logged = self.check_same_judgement(daemon, delivered, number)
                    self.check_hop(logged, delivered)

    def test_they_agree_on_clients_that_announce_hostile_names(self):
        daemon, postfix = self.flow(shared='trusted-mta = ["203.0.113.1"]', own="log-details = 1")
        client = "192.0.2.55"
        names = (("good.example(good.example[203.0.113.1])", client), ("x[203.0.113.1]", client),
                 ("[203.0.113.1]", client), ('a"b;c', client), ("a\\by<x>@y", client),
                 # Received headers with "helo=" have another form, in which this is the address.
                 ("helo=x[203.0.113.1]", ""))
        for number, (name, address) in enumerate(names, 1):
            with self.subTest(name):
                self.assertEqual(postfix.send(HELLO, address=client, helo=name)[0], 250)
                delivered = self.newest(postfix, number)
                self.check_hop(self.check_same_judgement(daemon, delivered, number), delivered)
                self.assertEqual(self.scanned(daemon, delivered)["ips"], address)


if __name__ == "__main__":
    unittest.main()
