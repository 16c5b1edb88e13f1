# SPDX-License-Identifier: Apache-2.0
"""The page of `qvrules diff --format html` in a real browser."""
import json
import unittest

import browser
import mailpages
from mailpages import DYNAMIC, HOSTILE, SERVER, UNNAMED, message

OLD = """version 1
tree {
    first_reverse_dynamic == yes: confidence 0.93 support 30
    first_reverse_dynamic == no: confidence 0.02 support 60
    first_reverse_dynamic == unknown: confidence 0.5 support 10
}
"""
NEW = OLD.replace("0.93", "0.97").replace("0.02", "0.06").replace("0.5", "0.6")


class DifferencePage(mailpages.MailPageTest):
    def diff(self, form, *mail, status=1, new=NEW, name="new.qvr"):
        return self.report(form, status, "diff", self.write("old.qvr", OLD),
                           self.write(name, new), *mail)

    def many(self):
        spam = self.mail("spam", *[message(DYNAMIC)] * 7, *[message(SERVER)] * 3)
        ham = self.mail("ham", *[message(SERVER)] * 5, message(DYNAMIC), message(UNNAMED),
                        message(SERVER, "10.0.0.1"))
        return ("--spam", f"site={spam}", "--ham", f"site={ham}", "--on", f"{HOSTILE}={ham}")

    def test_fits_every_screen_in_both_schemes(self):
        page = self.diff("html", *self.many())
        for size in (browser.DESKTOP, browser.PHONE, (320, 640)):
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
        self.assertEqual(len(self.texts("#changes ~ .deciders > li")), len(report["changes"]))
        self.assertEqual(self.texts("#ways ~ .pair tbody th"),
                         [HOSTILE, "site", "ham \u2192 none", "none \u2192 spam"])

    def test_names_the_rules_before_and_after(self):
        self.browser.open(self.diff("html", *self.many()))
        first = self.texts("#changes ~ .deciders > li")[0]
        for part in ("ham \u2192 none", "3 spam, 5 ham, 5 unsorted", "Before: node 4, 0.02 spam",
                     "After: node 4, 0.06 spam", "first_reverse_dynamic == no", "spam.mbox:8"):
            self.assertIn(part, first)

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
