# SPDX-License-Identifier: Apache-2.0
"""The page of `qvrules evaluate --format html` in a real browser."""
import json
import unittest

import browser
import mailpages
from mailpages import DYNAMIC, HOSTILE, HOSTILE_SHOWN, SERVER, UNNAMED, message

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
    def evaluate(self, form, *mail, rules="r.qvr", text=RULES):
        """The file with a report on `mail`: pairs of an option and [CORPUS=]PATH."""
        return self.report(form, 0, "evaluate", self.write(rules, text), *mail)

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
        for size in (mailpages.WIDE, browser.PHONE, (320, 640)):
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

    def test_gives_the_names_and_sentences_of_the_rules(self):
        sentence = "<img src=x> Why it is there."
        text = RULES.replace("confidence 0.99 support 50",
                             f'confidence 0.99 support 50 name "A <b> line" because "{sentence}"')
        self.assertNotEqual(text, RULES)
        self.browser.open(self.evaluate("html", *self.many(), text=text))
        rules = "".join(self.texts(".deciders > li"))
        self.assertIn("node 3 (A <b> line) 40 spam", rules)
        self.assertIn(sentence, rules)
        self.assertEqual(self.browser.find_all("main img, main .decider b"), [])

    def test_foreign_names_are_text(self):
        self.browser.open(self.evaluate("html", *self.many(), rules="<b>&amp;.qvr"))
        self.assertIn("<b>&amp;.qvr", self.browser.find("h1").text)
        self.assertEqual(self.browser.find_all("main img, h1 b"), [])
        self.assertIn(HOSTILE_SHOWN, self.texts(".corpus h2"))
        self.assertIn(HOSTILE_SHOWN, self.texts("#comparison ~ .figures text"))

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

    def test_a_phone_shows_every_rate_of_each_corpus(self):
        self.browser.open(self.evaluate("html", *self.many()), browser.PHONE)
        cells = self.browser.run("""
            return [...document.querySelectorAll('#comparison ~ .scroll td')].map((cell) => [
              cell.getBoundingClientRect().left, cell.getBoundingClientRect().right,
              cell.scrollWidth - cell.clientWidth, getComputedStyle(cell, '::before').content,
              cell.textContent]);""")
        self.assertEqual(len(cells), 5 * 8)
        for left, right, hidden, name, text in cells:
            self.assertTrue(0 < left < right < browser.PHONE[0] and hidden == 0, text)
            self.assertGreater(len(name), 4)  # in quotation marks
        self.assertEqual([cells[0][3], cells[1][3]], ['"Spam called spam"', '"Ham called spam"'])

    def test_names_of_rows_stay_while_a_table_scrolls(self):
        self.browser.open(self.evaluate("html", *self.many()), browser.PHONE)
        left, moved = self.browser.run("""
            const box = document.querySelector('#together .scroll');
            box.scrollLeft = 1e6;
            return [box.querySelector('tbody th').getBoundingClientRect().left -
                    box.getBoundingClientRect().left, box.scrollLeft];""")
        self.assertGreater(moved, 50)
        self.assertAlmostEqual(left, 0, delta=2)

    def test_says_first_what_does_not_suit_the_mail(self):
        upside_down = RULES.replace("0.99", "0.015").replace("0.02", "0.96").replace("0.97", "0.01")
        spam = self.mail("spam", *[message(DYNAMIC)] * 40, *[message(SERVER)] * 3)
        ham = self.mail("ham", *[message(SERVER)] * 50)
        mail = ("--spam", f"odd={spam}", "--ham", f"odd={ham}", "--ham", f"only ham={ham}")
        rules = self.write("r.qvr", upside_down)
        report = json.loads(self.report("json", 0, "evaluate", rules, *mail).read_text())
        odd = report["corpora"][0]
        self.assertEqual(odd["name"], "odd")
        self.assertEqual(len(odd["concerns"]), 2)
        self.assertIn("below 0.5", odd["concerns"][0])
        self.assertIn("Confidences are far off", odd["concerns"][1])
        self.assertGreater(odd["calibrationGap"], 0.5)
        self.assertEqual(report["corpora"][1]["concerns"], [])
        text = self.report("text", 0, "evaluate", rules, *mail).read_text()
        for concern in odd["concerns"]:
            self.assertIn(f"\n  note: {concern}\n", text)
        page = self.report("html", 0, "evaluate", rules, *mail)
        for size in (mailpages.WIDE, browser.PHONE):
            self.browser.open(page, size)
            self.assert_fits()
            self.assertEqual(self.texts(".concern-box li"),
                             odd["concerns"] + report["together"]["concerns"])
            self.assertEqual(self.texts("#corpus-1 .concerns li"), odd["concerns"])
            self.assertEqual(len(self.browser.find_all("#corpus-2 .concerns")), 0)
            flags = self.texts("#comparison ~ .scroll [data-name='ROC area']")
            self.assertEqual([flag.endswith("below 0.5") for flag in flags], [True, False, True])
            self.browser.find(".concern-box a[href='#corpus-1']").click()
            self.wait_for(lambda: self.shown() == ["corpus-1"])
            self.wait_for(lambda: self.box("#corpus-1")["top"] < size[1])
        self.assert_contrast(page)

    def test_rules_that_suit_the_mail_raise_no_concern(self):
        spam = self.mail("spam", *[message(DYNAMIC)] * 40)
        ham = self.mail("ham", *[message(SERVER)] * 50)
        self.browser.open(self.evaluate("html", "--spam", spam, "--ham", ham))
        self.assertEqual(self.browser.find_all(".concerns, .concern-box, .flag"), [])

    def test_no_tile_and_no_chart_stands_alone_in_a_row(self):
        self.browser.open(self.evaluate("html", *self.many()))
        for width in (1400, 1000, 700, 390):
            self.browser.show((width, 900))
            last, row = self.box(".tiles > :last-child"), self.box(".tiles")
            self.assertAlmostEqual(last["right"], row["right"], delta=1)
            chart, row = self.box(".figures > :last-child"), self.box(".figures")
            self.assertAlmostEqual(chart["left"], row["left"], delta=1)
            self.assertAlmostEqual(chart["right"], row["right"], delta=1)
            caption = self.box(".figures > :last-child figcaption")
            drawing = self.box(".figures > :last-child svg")
            if width >= 1000:
                self.assertGreaterEqual(drawing["left"], caption["right"])
                self.assertLess(drawing["top"], caption["bottom"])
            else:
                self.assertGreaterEqual(drawing["top"], caption["bottom"])

    def test_rules_open_when_asked_for(self):
        self.browser.open(self.evaluate("html", *self.many()), browser.PHONE)
        self.assertEqual(self.browser.find_all(".deciders details[open]"), [])
        summary = self.browser.find("#uses ~ .deciders summary")
        summary.send_keys("\n")
        opened = self.browser.find("#uses ~ .deciders details[open]").text
        words, raw = (opened.index(part) for part in ("relay", "first_reverse_dynamic == "))
        self.assertLess(words, raw)
        self.assert_fits()

    def test_its_parts_stay_within_reach(self):
        page = self.evaluate("html", *self.many())
        for size in (mailpages.WIDE, browser.PHONE):
            self.browser.open(page, size)
            self.assert_jumps_stay()

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
