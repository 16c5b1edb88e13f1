# SPDX-License-Identifier: Apache-2.0
"""Two filters that share the mail of one Postfix through HAProxy, set up as docs/scale-out.md says."""
import email
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import threading
import unittest

from milter import MilterTest, free_port, wait_for
from postfix import Postfix
from postfix_test import HELLO, SPAMMER

PAGE = pathlib.Path(os.environ["QV_DOCS"]) / "scale-out.md"
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
            daemon.config.write_text(daemon.config.read_text().replace(
                f"unix:{daemon.socket}", f"inet:{port}@127.0.0.1"))
            started.append((daemon.start(), port))
        return started

    def haproxy(self, ports):
        """A HAProxy with the page's settings before filters at these ports; its port."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        text = next(block for block in re.findall(r"```[a-z]*\n(.*?)```", PAGE.read_text(), re.S)
                    if block.startswith("listen"))
        port = free_port()
        text = text.replace("127.0.0.1:8890", f"127.0.0.1:{port}")
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
        postfix = Postfix(f"inet:127.0.0.1:{self.haproxy([port for _, port in filters])}")
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
