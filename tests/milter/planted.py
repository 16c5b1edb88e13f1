# SPDX-License-Identifier: Apache-2.0
"""Result headers that a sender wrote, in every form that a mail server takes for a header."""
import re

from mail_server import HELLO
from milter import MilterTest

PLANTED = tuple(header + b"\r\n" for header in (
    b"X-QV-Deep-Header: ham; node=1",
    b"x-qv-deep-header: ham",
    b"X-QV-DEEP-HEADER:ham",
    b"X-QV-Deep-Header : ham",
    b"X-QV-Deep-Header \t: ham",
    b"X-QV-Deep-Header:\r\n ham",
    b"X-QV-Deep-Header: ham;\r\n\tnode=1;\r\n confidence=0.01",
    b"X-QV-Deep-Header:",
    b"X-QV-Deep-Header:    \t ham",
    b"X-QV-Deep-Header: \xff\xfe ham",
    b"X-QV-Deep-Header-Reasons: none",
    b"x-qv-deep-header-REASONS : none",
))
MESSAGES = tuple(header + HELLO for header in PLANTED) + (
    HELLO.replace(b"Subject:", PLANTED[0] + b"Subject:"),
    HELLO.replace(b"\r\n\r\n", b"\r\n" + PLANTED[3] + b"\r\n", 1),
    b"".join(PLANTED) * 3 + HELLO,
    # The first line is no header, so that the mail server takes all of it for the body.
    b" X-QV-Deep-Header: ham\r\n" + PLANTED[0] + HELLO,
    # A line that belongs to another header.
    b"Subject: hello\r\n X-QV-Deep-Header: ham\r\n" + HELLO,
)


def results(message):
    """The result headers of a delivered message, in any form that a program may take for one."""
    head = message.split(b"\n\n")[0]
    return re.findall(rb"^x-qv-deep-header[-a-z \t]*:\s*(\w*)", head, re.M | re.I)


class PlantedTest(MilterTest):
    def check_planted(self, server, expected, **client):
        """None of these headers is delivered; what is there is ours."""
        for number, message in enumerate(MESSAGES, 1):
            with self.subTest(message):
                self.assertEqual(server.send(message, **client)[0], 250)
                self.assertEqual(results(server.newest(number)), expected)
