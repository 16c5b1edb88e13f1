# SPDX-License-Identifier: Apache-2.0
"""The page of `qvrules evaluate --format html` in a real browser."""
import json
import unittest

import browser
import mailpages
from mailpages import DYNAMIC, HOSTILE, SERVER, UNNAMED, message

RULES = """version 1
elite first also-tree
decide 0.97 code 900 when first_reverse_dynamic == yes and hop_behind_first == yes
tree {
    first_reverse_dynamic == yes: confidence 0.99 support 50
    first_reverse_dynamic == no: confidence 0.02 support 30
    first_reverse_dynamic == unknown: confidence 0.5 support 20
}
"""


class EvaluationPage(mailpages.MailPageTest):
    def evaluate(self, form, *mail, rules="r.qvr"):
        """The file with a report on `mail`: pairs of an option and [CORPUS=]PATH."""
        return self.report(form, 0, "evaluate", self.write(rules, RULES), *mail)

    def many(self):
        spam = self.mail("spam", *[message(DYNAMIC)] * 40, *[message(SERVER)] * 3)
        ham = self.mail("ham", *[message(SERVER)] * 50, message(DYNAMIC), message(UNNAMED),
                        message(SERVER, "10.0.0.1"))
        few = self.mail("few", message(UNNAMED))
        private = self.mail("private", message(SERVER, "10.0.0.1"))
        return ("--spam", f"site={spam}", "--ham", f"site={ham}", "--ham", f"only ham={ham}",
                "--spam", f"{HOSTILE}={few}", "--ham", f"private={private}")

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

    def test_labels_of_drawings_stay_apart_in_wide_fonts(self):
        page = self.evaluate("html", *self.many())
        for size in (browser.DESKTOP, browser.PHONE):
            self.browser.open(page, size)
            self.browser.widen_text()
            for link in self.browser.find_all(".corpora a"):
                link.click()
                self.picture(f"evaluation-wide-{size[0]}-{link.text[:4]}", whole=True)
                self.assertEqual(self.browser.touching_labels(), [])

    def test_text_has_contrast(self):
        self.assert_contrast(self.evaluate("html", *self.many()))

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
        self.browser.size = (718, 1000)  # A4 without its margins
        self.browser.set_screen(*self.browser.size)
        self.assert_fits()

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
        self.assert_named()

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
