# SPDX-License-Identifier: Apache-2.0
"""What tests of pages about mail share: invented mail, a report written by qvrules, and checks that
every page has to pass."""
import os
import subprocess

import browser

DYNAMIC, SERVER, UNNAMED = "1-2-0-192.dyn.example.net", "mail.example.net", "unknown"
HOSTILE = "<img src onerror>\"& '<!--\u202eabc"

# For each element with text of its own: the contrast of its colour with what lies behind it.
LEAST_CONTRAST = """
const luminance = ([r, g, b]) => [r, g, b].map((c) => c / 255)
  .map((c) => c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
  .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
const numbers = (colour) => colour.match(/[\\d.]+/g).map(Number);
const after = (element) => {
  for (let at = element; at; at = at.parentElement) {
    const colour = numbers(getComputedStyle(at).backgroundColor);
    if (colour.length < 4 || colour[3] > 0) return colour;
  }
  return [255, 255, 255];
};
let least = [99, ""];
for (const element of document.querySelectorAll("body *")) {
  const text = [...element.childNodes].filter((n) => n.nodeType === 3).map((n) => n.data).join("");
  if (!text.trim() || element.closest("title, desc, script, .on-fill")) continue;
  const style = getComputedStyle(element);
  const ink = luminance(numbers(element.closest("svg") ? style.fill : style.color));
  const paper = luminance(after(element));
  const contrast = (Math.max(ink, paper) + 0.05) / (Math.min(ink, paper) + 0.05);
  if (contrast < least[0]) least = [contrast, text];
}
return least;
"""


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
        run = subprocess.run([os.environ["QV_RULES_PROGRAM"], command, *map(str, arguments),
                              "--dns", "off", "--format", form, "-o", path], check=False)
        self.assertEqual(run.returncode, status)
        return path

    def texts(self, selector):
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((e) => e.textContent)",
            selector)

    def assert_contrast(self, page):
        for scheme in ("light", "dark"):
            self.browser.open(page, scheme=scheme)
            least, text = self.browser.run(LEAST_CONTRAST)
            self.assertGreater(least, 4.5, f"{scheme}: {text}")

    def assert_named(self):
        """Each drawing has a name and a description, and no id stands twice."""
        ids = self.browser.run("return [...document.querySelectorAll('[id]')].map((e) => e.id)")
        self.assertEqual(len(ids), len(set(ids)))
        self.assertEqual(self.browser.run(
            "return [...document.querySelectorAll('svg[role=img]')].flatMap((e) =>"
            "e.getAttribute('aria-labelledby').split(' '))"
            ".filter((id) => !document.getElementById(id)?.textContent)"), [])
