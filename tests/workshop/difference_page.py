# SPDX-License-Identifier: Apache-2.0
"""The page of `qvrules diff --format html` in a real browser."""
import json
import unittest

import browser
import mailpages
from mailpages import DYNAMIC, HOSTILE, HOSTILE_SHOWN, SERVER, UNNAMED, message

OLD = """version 1
tree {
    first_reverse_dynamic == yes: confidence 0.93 support 30
    first_reverse_dynamic == no: confidence 0.02 support 60
    first_reverse_dynamic == unknown: confidence 0.5 support 10
}
"""
NEW = OLD.replace("0.93", "0.97").replace("0.02", "0.06").replace("0.5", "0.6")


class DifferencePage(mailpages.MailPageTest):
    def diff(self, form, *mail, status=1, old=OLD, new=NEW, name="new.qvr"):
        return self.report(form, status, "diff", self.write("old.qvr", old),
                           self.write(name, new), *mail)

    def many(self):
        spam = self.mail("spam", *[message(DYNAMIC)] * 7, *[message(SERVER)] * 3)
        ham = self.mail("ham", *[message(SERVER)] * 5, message(DYNAMIC), message(UNNAMED),
                        message(SERVER, "10.0.0.1"))
        return ("--spam", f"site={spam}", "--ham", f"site={ham}", "--on", f"{HOSTILE}={ham}")

    def test_fits_every_screen_in_both_schemes(self):
        page = self.diff("html", *self.many())
        for size in (mailpages.WIDE, browser.PHONE, (320, 640)):
            for scheme in ("light", "dark"):
                self.browser.open(page, size, scheme)
                self.assert_fits()
                self.picture(f"difference-{size[0]}-{scheme}", whole=True)

    def test_text_has_contrast(self):
        self.assert_contrast(self.diff("html", *self.many()))

    def test_tells_the_figures_of_the_json_report(self):
        mail = self.many()
        report = json.loads(self.diff("json", *mail).read_text())
        self.browser.open(self.diff("html", *mail))
        self.assert_named()
        tiles = self.texts(".tiles dd.figure")
        self.assertEqual(tiles[1:4], [str(report["better"]), str(report["worse"]),
                                      str(report["changed"]["unsorted"])])
        self.assertEqual((report["better"], report["worse"]), (10, 6))
        rows = self.texts("#verdicts ~ .pair td")
        self.assertEqual(rows, [str(report["verdicts"][kind][when][verdict])
                                for kind in ("spam", "ham", "unsorted")
                                for when in ("before", "after")
                                for verdict in ("spam", "none", "ham")])
        self.assertEqual(len(self.texts("#changes ~ .way li:has(> details)")), len(report["changes"]))
        self.assertEqual(self.texts("#ways ~ .pair tbody th"),
                         [HOSTILE_SHOWN, "site", "called ham, now without verdict",
                          "without verdict, now called spam"])

    def test_says_in_words_what_changes_and_then_by_which_rules(self):
        self.browser.open(self.diff("html", *self.many()))
        self.assertEqual(self.texts(".way h3"), ["13 messages: called ham, now without verdict",
                                                 "9 messages: without verdict, now called spam"])
        first = self.texts(".way .deciders > li")[0]
        places = [first.index(part) for part in (
            "3 spam, 5 ham, 5 unsorted", "Now what counts: the reverse name of the first relay does "
            "not look dynamically assigned.", "node 4, now node 4", "node 4, 0.02 spam",
            "first_reverse_dynamic == no", "node 4, 0.06 spam", "spam.mbox:8")]
        self.assertEqual(places, sorted(places))

    def test_only_the_first_kind_of_change_is_open(self):
        for size in (mailpages.WIDE, browser.PHONE):
            self.browser.open(self.diff("html", *self.many()), size)
            self.assertEqual([one.get_attribute("open") is not None
                              for one in self.browser.find_all(".way")], [True, False])
            self.assertEqual(self.browser.find_all(".deciders details[open]"), [])

    def test_samples_open(self):
        for size in (mailpages.WIDE, browser.PHONE):
            self.browser.open(self.diff("html", *self.many()), size)
            self.browser.run("document.querySelector('.deciders details').open = true")
            sample = self.browser.find(".samples details")
            self.assertIn("ham.mbox:1", sample.text)
            self.assertNotIn("first_helo_is_domain is yes", sample.text)
            sample.find_element("css selector", "summary").send_keys("\n")
            self.assertIn("first_helo_is_domain is yes", sample.text)
            self.assertIn("the name the first relay announced looks like a full host name",
                          sample.text)
            self.assert_fits()

    def test_changes_that_differ_in_the_adjustment_alone_share_a_card(self):
        adjusted = ("elite first also-tree\n"
                    "adjust 0.001 code 'h' when first_helo_matches_reverse == yes\ntree {")
        old, new = (text.replace("tree {", adjusted) for text in (OLD, NEW))
        mail = self.mail("ham", *[message(SERVER)] * 5, *[message("mail.other.example")] * 4)
        sets = (self.write("one.qvr", old), self.write("two.qvr", new))
        report = json.loads(self.report("json", 1, "diff", *sets, "--ham", mail).read_text())
        self.assertEqual(len(report["changes"]), 2)
        self.browser.open(self.report("html", 1, "diff", *sets, "--ham", mail))
        cards = self.texts(".way .deciders > li")
        self.assertEqual(len(cards), 1)
        for part in ("9 messages", "node 4, now node 4; 2 variants", "adjusted by +0.001",
                     "ham.mbox:1", "ham.mbox:6"):
            self.assertIn(part, cards[0])

    def test_the_filter_leaves_what_holds_all_its_words(self):
        shown = lambda: len([one for one in self.browser.find_all(".deciders > li")
                             if one.is_displayed()])
        for size in (mailpages.WIDE, browser.PHONE):
            self.browser.open(self.diff("html", *self.many()), size)
            before = shown()
            field = self.browser.find("#filter")
            field.send_keys("NODE  3, now")
            self.assertEqual(shown(), 1)
            self.assertIn("without verdict, now called spam", self.browser.find("main").text)
            self.assertEqual(len(self.texts(".way:not([hidden])")), 1)
            self.assertRegex(self.browser.find("#filtered").text, "^1 of 2 kinds of change$")
            field.send_keys(" no such words")
            self.assertEqual(shown(), 0)
            field.clear()
            field.send_keys(" ")
            self.assertEqual((shown(), self.browser.find("#filtered").text), (before, ""))

    def test_its_parts_stay_within_reach(self):
        for size in (mailpages.WIDE, browser.PHONE):
            self.browser.open(self.diff("html", *self.many()), size)
            self.assert_jumps_stay()

    def test_gives_the_names_and_sentences_of_the_rules(self):
        sentence = "<img src=x> Why it is there."
        old = OLD.replace("confidence 0.02 support 60",
                          f'confidence 0.02 support 60 name "A <b> server" because "{sentence}"')
        self.assertNotEqual(old, OLD)
        self.browser.open(self.diff("html", *self.many(), old=old))
        first = self.texts("#changes ~ .way .deciders > li")[0]
        self.assertIn("node 4 (A <b> server), 0.02 spam", first)
        self.assertIn(sentence, first)
        self.assertEqual(self.browser.find_all("main img"), [])

    def test_foreign_names_are_text(self):
        self.browser.open(self.diff("html", *self.many(), name="<b>&amp;.qvr"))
        self.assertIn("<b>&amp;.qvr", self.browser.find("h1").text)
        self.assertEqual(self.browser.find_all("main img, h1 b"), [])

    def test_same_rules(self):
        self.browser.open(self.diff("html", *self.many(), status=0, new=OLD), browser.PHONE)
        self.assert_fits()
        self.assertIn("No verdict changes.", self.browser.find("main").text)

    def test_mail_without_any_judgeable_message(self):
        private = self.mail("private", message(SERVER, "10.0.0.1"))
        self.browser.open(self.diff("html", "--on", private, status=0))
        self.assertIn("No message can be judged.", self.browser.find("main").text)


if __name__ == "__main__":
    unittest.main()
