#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Scans that wait for DNS: the server is this test, and answers when it is told to."""
import re
import socket
import threading
import unittest

import qvdeepheader


class SlowServer:
    """Says of every name that it does not exist, but only when its label has been released."""

    def __init__(self):
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.bind(("127.0.0.1", 0))
        self.address = "127.0.0.1@%d" % self.socket.getsockname()[1]
        self.lock = threading.Lock()
        self.waiting = []
        self.later = set()  # the messages, but the first, that were asked for
        self.released = set()
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            self.take(*self.socket.recvfrom(4096))

    def take(self, question, asker):
        with self.lock:
            self.waiting.append((question, asker))
            self.later.update(re.findall(rb"(m\d+)\x05later", question.lower()))
            self.answerReleased()

    def release(self, label):
        """Answers questions for names with this label, those to come too."""
        with self.lock:
            self.released.add(bytes([len(label)]) + label)
            self.answerReleased()

    def answerReleased(self):
        for question, asker in self.waiting[:]:
            if any(label in question.lower() for label in self.released):
                self.waiting.remove((question, asker))
                response = b"\x81\x83"  # recursion is available, no such name (RFC 1035, 4.1.1)
                self.socket.sendto(question[:2] + response + question[4:], asker)

    def askedLater(self):
        with self.lock:
            return set(self.later)


def message(domain):
    return (f"Received: from mail.{domain} ([192.0.2.7]) by mx.example.com;\r\n"
            f" Thu, 1 Jan 2026 00:00:00 +0000\r\n"
            f"From: a@{domain}\r\n\r\n").encode()


class Waiting(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = SlowServer()
        cls.server.release(b"in-addr")
        cls.scanner = qvdeepheader.Scanner(
            settings={"dns": cls.server.address, "dns-timeout": 600})

    def testAnAnswerDoesNotWaitUntilThereIsRoomForOthers(self):
        def messages():
            for number in range(100):
                if number == 60:  # many more than there is room for, while each takes so long
                    self.assertLessEqual(self.server.askedLater(), {b"m1"}, "m1 was given up")
                    self.server.release(b"first")
                yield message("first.example" if number == 0 else f"m{number}.later.example")
        answers = self.scanner.scan_many(messages(), threads=2)
        self.assertTrue(next(answers).is_judged)
        self.server.release(b"later")
        self.assertEqual(sum(1 for _ in answers), 99)


if __name__ == "__main__":
    unittest.main()
