# SPDX-License-Identifier: Apache-2.0
"""The pictures of the site, in a browser. QV_SITE names its folder."""
import os
import pathlib
import unittest

import browser

SITE = pathlib.Path(os.environ["QV_SITE"])
SHOWN = """
return Array.from(document.querySelectorAll('picture img'), (image) =>
    [image.currentSrc.replace(/.*[/]/, ''), image.naturalWidth, Math.round(image.clientWidth), image.alt.length]);"""


class Pictures(browser.BrowserTest):
    def check(self, page, size, names):
        self.browser.open(SITE / f"{page}.html", size)
        shown = self.browser.run(SHOWN)
        self.assertEqual([file for file, *_ in shown], names)
        for file, width, seen, words in shown:
            with self.subTest(file):
                self.assertGreater(words, 40)
                # What is drawn smaller than it is cannot be read.
                self.assertGreaterEqual(seen, 0.85 * width)
        self.assert_fits()

    def test_every_screen_gets_what_it_can_read(self):
        for page, names in (("seeing-rules", ["rules"]), ("learning", ["evaluation", "difference"])):
            self.check(page, browser.DESKTOP, [f"{name}.png" for name in names])
            self.check(page, browser.PHONE, [f"{name}-phone.png" for name in names])


if __name__ == "__main__":
    unittest.main()
