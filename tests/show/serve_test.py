# SPDX-License-Identifier: Apache-2.0
"""`qvrules show --serve`: the page in a browser, and what the server refuses."""
import http.client
import json
import os
import re
import signal
import socket
import subprocess
import unittest

import showpage

MESSAGE = showpage.EXAMPLES / "spam-bot-dynamic-name.eml"


class Server:
    """The program, serving the starter rules on a port of its choice."""

    def __init__(self, *arguments):
        self.process = subprocess.Popen(
            [os.environ["QV_RULES"], "show", str(showpage.STARTER), "--dns-data",
             str(showpage.EXAMPLES / "dns.zone"), *arguments, "--serve"],
            stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        self.port = int(re.search(r"http://127\.0\.0\.1:(\d+)/", line).group(1))
        self.origin = f"http://127.0.0.1:{self.port}"

    def ask(self, method, path, body=None, host=None, **headers):
        """Status and text of an answer. Header names have "_" for "-"."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
        connection.putrequest(method, path, skip_host=True, skip_accept_encoding=True)
        connection.putheader("Host", host or f"127.0.0.1:{self.port}")
        for name, value in headers.items():
            connection.putheader(name.replace("_", "-"), value)
        if body is not None and "Content_Length" not in headers:
            connection.putheader("Content-Length", str(len(body)))
        connection.endheaders(body)
        answer = connection.getresponse()
        text = answer.read().decode()
        connection.close()
        return answer.status, text

    def post(self, body, **headers):
        headers = {"Content_Type": "message/rfc822", **headers}
        return self.ask("POST", "/explain", body, **headers)

    def end(self):
        """Ctrl-C; the exit status."""
        self.process.send_signal(signal.SIGINT)
        status = self.process.wait(60)
        self.process.stdout.close()
        return status


class Protocol(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = Server()

    @classmethod
    def tearDownClass(cls):
        assert cls.server.end() == 0

    def test_serves_the_page(self):
        status, text = self.server.ask("GET", "/")
        self.assertEqual(status, 200)
        self.assertIn("connect-src 'self'", text)
        self.assertEqual(self.server.ask("GET", "/", host=f"localhost:{self.server.port}")[0], 200)
        self.assertEqual(self.server.ask("GET", "/etc/passwd")[0], 404)

    def test_explains_a_message_as_qvscan_does(self):
        status, text = self.server.post(MESSAGE.read_bytes(), Origin=self.server.origin)
        self.assertEqual(status, 200)
        told = json.loads(text)
        wanted = json.loads(showpage.scan(showpage.STARTER, "--format", "json", "--explain",
                                          MESSAGE))
        self.assertEqual({**told, "source": ""}, {**wanted, "source": ""})

    def test_refuses_names_that_were_bound_to_this_machine(self):
        for host in ("evil.example", f"evil.example:{self.server.port}", "127.0.0.1", ""):
            self.assertEqual(self.server.ask("GET", "/", host=host or " ")[0], 403, host)
            self.assertEqual(self.server.post(b"From: x\n\n", host=host or " ")[0], 403, host)

    def test_refuses_other_pages(self):
        for origin in ("http://evil.example", "null", f"https://127.0.0.1:{self.server.port}",
                       "http://127.0.0.1:1"):
            self.assertEqual(self.server.post(b"From: x\n\n", Origin=origin)[0], 403, origin)

    def test_refuses_what_is_no_message(self):
        self.assertEqual(self.server.post(b"From: x\n\n", Content_Type="text/plain")[0], 415)
        self.assertEqual(self.server.post(b"x", Content_Encoding="gzip")[0], 415)
        status, text = self.server.post(b"no header here")
        self.assertEqual((status, text), (422, "message: no message: it has no header field\n"))

    def test_limits_what_it_reads(self):
        self.assertEqual(self.server.post(None, Content_Length=str(1 << 40))[0], 413)

    def test_listens_on_loopback_only(self):
        with socket.socket() as other:
            self.assertNotEqual(other.connect_ex(("127.0.0.2", self.server.port)), 0)

    def test_says_when_a_port_is_taken(self):
        run = subprocess.run([os.environ["QV_RULES"], "show", str(showpage.STARTER), "--serve",
                              str(self.server.port)], check=False, text=True, capture_output=True)
        self.assertEqual(run.returncode, 73)
        self.assertIn(f"port {self.server.port}: cannot be served on", run.stderr)

    def test_refuses_what_is_no_port(self):
        for port in ("0", "65536", "http", "-1"):
            run = subprocess.run([os.environ["QV_RULES"], "show", str(showpage.STARTER),
                                  f"--serve={port}"], check=False, text=True, capture_output=True)
            self.assertEqual(run.returncode, 64, port)


class ServedPage(showpage.ShowPageTest):
    @classmethod
    def setUpClass(cls):
        cls.server = Server("--message", str(showpage.EXAMPLES / "gmail-like.eml"))
        cls.origins = (cls.server.origin,)
        super().setUpClass()

    @classmethod
    def tearDownClass(cls):
        super().tearDownClass()
        assert cls.server.end() == 0

    def test_explains_a_message_that_is_dropped_in(self):
        self.browser.open(self.server.origin + "/")
        self.browser.run("""
            const transfer = new DataTransfer();
            transfer.items.add(new File([arguments[0]], 'odd & <b>.eml'));
            document.body.dispatchEvent(
                new DragEvent('drop', {dataTransfer: transfer, bubbles: true, cancelable: true}));
        """, MESSAGE.read_text(encoding="utf-8"))
        self.wait_for(lambda: self.answer()["verdict"] == "Spam")
        answer = self.answer()
        self.assertIn("announced, dsl-203-0-113-17.pool.provider.example, looks dynamically",
                      answer["text"])
        self.assertIn("odd & <b>.eml", answer["text"])
        self.assertEqual(answer["fired"], ["9001"])

    def test_explains_a_message_that_is_pasted(self):
        self.browser.open(self.server.origin + "/")
        self.judge(MESSAGE.read_text(encoding="utf-8"))
        self.wait_for(lambda: self.answer()["verdict"] == "Spam")

    def test_offers_the_messages_of_the_command_line(self):
        self.browser.open(self.server.origin + "/")
        titles = [option.text for option in self.browser.find_all("#message option")]
        self.assertEqual([title.rsplit("/", 1)[-1] for title in titles],
                         ["none", "gmail-like.eml"])

    def test_says_when_the_server_is_gone(self):
        gone = Server()
        self.browser.origins = (*self.origins, gone.origin)
        self.browser.open(gone.origin + "/")
        gone.end()
        self.judge("Received: x\n\n")
        self.wait_for(lambda: self.answer()["complaints"])
        self.assertIn("no longer runs", self.answer()["text"])
        # The browser complains, too.
        self.assertIn("/explain", " ".join(self.browser.problems()))


if __name__ == "__main__":
    unittest.main()
