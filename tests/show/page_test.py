# SPDX-License-Identifier: Apache-2.0
"""The page of a rule set, in a browser."""
import html.parser
import re
import unittest

from selenium.webdriver.common.keys import Keys

import browser
import showpage


class Structure(html.parser.HTMLParser):
    """What the document says without its script."""

    def __init__(self):
        super().__init__()
        self.nodes, self.policy, self.addresses = [], "", []

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if attrs.get("role") == "treeitem":
            self.nodes.append((attrs.get("data-number"), attrs["aria-level"]))
        if attrs.get("http-equiv") == "Content-Security-Policy":
            self.policy = attrs["content"]
        for name in ("src", "href", "style", "onclick"):
            if name in attrs:
                self.addresses.append(attrs[name])


SPAM = showpage.EXAMPLES / "spam-bot-dynamic-name.eml"


class Page(showpage.ShowPageTest):
    def open(self, *arguments, size=browser.DESKTOP, scheme="light", **how):
        self.browser.open(self.page(*arguments, **how), size, scheme)

    # --- the document ---

    def test_says_everything_without_its_script(self):
        structure = Structure()
        structure.feed(self.page().read_text(encoding="utf-8"))
        numbers = [int(number) for number, _ in structure.nodes]
        self.assertEqual(numbers, list(range(2, 20)))
        self.assertEqual([level for _, level in structure.nodes][:4], ["1", "2", "3", "3"])

    def test_lets_nothing_in(self):
        structure = Structure()
        structure.feed(self.page().read_text(encoding="utf-8"))
        self.assertIn("default-src 'none'", structure.policy)
        self.assertNotIn("unsafe", structure.policy)
        self.assertNotIn("connect-src", structure.policy)
        self.assertEqual([one for one in structure.addresses if not one.startswith("#")], [])

    def test_fits_every_screen(self):
        for size, name in ((browser.DESKTOP, "desktop"), (browser.PHONE, "phone")):
            for scheme in ("light", "dark"):
                self.open("--message", SPAM, "--dns", "off", size=size, scheme=scheme)
                self.browser.find("#explanation summary").click()
                self.assert_fits()
                self.picture(f"show-{name}-{scheme}", whole=True)

    def test_the_picture_holds_text_of_every_width(self):
        odd = """version 1
            elite first also-tree
            decide 0.97 code 9001 when first_reverse_dynamic == yes and first_helo_dynamic == yes and
                first_helo_matches_reverse == yes and hop_behind_first == yes and chain_broken == yes
            tree {
                hops_helo_mismatches_reverse != 2: confidence 97 support 33 {
                    hops_helo_mismatches_reverse == 2147483647: confidence 0.99945 support 33.3
                    -> 700
                }
                message_id_matches_reverse == unknown: confidence 0.03 support 12.34 {
                }
            }"""
        for source in (self.write("odd.qvr", odd), showpage.DEFAULT):
            path = self.folder / "picture.svg"
            mail = showpage.EXAMPLES / "gmail-like.eml"
            showpage.rules("show", source, "--format", "svg", "-o", path, "--on", mail, "--dns",
                           "off")
            page = self.write("picture.html", "<!DOCTYPE html><meta charset=utf-8><title>x</title>"
                              + path.read_text(encoding="utf-8").split("?>", 1)[1])
            self.browser.open(page)
            self.picture(f"picture-{source.stem}", whole=True)
            self.browser.widen_text()
            self.picture(f"picture-wide-{source.stem}", whole=True)
            self.assertEqual(self.browser.touching_labels(), [])
            outside = self.browser.run("""
                return [...document.querySelectorAll('.box')].filter((box) => {
                  const frame = box.querySelector('rect').getBoundingClientRect();
                  return [...box.querySelectorAll('text')].some((text) =>
                      text.getBoundingClientRect().right > frame.right);
                }).map((box) => box.textContent);""")
            self.assertEqual(outside, [])

    def test_is_dark_where_the_reader_wants_it(self):
        colours = []
        for scheme in ("light", "dark"):
            self.open(scheme=scheme)
            colours.append(self.browser.run(
                "const style = getComputedStyle(document.querySelector('#tree .s6'));"
                "return [style.color, style.backgroundColor];"))
        self.assertEqual(len({tuple(one) for one in colours}), 2)
        for ink, paper in colours:
            self.assertGreaterEqual(contrast(ink, paper), 4.5)

    # --- the tree ---

    def test_opens_and_closes_by_mouse(self):
        self.open()
        self.browser.find("#close-all").click()
        self.assertEqual(self.shown_nodes(), [2])
        self.browser.find("#node-2 .words").click()
        self.assertEqual(self.shown_nodes(), [2, 3, 6, 13])
        self.browser.find("#open-all").click()
        self.assertEqual(len(self.shown_nodes()), 18)

    def test_is_walked_by_keyboard(self):
        self.open()
        self.browser.find("#close-all").click()
        root = self.browser.find("#node-2")
        self.assertEqual(root.get_attribute("tabindex"), "0")
        self.assertEqual(root.get_attribute("aria-expanded"), "false")
        keys = (Keys.ARROW_RIGHT, Keys.ARROW_RIGHT, Keys.ARROW_DOWN, Keys.ENTER, Keys.ARROW_RIGHT)
        at = root
        for key in keys:
            at.send_keys(key)
            at = self.browser.driver.switch_to.active_element
        self.assertEqual(at.get_attribute("id"), "node-7")
        at.send_keys(Keys.ARROW_LEFT)
        at = self.browser.driver.switch_to.active_element
        self.assertEqual(at.get_attribute("id"), "node-6")
        at.send_keys("*")
        self.assertEqual(self.shown_nodes(), [2, 3, 4, 5, 6, 7, 8, 13, 14, 19])
        at.send_keys(Keys.END)
        last = self.browser.driver.switch_to.active_element
        self.assertEqual(last.get_attribute("id"), "node-19")
        self.assertEqual(len(self.browser.find_all("#tree [tabindex='0']")), 1)

    def test_searches_words_attributes_and_numbers(self):
        self.open("--message", SPAM, "--max-elite-level", "-1")
        self.choose("")
        for text, nodes, rules in (("first_forged", [2, 13, 14, 15, 16, 17], ["o"]),
                                   ("BEHIND the first", [2, 6, 7, 8], ["9001"]),
                                   ("14", [2, 13, 14], []), ("9002", [], ["9002"]),
                                   ("no such words", [], [])):
            field = self.browser.find("#search")
            field.clear()
            field.send_keys(text)
            self.assertEqual(self.shown_nodes(), nodes, text)
            self.assertEqual(self.browser.run(
                "return Array.from(document.querySelectorAll('#elite tbody tr'))"
                ".filter((row) => !row.hidden).map((row) => row.dataset.code)"), rules, text)
        self.browser.find("#search").send_keys("no such words")
        self.choose(0)
        self.assertEqual(self.shown_nodes(), [2, 6, 8, 10, 11])
        self.browser.find("#search").send_keys(Keys.ESCAPE)
        self.assertEqual(self.browser.find("#found").text, "")
        self.assertGreater(len(self.shown_nodes()), 3)

    def test_shows_measured_traffic_beside_that_of_the_training(self):
        self.open("--on", showpage.EXAMPLES, "--dns-data", showpage.EXAMPLES / "dns.zone")
        self.browser.find("#open-all").click()
        paths = [record["explain"]["tree"]["path"] for record in showpage.records()]
        rules = [record["node"] for record in showpage.records()]
        judged = [path for path, node in zip(paths, rules) if path or node]
        for node in (2, 13, 16):
            share = 100 * sum(node in path for path in judged) / len(judged)
            shown = self.browser.find(f"#node-{node} .figures").text
            self.assertIn(f"{share:.3g} % of the measured mail", shown)
            self.assertIn("of the training mail", shown)
        fired = 100 * rules.count(9001) / len(judged)
        self.assertIn(f"{fired:.3g} %", self.browser.find("#elite tr[data-code='9001']").text)

    # --- hostile rules ---

    def test_survives_a_chain_of_497_nodes(self):
        lines = [f"node {number} chain_broken == {number}: confidence 0.5 support 50 {{"
                 for number in range(3, 498)]
        self.open(text="tree {\n" + "\n".join(lines) + "\nnode 498 chain_broken == 9: "
                  "confidence 0.9 support 1\n" + "}" * 496 + "\n", size=browser.PHONE)
        self.browser.find("#open-all").click()
        self.assertEqual(self.shown_nodes(), list(range(2, 499)))
        self.assert_fits()

    def test_shows_where_walks_give_up(self):
        self.open(text="tree {\n chain_broken == yes: confidence 0.2 support 20 {\n -> 2\n }\n"
                  " chain_broken == no: confidence 0.3 support 30 {\n -> 700\n -> 3\n }\n}\n")
        self.browser.find("#open-all").click()
        text = self.browser.find("#tree").text
        self.assertIn("back to node 2: the walk can go in circles", text)
        self.assertIn("child 700 is outside the table: the walk gives up here", text)

    def test_rules_that_no_host_loads_are_shown_and_judge_nothing(self):
        # Node 3 tests attribute 40.
        (self.folder / "bad").mkdir()
        (self.folder / "bad/qv.dt").write_bytes(bytes(3 * 92) + bytes([40]) + bytes(91))
        path = self.folder / "bad.html"
        showpage.rules("show", self.folder / "bad", "--format", "html", "-o", path)
        self.browser.open(path)
        self.assertIn("No host would load these rules", self.browser.find("header").text)
        self.assertEqual(self.browser.find_all("#try"), [])
        self.assertNotIn("--serve", self.browser.find("header").text)


def contrast(*colours):
    """The contrast of two colours as the Web Content Accessibility Guidelines define it."""
    def luminance(colour):
        parts = [int(part) / 255 for part in re.findall(r"\d+", colour)[:3]]
        red, green, blue = (part / 12.92 if part <= 0.03928 else ((part + 0.055) / 1.055) ** 2.4
                            for part in parts)
        return 0.2126 * red + 0.7152 * green + 0.0722 * blue
    low, high = sorted(luminance(colour) for colour in colours)
    return (high + 0.05) / (low + 0.05)


if __name__ == "__main__":
    unittest.main()
