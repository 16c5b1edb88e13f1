# SPDX-License-Identifier: Apache-2.0
"""A mail server asks qvmilter before it adds the newest Received header; qvscan reads that header in
the message that was delivered. Both find the same: verdict, node and all attributes."""
import email
import re

from mail_server import HELLO
from milter import EXAMPLES, MilterTest, one_line


def with_crlf(content):
    return content.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")


def recipient_of(message):
    """An address of its To header, or ours."""
    found = re.search(r"[\w.+-]+@[\w.-]+", str(email.message_from_bytes(message)["To"]))
    return found.group() if found else "b@example.net"


def newest_received(delivered):
    """The Received header of the mail server, on one line."""
    return one_line(email.message_from_bytes(delivered)["Received"])


class AgreementTest(MilterTest):
    def passed(self, server, number, message, **client):
        """What is delivered of this message, which is the mail server's of this number."""
        reply = server.send(message, recipient=recipient_of(message), **client)
        self.assertEqual(reply[0], 250, reply)
        return server.newest(number)

    def check_message(self, daemon, server, number, message, **client):
        """Sends the message that is the daemon's and the mail server's of this number."""
        delivered = self.passed(server, number, message, **client)
        logged = self.check_same_judgement(daemon, delivered, number)
        self.check_hop(logged, newest_received(delivered))

    def check_hop(self, logged, written):
        """The daemon wrote the very header of the mail server, up to the queue number."""
        self.assertTrue(written.startswith(logged["hop"]), (written, logged["hop"]))
        self.assertTrue(logged["hop"].endswith(" id " + logged["queue"]), logged["hop"])

    def check_without_helo(self, daemon, server, clients):
        """Clients that never say their name."""
        for number, client in enumerate(clients, 1):
            with self.subTest(client=client):
                self.check_message(daemon, server, number, HELLO, **{**client, "helo": None})

    def check_examples(self, daemon, server, clients):
        """All examples, from each of these clients."""
        examples = sorted(EXAMPLES.glob("*.eml"))
        self.assertGreater(len(examples), 30)
        number = 0
        for example in examples:
            for client in clients:
                number += 1
                with self.subTest(example.name, client=client):
                    self.check_message(daemon, server, number, with_crlf(example.read_bytes()),
                                       **client)
