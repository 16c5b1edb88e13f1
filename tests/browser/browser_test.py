# SPDX-License-Identifier: Apache-2.0
"""The browser sees what the tests of pages rely on it to see."""
import unittest

import browser


def page(body, head=""):
    return ("<!DOCTYPE html><html lang=en><head><meta charset=utf-8><title>t</title>"
            "<meta name=viewport content='width=device-width'>"
            f"<link rel=icon href='data:,'>{head}</head><body style='margin:0'>{body}</body>")


class BrowserSees(browser.BrowserTest):
    def open(self, body, head="", **how):
        self.browser.open(self.write("page.html", page(body, head)), **how)

    def test_quiet_page_has_no_problems(self):
        self.open("<p id=a>quiet</p>")
        self.assertEqual(self.browser.find("#a").text, "quiet")
        self.assertEqual(self.browser.problems(), [])

    def test_thrown_error(self):
        self.open("<script>undefined_name()</script>")
        self.assertIn("undefined_name", " ".join(self.browser.problems()))

    def test_blocked_script(self):
        policy = ("<meta http-equiv=Content-Security-Policy content=\"default-src 'none'; "
                  "img-src data:\">")
        self.open("<script>document.title = 'ran'</script>", policy)
        self.assertEqual(self.browser.run("return document.title"), "t")
        self.assertIn("Content Security Policy", " ".join(self.browser.problems()))

    def test_request_to_the_network(self):
        self.open("<img src='http://192.0.2.1:9/a.png' alt=''>")
        self.assertIn("request to http://192.0.2.1:9/a.png", self.browser.problems())

    def test_colour_scheme(self):
        style = ("<style>p { color: rgb(1, 1, 1) }"
                 "@media (prefers-color-scheme: dark) { p { color: rgb(9, 9, 9) } }</style>")
        colours = []
        for scheme in ("light", "dark"):
            self.open("<p>x</p>", style, scheme=scheme)
            colours.append(self.browser.run(
                "return getComputedStyle(document.querySelector('p')).color"))
        self.assertEqual(colours, ["rgb(1, 1, 1)", "rgb(9, 9, 9)"])

    def test_width_of_a_phone(self):
        self.open("<div style='width: 500px'>wide</div>", size=browser.PHONE)
        self.assertGreater(self.browser.overflow(), 100)
        self.open("<div style='width: 100%'>fits</div>", size=browser.PHONE)
        self.assert_fits()

    def test_screenshot(self):
        self.open("<div style='height: 2000px'></div>")
        path = self.folder / "picture.png"
        self.browser.screenshot(path, whole=True)
        header = path.read_bytes()[:24]
        self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(int.from_bytes(header[20:24], "big"), 2000)


if __name__ == "__main__":
    unittest.main()
