# SPDX-License-Identifier: Apache-2.0
"""The page of `qvrules evaluate --format html` in a real browser."""
import json
import os
import subprocess
import unittest

import browser

RULES = """version 1
elite first also-tree
decide 0.97 code 900 when first_reverse_dynamic == yes and hop_behind_first == yes
tree {
    first_reverse_dynamic == yes: confidence 0.99 support 50
    first_reverse_dynamic == no: confidence 0.02 support 30
    first_reverse_dynamic == unknown: confidence 0.5 support 20
}
"""
DYNAMIC, SERVER, UNNAMED = "1-2-0-192.dyn.example.net", "mail.example.net", "unknown"
HOSTILE = "<img src onerror>\"& '<!--\u202eabc"

# For each element with text of its own: the contrast of its colour with what lies behind it.
LEAST_CONTRAST = """
const luminance = ([r, g, b]) => [r, g, b].map((c) => c / 255)
  .map((c) => c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
  .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
const numbers = (colour) => colour.match(/[\\d.]+/g).map(Number);
const behind = (element) => {
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
  const paper = luminance(behind(element));
  const contrast = (Math.max(ink, paper) + 0.05) / (Math.min(ink, paper) + 0.05);
  if (contrast < least[0]) least = [contrast, text];
}
return least;
"""


def message(reverse, address="192.0.2.7"):
    return (f"From x@example.org Mon Jan  1 10:00:00 2024\nReceived: from pc.example.net ({reverse} "
            f"[{address}])\n\tby mx.example.org; Mon, 1 Jan 2024 10:00:00 +0000\n"
            "From: Ann <ann@example.net>\nMessage-ID: <1@example.net>\n\n")


