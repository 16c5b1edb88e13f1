# SPDX-License-Identifier: Apache-2.0
"""What the tests of the page of a rule set share: making pages, and reading them in the browser.

QV_RULES and QV_SCAN name the programs, QV_SOURCE the source tree.
"""
import http.client
import json
import os
import pathlib
import re
import signal
import socket
import subprocess
import tempfile

import browser

SOURCE = pathlib.Path(os.environ["QV_SOURCE"])
EXAMPLES = SOURCE / "examples"
STARTER = SOURCE / "data/rules/starter.qvr"
DEFAULT = SOURCE / "data/rules/default.qvr"


def defaults(word):
    """How many lines of the default rules are about nodes ("confidence") or elite rules ("decide")."""
    return len(re.findall(rf"(?m)^[^\"#\n]*\b{word} \d", DEFAULT.read_text()))


def rules(*arguments, **how):
    """Runs qvrules; what it printed."""
    return subprocess.run([os.environ["QV_RULES"], *map(str, arguments)], check=True, text=True,
                          capture_output=True, **how).stdout


def scan(source, *arguments):
    """Runs qvscan with the rules of a text and the examples' own DNS; what it printed."""
    with tempfile.TemporaryDirectory() as root:
        rules("compile", source, "-o", root + "/var/spool/etc/antispam")
        run = subprocess.run([os.environ["QV_SCAN"], "--root", root, "--dns-data",
                              str(EXAMPLES / "dns.zone"), *map(str, arguments)],
                             check=False, text=True, capture_output=True)
    assert run.returncode in (0, 1), run.stderr
    return run.stdout


def records(source=STARTER):
    """The record of each example message, as qvscan explains it."""
    lines = scan(source, "--format", "json", "--explain", *sorted(EXAMPLES.glob("*.eml")))
    return [json.loads(line) for line in lines.splitlines()]


class Server:
    """The program, serving rules on a port of its choice."""

    def __init__(self, *arguments, source=STARTER):
        self.process = subprocess.Popen(
            [os.environ["QV_RULES"], "show", str(source), "--dns-data",
             str(EXAMPLES / "dns.zone"), *map(str, arguments), "--serve"],
            stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        port, self.secret = re.search(r"http://127\.0\.0\.1:(\d+)/([0-9a-f]{32})/ ",
                                      line).groups()
        self.port = int(port)
        self.origin = f"http://127.0.0.1:{self.port}"
        self.page = f"{self.origin}/{self.secret}/"

    def ask(self, method, path, body=None, host=None, **headers):
        """Status and text of the answer about a path beside the page."""
        return self.ask_bare(method, f"/{self.secret}{path}", body, host, **headers)

    def ask_bare(self, method, path, body=None, host=None, **headers):
        """The same of any path. Header names have "_" for "-"."""
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

    def post(self, body, query=None, **headers):
        headers = {"Content_Type": "message/rfc822", **headers}
        address = "/explain" if query is None else f"/explain?{query}"
        return self.ask("POST", address, body, **headers)

    def connect(self, start=b""):
        """A connection on which `start` has been sent."""
        connection = socket.create_connection(("127.0.0.1", self.port), timeout=60)
        connection.sendall(start)
        return connection

    def post_start(self, *headers):
        """The head of a posted message, as far as `headers` go."""
        lines = [f"POST /{self.secret}/explain HTTP/1.1", f"Host: 127.0.0.1:{self.port}",
                 "Content-Type: message/rfc822", *headers, "", ""]
        return "\r\n".join(lines).encode()

    def end(self):
        """Ctrl-C; the exit status."""
        self.process.send_signal(signal.SIGINT)
        status = self.process.wait(60)
        self.process.stdout.close()
        return status


class ShowPageTest(browser.BrowserTest):
    """Tests of pages, most of them of the starter rules."""

    def page(self, *arguments, text=None, name="page.qvr", source=STARTER):
        """Makes a page of a rule file, or of a text; its path. More arguments go to the command."""
        if text is not None:
            source = self.write(name, text)
        path = self.folder / "page.html"
        rules("show", source, "--format", "html", "-o", path, *arguments)
        return path

    def choose(self, place):
        """Chooses a message of the list; what the page says of it."""
        self.browser.run("""
            const list = document.getElementById('message');
            list.value = arguments[0];
            list.dispatchEvent(new Event('change'));""", str(place))
        return self.answer()

    def titles(self):
        """The messages of the list, by the last part of their names."""
        return self.browser.run("""
            return Array.from(document.querySelectorAll('#message option'),
                              (one) => one.textContent.replace(/.*[/]/, ''));""")

    def answer(self):
        """What the page says of the message at hand."""
        return self.browser.run("""
            const all = (selector) => Array.from(document.querySelectorAll(selector));
            const texts = (selector) => all(selector).map((one) => one.textContent);
            return {
              verdict: texts('#answer .verdict .word')[0],
              text: document.getElementById('answer').innerText,
              why: texts('#answer .why')[0],
              problem: texts('#answer .complaint')[0],
              facts: texts('#answer .fact'),
              hops: all('#answer [aria-label=Trail] tbody tr').map((row) =>
                  Array.from(row.cells, (cell) => cell.textContent)),
              judged: all('#answer tr.judged').map((row) => row.cells[0].textContent),
              attributes: all('#answer [aria-label=Attributes] tbody tr').map((row) =>
                  Array.from(row.cells, (cell) => cell.textContent)),
              walk: all('#answer [aria-label=Path] tbody tr').map((row) =>
                  Array.from(row.cells, (cell) => cell.textContent)),
              path: all('#tree .on-path').map((one) => Number(one.dataset.number)),
              decides: all('#tree .decides').map((one) => Number(one.dataset.number)),
              fired: all('#elite .fired').map((one) => one.dataset.code),
              chosen: all('#elite .decides').map((one) => one.dataset.code),
              outcomes: texts('#elite .outcome'),
              failed: all('#elite .failed code').map((one) => one.textContent),
            };""")

    def shown_nodes(self):
        """Numbers of the nodes that are to be seen."""
        return self.browser.run("""
            return Array.from(document.querySelectorAll('#tree > li'))
                .filter((one) => one.offsetParent !== null)
                .map((one) => Number(one.dataset.number));""")
