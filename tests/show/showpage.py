# SPDX-License-Identifier: Apache-2.0
"""What the tests of the page of a rule set share: making pages, and reading them in the browser.

QV_RULES and QV_SCAN name the programs, QV_SOURCE the source tree.
"""
import json
import os
import pathlib
import subprocess
import tempfile

import browser

SOURCE = pathlib.Path(os.environ["QV_SOURCE"])
EXAMPLES = SOURCE / "examples"
STARTER = SOURCE / "data/rules/starter.qvr"
DEFAULT = SOURCE / "data/rules/default.qvr"


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


class ShowPageTest(browser.BrowserTest):
    """Tests of pages, most of them of the starter rules."""

    def page(self, *arguments, text=None, name="page.qvr", source=STARTER):
        """Makes a page of a rule file, or of a text; its path. More arguments go to the command."""
        if text is not None:
            source = self.write(name, text)
        path = self.folder / "page.html"
        rules("show", source, "--format", "html", "-o", path, *arguments)
        return path

    def judge(self, text):
        """Pastes a text; the answer of the page."""
        self.browser.run("""
            document.getElementById('pasted').value = arguments[0];
            document.getElementById('try-it').click();""", text)
        return self.answer()

    def answer(self):
        """What the page says of the message at hand."""
        return self.browser.run("""
            const texts = (selector) =>
                Array.from(document.querySelectorAll(selector), (one) => one.textContent);
            return {
              verdict: texts('#answer .verdict .word')[0],
              text: document.getElementById('answer').innerText,
              complaints: texts('#answer .complaint'),
              facts: texts('#answer .fact'),
              path: Array.from(document.querySelectorAll('#tree .on-path'),
                               (one) => Number(one.dataset.number)),
              decides: Array.from(document.querySelectorAll('#tree .decides'),
                                  (one) => Number(one.dataset.number)),
              fired: Array.from(document.querySelectorAll('#elite .fired'),
                                (one) => one.dataset.code),
            };""")

    def shown_nodes(self):
        """Numbers of the nodes that are to be seen."""
        return self.browser.run("""
            return Array.from(document.querySelectorAll('#tree > li'))
                .filter((one) => one.offsetParent !== null)
                .map((one) => Number(one.dataset.number));""")