class EvaluationPage(browser.BrowserTest):
    def evaluate(self, form, *mail, rules="r.qvr"):
        """The file with a report on `mail`: pairs of an option and [CORPUS=]PATH."""
        path = self.folder / f"page.{form}"
        subprocess.run([os.environ["QV_RULES_PROGRAM"], "evaluate", self.write(rules, RULES),
                        "--dns", "off", "--format", form, "-o", path, *map(str, mail)], check=True)
        return path

    def mail(self, name, *messages):
        return self.write(f"{name}.mbox", "".join(messages))

    def many(self):
        spam = self.mail("spam", *[message(DYNAMIC)] * 40, *[message(SERVER)] * 3)
        ham = self.mail("ham", *[message(SERVER)] * 50, message(DYNAMIC), message(UNNAMED),
                        message(SERVER, "10.0.0.1"))
        few = self.mail("few", message(UNNAMED))
        private = self.mail("private", message(SERVER, "10.0.0.1"))
        return ("--spam", f"site={spam}", "--ham", f"site={ham}", "--ham", f"only ham={ham}",
                "--spam", f"{HOSTILE}={few}", "--ham", f"private={private}")

    def texts(self, selector):
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((e) => e.textContent)",
            selector)

    def shown(self):
        return self.browser.run("return [...document.querySelectorAll('.corpus')]"
                                ".filter((e) => e.checkVisibility()).map((e) => e.id)")

    def test_fits_every_screen_in_both_schemes(self):
        page = self.evaluate("html", *self.many())
        for size in (browser.DESKTOP, browser.PHONE, (320, 640)):
            for scheme in ("light", "dark"):
                self.browser.open(page, size, scheme)
                for link in self.browser.find_all(".corpora a"):
                    link.click()
                    self.assert_fits()
                self.picture(f"evaluation-{size[0]}-{scheme}", whole=True)

    def test_text_has_contrast(self):
        page = self.evaluate("html", *self.many())
        for scheme in ("light", "dark"):
            self.browser.open(page, scheme=scheme)
            least, text = self.browser.run(LEAST_CONTRAST)
            self.assertGreater(least, 4.5, f"{scheme}: {text}")

    def test_chosen_corpus_is_shown_alone(self):
        page = self.evaluate("html", *self.many())
        self.browser.open(page)
        self.assertEqual(self.shown(), ["together"])
        link = self.browser.find(".corpora a[href='#corpus-2']")
        link.send_keys("\n")
        self.assertEqual(self.shown(), ["corpus-2"])
        self.assertEqual(self.texts(".corpora a[aria-current=true]"), ["only ham"])
        self.browser.open(f"{page.as_uri()}#corpus-4")
        self.assertEqual(self.shown(), ["corpus-4"])
        self.browser.open(f"{page.as_uri()}#uses")  # no corpus: another place on the page
        self.assertEqual(self.shown(), ["corpus-4"])

    def test_paper_takes_all_corpora(self):
        self.browser.open(self.evaluate("html", *self.many()))
        self.browser.command("Emulation.setEmulatedMedia", media="print")
        self.assertEqual(len(self.shown()), 5)

    def test_tells_everything_without_scripts(self):
        page = self.evaluate("html", *self.many())
        self.browser.command("Emulation.setScriptExecutionDisabled", value=True)
        try:
            self.browser.open(page)
            self.assertTrue(all(e.is_displayed() for e in self.browser.find_all(".corpus")))
        finally:
            self.browser.command("Emulation.setScriptExecutionDisabled", value=False)

    def test_foreign_names_are_text(self):
        self.browser.open(self.evaluate("html", *self.many(), rules="<b>&amp;.qvr"))
        self.assertIn("<b>&amp;.qvr", self.browser.find("h1").text)
        self.assertEqual(self.browser.find_all("main img, h1 b"), [])
        self.assertIn(HOSTILE, self.texts(".corpus h2"))
        self.assertIn(HOSTILE, self.texts("#comparison ~ .figures text"))

    def test_tables_hold_the_figures_of_the_json_report(self):
        mail = self.many()
        report = json.loads(self.evaluate("json", *mail).read_text())
        self.browser.open(self.evaluate("html", *mail))
        for number, corpus in enumerate([report["together"], *report["corpora"]]):
            name = f"#corpus-{number}" if number else "#together"
            cells = self.texts(f"{name} td")
            if corpus["judgeable"]["count"] == 0:
                self.assertEqual(cells, [])
                continue
            for rate in ("caught", "falsePositives", "passed", "missed", "judgeable"):
                self.assertIn(str(corpus[rate]["count"]), cells)
                self.assertIn(str(corpus[rate]["of"]), cells)
            both = corpus["caught"]["of"] > 0 and corpus["falsePositives"]["of"] > 0
            self.assertEqual(len(self.browser.find_all(f"{name} .curve:not(.undecided)")),
                             2 if both else 0)
        self.assertEqual(len(self.texts("#uses ~ .deciders > li")), len(report["deciders"]))

    def test_drawings_are_named_and_ids_are_unique(self):
        self.browser.open(self.evaluate("html", *self.many()))
        ids = self.browser.run("return [...document.querySelectorAll('[id]')].map((e) => e.id)")
        self.assertEqual(len(ids), len(set(ids)))
        self.assertEqual(self.browser.run(
            "return [...document.querySelectorAll('svg[role=img]')].flatMap((e) =>"
            "e.getAttribute('aria-labelledby').split(' '))"
            ".filter((id) => !document.getElementById(id)?.textContent)"), [])

    def test_keyboard_reaches_what_scrolls(self):
        self.browser.open(self.evaluate("html", *self.many()), browser.PHONE)
        self.assertEqual(self.browser.run(
            "return [...document.querySelectorAll('main *')].filter((e) => e.checkVisibility()"
            " && e.scrollWidth > e.clientWidth + 1 && getComputedStyle(e).overflowX === 'auto'"
            " && e.tabIndex !== 0).length"), 0)

    def test_mail_without_any_judgeable_message(self):
        private = self.mail("private", message(SERVER, "10.0.0.1"))
        self.browser.open(self.evaluate("html", "--ham", private), browser.PHONE)
        self.assert_fits()
        self.assertIn("No rule decided anything.", self.browser.find("main").text)
        self.assertEqual(self.browser.find_all("main svg"), [])


if __name__ == "__main__":
    unittest.main()
