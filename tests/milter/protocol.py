# SPDX-License-Identifier: Apache-2.0
"""A mail server in Python that speaks the milter protocol (version 6), for what miltertest cannot
say and for loads that it is too slow for."""
import socket
import struct

# Steps of the protocol and replies to them.
CONNECT, HELO, MAIL, RCPT, HEADER, END = b"C", b"H", b"M", b"R", b"L", b"E"
ABORT, QUIT = b"A", b"Q"
OPTIONS, MACROS = b"O", b"D"
CONTINUE, ACCEPT, REPLY_CODE = b"c", b"a", b"y"
INSERT, CHANGE = b"i", b"m"

ALL_ACTIONS = 0x1ff
ALL_STEPS = 0x1fffff
# A filter may leave the replies to these steps out, by these bits of the negotiation.
UNANSWERED = {CONNECT: 0x1000, HELO: 0x2000, MAIL: 0x4000, RCPT: 0x8000, HEADER: 0x80}


def strings(*texts):
    """Each one with the NUL byte that ends it."""
    return b"".join((text if isinstance(text, bytes) else text.encode()) + b"\0" for text in texts)


class MailServer:
    """One session with the filter at a unix socket. With `hears_all` it waits for a reply to each
    step, as old mail servers do: when a call returns, the filter has taken the step."""

    def __init__(self, path, hears_all=False):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(120)
        self.socket.connect(str(path))
        self.input = self.socket.makefile("rb")
        self.unsent = []
        offered = ALL_STEPS & ~sum(UNANSWERED.values()) if hears_all else ALL_STEPS
        self.say(OPTIONS, struct.pack(">III", 6, ALL_ACTIONS, offered))
        _, data = self.hear()
        self.steps = struct.unpack(">III", data[:12])[2]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        """Goes away without a word."""
        self.input.close()
        self.socket.close()

    def say(self, step, data=b""):
        """Goes out with the next step that waits for a reply."""
        self.unsent.append(struct.pack(">I", len(data) + 1) + step + data)

    def flush(self):
        self.socket.sendall(b"".join(self.unsent))
        self.unsent.clear()

    def hear(self):
        """The next reply; an EOFError when the filter is gone."""
        self.flush()
        head = self.input.read(5)
        if len(head) < 5:
            raise EOFError
        length, = struct.unpack(">I", head[:4])
        return head[4:], self.input.read(length - 1)

    def step(self, step, data=b""):
        self.say(step, data)
        if not self.steps & UNANSWERED[step]:
            self.expect(CONTINUE)

    def expect(self, reply):
        heard = self.hear()
        if heard[0] != reply:
            raise AssertionError(f"{reply} was expected, not {heard}")

    def client(self, address="192.0.2.55", name="unknown", helo="localhost"):
        """A client as Postfix describes it."""
        self.say(MACROS, CONNECT + strings("j", "mx.example.net", "v", "Postfix 3.7.11",
                                           "{client_name}", name, "{client_ptr}", name))
        family = b"6" if ":" in address else b"4"
        self.step(CONNECT, strings(name) + family + struct.pack(">H", 50000) + strings(address))
        self.step(HELO, strings(helo))
        return self

    def begin(self, sender="<a@example.org>", recipient="<b@example.net>", queue_id=""):
        if queue_id:
            self.say(MACROS, MAIL + strings("i", queue_id))
        self.step(MAIL, strings(sender))
        self.step(RCPT, strings(recipient))

    def header(self, name, value):
        self.step(HEADER, strings(name, " " + value))

    def end(self):
        """Ends the message: the reply, and what the filter did to the message, each a letter and
        its data."""
        self.say(END)
        changes = []
        while True:
            letter, data = self.hear()
            if letter not in (INSERT, CHANGE, b"q"):
                return letter, changes
            changes.append((letter, data))

    def message(self, *headers, **envelope):
        """From the envelope to the end: the result that the filter wrote into the header."""
        self.begin(**envelope)
        self.header("From", "Alice <a@example.org>")
        for name, value in headers:
            self.header(name, value)
        return self.result()

    def result(self):
        """Ends the message, which the filter has to accept: the value of the header that it wrote."""
        reply, changes = self.end()
        if reply != ACCEPT:
            raise AssertionError(f"the filter replied {reply}")
        inserted = [data for letter, data in changes if letter == INSERT]
        # The place, the name and the value.
        return inserted[0][4:].split(b"\0")[1].decode().lstrip() if inserted else None
