# SPDX-License-Identifier: Apache-2.0
"""`qvrules show --serve`: the page in a browser, and what the server refuses."""
import json
import os
import re
import resource
import signal
import socket
import subprocess
import tempfile
import threading
import unittest

import showpage

MESSAGE = showpage.EXAMPLES / "spam-bot-dynamic-name.eml"
VECTOR = {"Content_Type": "text/x-attribute-vector"}
MIB = b"x" * (1 << 20)


def whole_answer(connection):
    """What a server sends before it ends."""
    with connection.makefile("rb") as answer:
        return answer.read()


class Dawdlers:
    """Clients that never come to an end: some say nothing, some send a byte now and then."""

    def __init__(self, server, silent, slow):
        self.open = [server.connect() for _ in range(silent)]
        self.slow = [server.connect(b"GET / HTTP/1.1\r\nX: ") for _ in range(slow)]
        self.gone = threading.Event()
        self.thread = threading.Thread(target=self.dawdle)

    def dawdle(self):
        while not self.gone.wait(0.2):
            for connection in self.slow:
                try:
                    connection.send(b"x")
                except OSError:
                    pass  # the server has had enough

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.gone.set()
        self.thread.join()
        for connection in (*self.open, *self.slow):
            connection.close()


class Protocol(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = showpage.Server()

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
        answered = json.loads(text)
        wanted = json.loads(showpage.scan(showpage.STARTER, "--format", "json", "--explain",
                                          MESSAGE))
        self.assertEqual({**answered, "source": ""}, {**wanted, "source": ""})

    def test_refuses_names_that_were_bound_to_this_machine(self):
        for host in ("evil.example", f"evil.example:{self.server.port}", "127.0.0.1", ""):
            self.assertEqual(self.server.ask("GET", "/", host=host or " ")[0], 403, host)
            self.assertEqual(self.server.post(b"From: x\n\n", host=host or " ")[0], 403, host)

    def test_refuses_whoever_does_not_know_the_secret(self):
        """Such as another user of the machine."""
        secret = self.server.secret
        wrong = ("0" if secret[-1] != "0" else "1")
        for prefix in ("", "/" + secret[:-1] + wrong, "/" + secret[:-1], "/" + secret.upper() + "x",
                       "/x" + secret, "//" + secret, "/%" + secret):
            for method, path in (("GET", "/"), ("HEAD", "/"), ("POST", "/explain"), ("PUT", "/")):
                status, text = self.server.ask_bare(method, prefix + path, b"From: x\n\n",
                                                    Content_Type="message/rfc822")
                self.assertEqual(status, 403, (method, prefix, path))
                self.assertNotIn(secret, text)
        self.assertEqual(self.server.ask_bare("GET", f"/{secret}x/")[0], 404)

    def test_has_a_secret_of_its_own(self):
        other = showpage.Server()
        try:
            self.assertNotEqual(other.secret, self.server.secret)
            self.assertEqual(other.ask_bare("GET", f"/{self.server.secret}/")[0], 403)
        finally:
            other.end()

    def test_does_not_tell_other_sites_its_address(self):
        with self.server.connect(f"GET /{self.server.secret}/ HTTP/1.1\r\nHost: "
                                 f"127.0.0.1:{self.server.port}\r\n\r\n".encode()) as client:
            self.assertIn(b"\r\nReferrer-Policy: no-referrer\r\n", whole_answer(client))

    def test_answers_with_the_page_once_however_many_ranges_are_asked_for(self):
        """2,600 overlapping ranges must not make 2,600 copies."""
        whole = self.server.ask("GET", "/")[1]
        ranges = "bytes=" + ",".join(["0-"] * 2600)
        self.assertEqual(self.server.ask("GET", "/", Range=ranges), (200, whole))

    def test_refuses_a_huge_head(self):
        start = b"GET / HTTP/1.1\r\nX: " + b"x" * 40000 + b"\r\n\r\n"
        with self.server.connect(start) as client:
            self.assertIn(b" 400 ", whole_answer(client).splitlines()[0])

    def test_refuses_other_pages(self):
        for origin in ("http://evil.example", "null", f"https://127.0.0.1:{self.server.port}",
                       "http://127.0.0.1:1"):
            self.assertEqual(self.server.post(b"From: x\n\n", Origin=origin)[0], 403, origin)

    def test_explains_a_vector_as_qvrules_does(self):
        for text in ("first_reverse_dynamic=yes", "hop_behind_first=yes", "deep_helo_dynamic=yes",
                     "hop_behind_first=yes,deep_helo_dynamic=not-analysed", " chain_broken = 1 "):
            status, answered = self.server.post(text.encode(), **VECTOR)
            wanted = showpage.rules("explain", showpage.STARTER, text, "--format", "json")
            self.assertEqual((status, answered), (200, wanted), text)

    def test_judges_with_the_settings_that_it_is_asked_for(self):
        text = "first_reverse_dynamic=yes,first_helo_is_domain=no"
        for options in (["--spam-threshold=0.97"], ["--spam-threshold=95", "--ham-threshold=0"],
                        ["--walk-to-leaf=0", "--min-support=+3"], ["--max-elite-level=-1"]):
            query = "&".join(option[2:].replace("+", "%2B") for option in options)
            status, answered = self.server.post(text.encode(), query=query, **VECTOR)
            wanted = showpage.rules("explain", showpage.STARTER, text, "--format", "json", *options)
            self.assertEqual((status, answered), (200, wanted), options)
        self.assertEqual(json.loads(self.server.post(MESSAGE.read_bytes())[1])["verdict"], "spam")
        status, answered = self.server.post(MESSAGE.read_bytes(), query="spam-threshold=0.98")
        self.assertEqual((status, json.loads(answered)["verdict"]), (200, "none"))

    def test_says_what_is_wrong_with_settings_and_vectors(self):
        for query, text in (("spam-threshold=0.9x", 'spam-threshold: "0.9x" is not a number'),
                            ("walk-to-leaf=2", 'walk-to-leaf: "2" is not a whole number from 0 to 1'),
                            ("dns-data=/etc/passwd", 'a page cannot set "dns-data"')):
            self.assertEqual(self.server.post(MESSAGE.read_bytes(), query=query),
                             (422, text + "\n"))
        for vector, text in ((b"first_helo=yes", 'no attribute is called "first_helo"'),
                             (b"first_forged=maybe", "first_forged has no value"),
                             (b"first_forged=1,first_forged=0", "given twice"),
                             (MESSAGE.read_bytes(), "is not NAME=VALUE")):
            status, answered = self.server.post(vector, **VECTOR)
            self.assertEqual(status, 422)
            self.assertIn(text, answered)

    def test_refuses_what_is_no_message(self):
        self.assertEqual(self.server.post(b"From: x\n\n", Content_Type="text/plain")[0], 415)
        self.assertEqual(self.server.post(b"x", Content_Encoding="gzip")[0], 415)
        status, text = self.server.post(b"no header here")
        self.assertEqual((status, text), (422, "message: not a message: it has no header field\n"))

    def test_limits_what_it_reads(self):
        status, text = self.server.post(None, Content_Length=str(1 << 40))
        self.assertEqual((status, text), (413, "a message may have at most 32 MiB\n"))

    def status_while_it_sends(self, start, pieces):
        """The status of a request whose body does not end."""
        with self.server.connect(start) as connection:
            for piece in pieces:
                connection.sendall(piece)
            return int(whole_answer(connection).split()[1])

    def test_limits_what_it_reads_of_a_body_that_tells_no_length(self):
        start = self.server.post_start()
        self.assertEqual(self.status_while_it_sends(start, [MIB] * 33), 411)
        start = self.server.post_start("Transfer-Encoding: chunked")
        chunks = [b"100000\r\n" + MIB + b"\r\n"] * 33
        self.assertEqual(self.status_while_it_sends(start, chunks), 413)

    def test_reads_a_body_in_chunks(self):
        with self.server.connect(self.server.post_start("Transfer-Encoding: chunked")) as client:
            client.sendall(b"9\r\nFrom: x\r\n\r\n2\r\n\r\n\r\n0\r\n\r\n")
            self.assertIn(b"200 OK", whole_answer(client))

    def test_asks_for_a_body_that_waits_to_be_asked_for(self):
        start = self.server.post_start("Content-Length: 11", "Expect: 100-continue")
        with self.server.connect(start) as client, client.makefile("rb") as answer:
            self.assertEqual(answer.readline(), b"HTTP/1.1 100 Continue\r\n")
            client.sendall(b"From: x\r\n\r\n")
            self.assertIn(b"200 OK", answer.read())

    def test_refuses_what_is_no_http(self):
        self.assertEqual(self.status_while_it_sends(b"EHLO mx.example\r\n", [b"\r\n"]), 400)

    def test_answers_a_head_without_the_page(self):
        start = f"HEAD /{self.server.secret}/ HTTP/1.1\r\nHost: 127.0.0.1:{self.server.port}\r\n\r\n"
        with self.server.connect(start.encode()) as client:
            answer = whole_answer(client)
        self.assertIn(b" 200 OK\r\n", answer)
        self.assertRegex(answer, rb"Content-Length: [1-9][0-9]{4,}\r\n")
        self.assertTrue(answer.endswith(b"\r\n\r\n"))

    def test_refuses_bodies_that_it_does_not_want_before_they_end(self):
        for method, path, status in (("POST", "other", 404), ("PUT", "explain", 405),
                                     ("DELETE", "", 405)):
            start = (f"{method} /{self.server.secret}/{path} HTTP/1.1\r\nHost: 127.0.0.1:{self.server.port}\r\n"
                     "Content-Type: message/rfc822\r\nTransfer-Encoding: chunked\r\n\r\n")
            self.assertEqual(self.status_while_it_sends(start.encode(), [b"1\r\nx\r\n"]), status)

    def test_says_when_a_message_breaks_off(self):
        with self.server.connect(self.server.post_start("Content-Length: 99")) as client:
            client.sendall(b"From: x\n\n")
            client.shutdown(socket.SHUT_WR)
            answer = whole_answer(client)
        self.assertIn(b" 400 ", answer.splitlines()[0])
        self.assertIn(b"the message is incomplete", answer)

    def test_answers_while_others_dawdle(self):
        with Dawdlers(self.server, silent=60, slow=60):
            self.assertEqual(self.server.ask("GET", "/")[0], 200)
            status, text = self.server.post(MESSAGE.read_bytes())
            self.assertEqual((status, json.loads(text)["verdict"]), (200, "spam"))

    def test_leaves_dawdlers(self):
        with Dawdlers(self.server, silent=1, slow=1) as dawdlers:
            for connection in (*dawdlers.open, *dawdlers.slow):
                try:
                    self.assertEqual(whole_answer(connection), b"")
                except ConnectionError:
                    pass  # it sent another byte meanwhile

    def test_lets_a_crowd_wait_until_dawdlers_are_gone(self):
        with Dawdlers(self.server, silent=70, slow=70):
            self.assertEqual(self.server.ask("GET", "/")[0], 200)

    def test_ends_while_others_dawdle(self):
        server = showpage.Server()
        with Dawdlers(server, silent=8, slow=60):
            self.assertEqual(server.end(), 0)

    def test_says_when_descriptors_run_out(self):
        """Whatever it is that cannot be opened, and that comes last."""
        complaints = []
        for limit in range(4, 32):
            run = subprocess.Popen(
                [os.environ["QV_RULES"], "show", str(showpage.STARTER), "--dns", "off", "--serve"],
                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                preexec_fn=lambda most=limit: resource.setrlimit(resource.RLIMIT_NOFILE,
                                                                 (most, most)))
            serves = bool(run.stdout.readline())
            if serves:
                run.send_signal(signal.SIGINT)
            complaints.append(run.communicate(timeout=60)[1])
            self.assertEqual(run.returncode == 0, serves, complaints[-1])
            if serves:
                break
        self.assertIn("epoll: Too many open files", " ".join(complaints))

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


class WhatIsKnownOfMessages(unittest.TestCase):
    """Every way to ask about a message takes what a mail server knows of it, and says the same."""

    FACTS = {"env-from": "karl@elsewhere.example", "header-from": "karl@shop.example",
             "recipient": "bob@mx.example",
             "current-received": "from bob.mx.example (pc-7.dyn.example [203.0.113.99]) by "
                                 "mx.example; Wed, 15 May 2024 04:10:11 +0200",
             "current-forged": "1", "client-score": "7", "message-status": "3"}
    SETTINGS = {"trusted-mta": "203.0.113.17", "spam-threshold": "0.5"}
    OPTIONS = [f"--{name}={value}" for name, value in {**FACTS, **SETTINGS}.items()]

    @classmethod
    def setUpClass(cls):
        cls.record = json.loads(showpage.scan(showpage.STARTER, "--format", "json", "--explain",
                                              *cls.OPTIONS, MESSAGE))
        cls.record["source"] = ""
        bare = json.loads(showpage.scan(showpage.STARTER, "--format", "json", "--explain", MESSAGE))
        assert cls.record["explain"]["attributes"] != bare["explain"]["attributes"]

    def test_served(self):
        server = showpage.Server(*self.OPTIONS)
        try:
            answered = json.loads(server.post(MESSAGE.read_bytes())[1])
        finally:
            server.end()
        self.assertEqual({**answered, "source": ""}, self.record)

    def test_in_a_page(self):
        page = showpage.rules("show", showpage.STARTER, "--format", "html", "--message", MESSAGE,
                              "--dns-data", showpage.EXAMPLES / "dns.zone", *self.OPTIONS)
        data = re.search(r'<script type="application/json" id="data">(.*?)</script>', page).group(1)
        answered, = json.loads(data)["messages"]
        self.assertEqual({**answered, "source": ""}, self.record)

    def test_explained(self):
        answered = json.loads(showpage.rules("explain", showpage.STARTER, MESSAGE, "--format", "json",
                                         "--dns-data", showpage.EXAMPLES / "dns.zone",
                                         *self.OPTIONS))
        for key in ("verdict", "node", "confidence", "adjust", "adjustReason", "reasons"):
            self.assertEqual(answered[key], self.record[key], key)

    def test_tried(self):
        """Texts in quotes, numbers bare."""
        lines = [f"rules = {json.dumps(str(showpage.STARTER))}", "[[case]]", "name = 'known'",
                 f"file = {json.dumps(str(MESSAGE))}",
                 f"dns = {(showpage.EXAMPLES / 'dns.zone').read_text().splitlines()}"]
        for name, text in {**self.FACTS, **self.SETTINGS}.items():
            is_number = re.fullmatch(r"[0-9]+|0\.[0-9]+", text)
            lines.append(f"{name} = {text if is_number else json.dumps(text)}")
        lines += [f"verdict = {json.dumps(self.record['verdict'])}",
                  f"node = {self.record['node']}",
                  f"reasons = {json.dumps(self.record['adjustReason'])}"]
        with tempfile.NamedTemporaryFile("w", suffix=".toml") as cases:
            cases.write("\n".join(lines) + "\n")
            cases.flush()
            showpage.rules("test", cases.name)


if __name__ == "__main__":
    unittest.main()
