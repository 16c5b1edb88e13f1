# SPDX-License-Identifier: Apache-2.0
"""Two filters that share the mail of one Postfix through HAProxy, set up as docs/scale-out.md says."""
import email
import os
import pathlib
import signal
import subprocess
import tempfile
import threading
import unittest

from mail_server import HELLO
from milter import MilterTest, free_port, wait_for
from pages import blocks
from postfix import Postfix
from postfix_test import SPAMMER

# With other addresses.
FILTER, HAPROXY, POSTFIX = blocks("scale-out.md", "HAProxy before two filters")
MESSAGES = 2000
CLIENTS = 8


@unittest.skipUnless(os.geteuid() == 0, "Postfix starts as root only")
class ScaleOut(MilterTest):
    def filters(self, count):
        """So many daemons on TCP ports; the ports."""
        started = []
        for _ in range(count):
            port = free_port()
            daemon = self.daemon()
            socket = FILTER.split("\n")[1].replace("8891@192.0.2.31", f"{port}@127.0.0.1")
            daemon.config.write_text(daemon.config.read_text().replace(
                f'socket = "unix:{daemon.socket}"', socket))
            started.append((daemon.start(), port))
        return started

    def haproxy(self, ports):
        """A HAProxy with the page's settings before filters at these ports; its port."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        port = free_port()
        text = HAPROXY.replace("127.0.0.1:8890", f"127.0.0.1:{port}")
        for address, own in zip(("192.0.2.31:8891", "192.0.2.32:8891"), ports):
            self.assertIn(address, text)
            text = text.replace(address, f"127.0.0.1:{own}")
        path = pathlib.Path(folder.name) / "haproxy.cfg"
        path.write_text("global\n    maxconn 500\n" + text)
        process = subprocess.Popen(["haproxy", "-f", str(path), "-db"], stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.send_signal, signal.SIGTERM)
        return port

    def test_a_filter_that_dies_under_load_costs_no_message(self):
        filters = self.filters(2)
        port = self.haproxy([port for _, port in filters])
        postfix = Postfix(settings=POSTFIX.replace("127.0.0.1:8890", f"127.0.0.1:{port}"))
        self.addCleanup(postfix.stop)
        postfix.start()
        waiting = list(range(MESSAGES))
        delivered, lock = set(), threading.Lock()

        def work():
            while True:
                with lock:
                    if not waiting:
                        return
                    number = waiting.pop()
                message = HELLO.replace(b"hello\r\n\r\n", b"hello\r\nX-Number: %d\r\n\r\n" % number)
                code, _ = postfix.send(message, **SPAMMER)
                with lock:
                    if code == 250:
                        delivered.add(number)
                    else: # the client comes again
                        waiting.append(number)

        threads = [threading.Thread(target=work) for _ in range(CLIENTS)]
        for thread in threads:
            thread.start()
        wait_for(lambda: len(delivered) > MESSAGES // 10, "the first messages", 120)
        filters[0][0].kill()
        for thread in threads:
            thread.join()
        self.assertEqual(len(delivered), MESSAGES)
        messages = [email.message_from_bytes(text) for text in postfix.delivered(MESSAGES)]
        self.assertEqual(sorted(int(message["X-Number"]) for message in messages),
                         list(range(MESSAGES)))
        for message in messages:
            self.assertTrue(message["X-QV-Deep-Header"].startswith("spam;"))


if __name__ == "__main__":
    unittest.main()
