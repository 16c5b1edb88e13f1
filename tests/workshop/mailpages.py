# SPDX-License-Identifier: Apache-2.0
"""What tests of pages about mail share: invented mail, a report written by qvrules, and checks that
every page has to pass."""
import os
import subprocess

import browser

WIDE = (1400, 900)
DYNAMIC, SERVER, UNNAMED = "1-2-0-192.dyn.example.net", "mail.example.net", "unknown"
HOSTILE = "<img src onerror>\"& '<!--\u202eabc"
# The same as pages show it.
HOSTILE_SHOWN = HOSTILE.replace("\u202e", "\\u202E")

def message(reverse, address="192.0.2.7"):
    return (f"From x@example.org Mon Jan  1 10:00:00 2024\nReceived: from pc.example.net ({reverse} "
            f"[{address}])\n\tby mx.example.org; Mon, 1 Jan 2024 10:00:00 +0000\n"
            "From: Ann <ann@example.net>\nMessage-ID: <1@example.net>\n\n")


class MailPageTest(browser.BrowserTest):
    """Set QV_RULES_PROGRAM."""

    def mail(self, name, *messages):
        return self.write(f"{name}.mbox", "".join(messages))

    def report(self, form, status, command, *arguments):
        """The file with a report that a command of qvrules wrote."""
        path = self.folder / f"page.{form}"
        path.unlink(missing_ok=True)
        run = subprocess.run([os.environ["QV_RULES_PROGRAM"], command, *map(str, arguments),
                              "--dns", "off", "--format", form, "-o", path], check=False)
        self.assertEqual(run.returncode, status)
        return path

    def texts(self, selector):
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((e) => e.textContent)",
            selector)

    def box(self, selector):
        """Where an element is on the screen."""
        return self.browser.run(
            "return document.querySelector(arguments[0]).getBoundingClientRect().toJSON()",
            selector)

    def assert_jumps_stay(self):
        """The links to the parts stay on the screen, and each leads to its part."""
        for link in self.texts(".jumps a"):
            self.browser.run("scrollTo(0, 1e6)")
            self.assertEqual(self.box(".jumps")["top"], 0)
            self.browser.run("[...document.querySelectorAll('.jumps a')]"
                             ".find((a) => a.textContent === arguments[0]).click()", link)
            place = self.browser.run("return location.hash")
            bottom = self.browser.run("return innerHeight")
            self.assertTrue(0 < self.box(place)["top"] < bottom, link)

    def assert_named(self):
        """Each drawing has a name and a description, and no id stands twice."""
        ids = self.browser.run("return [...document.querySelectorAll('[id]')].map((e) => e.id)")
        self.assertEqual(len(ids), len(set(ids)))
        self.assertEqual(self.browser.run(
            "return [...document.querySelectorAll('svg[role=img]')].flatMap((e) =>"
            "e.getAttribute('aria-labelledby').split(' '))"
            ".filter((id) => !document.getElementById(id)?.textContent)"), [])
