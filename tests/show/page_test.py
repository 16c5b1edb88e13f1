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


WIDE = (1400, 900)
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

    def test_text_has_contrast_in_light_and_dark(self):
        page = self.page("--message", SPAM, "--dns", "off", source=showpage.DEFAULT)
        self.assert_contrast(page)
        self.browser.open(page, scheme="light")
        light, dark = [], []
        for scheme, colours in (("light", light), ("dark", dark)):
            self.browser.show(scheme=scheme)
            colours += self.browser.run(
                "return ['#tree .s6', '#drawing .s6'].map((one) =>"
                " getComputedStyle(document.querySelector(one)).backgroundColor)")
        self.assertEqual([one == other for one, other in zip(light, dark)], [False, False])

    def height(self):
        return self.browser.run("return document.scrollingElement.scrollHeight")

    def box(self, selector):
        """Where an element is on the screen."""
        return self.browser.run(
            "return document.querySelector(arguments[0]).getBoundingClientRect().toJSON()",
            selector)

    def test_its_parts_stay_within_reach(self):
        for size in (WIDE, browser.PHONE):
            self.open("--message", SPAM, "--dns", "off", size=size, source=showpage.DEFAULT)
            self.browser.run("scrollTo(0, 1e6)")
            self.assertEqual(self.box(".jumps")["top"], 0)
            self.browser.find(".jumps a[href='#nodes']").click()
            self.assertGreaterEqual(self.box("#nodes")["top"], self.box(".jumps")["bottom"])

    # --- the drawing ---

    def test_the_drawing_stands_beside_the_outline_and_above_the_elite_rules(self):
        for source in (showpage.STARTER, showpage.DEFAULT):
            for size in (WIDE, browser.PHONE):
                self.open(size=size, source=source)
                self.assert_fits()
                drawing, outline = self.box("#drawing"), self.box("#tree")
                if size == WIDE:
                    self.assertLess(drawing["right"], outline["left"])
                    self.assertEqual(drawing["top"], outline["top"])
                else:
                    self.assertLess(drawing["bottom"], outline["top"])
                for part in (drawing, outline):
                    self.assertLess(part["bottom"], self.box("#elite")["top"])
                    self.assertLess(part["height"], size[1])
                self.assert_whole_drawing()
                self.assertLess(self.height(), 4 * size[1])

    def assert_whole_drawing(self):
        """All of it is in its frame, and as wide as that unless it is large enough to read."""
        frame, drawing = self.box("#drawing"), self.box("#drawing svg")
        for low, high in (("left", "right"), ("top", "bottom")):
            self.assertGreaterEqual(drawing[low], frame[low])
            self.assertLessEqual(drawing[high], frame[high])
        self.assertTrue(drawing["width"] > 0.95 * frame["width"]
                        or self.browser.find("#zoom").text == "100 %")

    def test_the_drawing_becomes_larger_and_smaller(self):
        self.open(source=showpage.DEFAULT, size=WIDE)
        width = lambda: self.box("#drawing svg")["width"]
        fitted = width()
        for larger, smaller in ((self.pressed("#zoom-in"), self.pressed("#zoom-out")),
                                (self.typed("+"), self.typed("-")),
                                (self.wheel(-100), self.wheel(100))):
            larger()
            self.assertGreater(width(), 1.2 * fitted)
            smaller()
            self.assertAlmostEqual(width(), fitted, delta=1)
        self.wheel(-100, ctrl=False)()
        self.assertEqual(width(), fitted)
        self.typed("1")()
        self.assertEqual(self.browser.find("#zoom").text, "100 %")
        self.assertEqual(self.browser.run(
            "return getComputedStyle(document.querySelector('.box text')).fontSize"), "12px")
        self.assert_fits()
        self.typed("0")()
        self.assert_whole_drawing()
        self.pressed("#zoom-read")()
        self.pressed("#zoom-fit")()
        self.browser.show(browser.PHONE)  # the drawing follows its frame
        self.wait_for(lambda: width() < browser.PHONE[0])
        self.assert_whole_drawing()

    def pressed(self, selector):
        return self.browser.find(selector).click

    def typed(self, key):
        return lambda: self.browser.find("#drawing").send_keys(key)

    def wheel(self, delta, ctrl=True):
        return lambda: self.browser.run("""
            const edge = document.getElementById('drawing').getBoundingClientRect();
            document.querySelector('#drawing svg').dispatchEvent(new WheelEvent('wheel', {
              deltaY: arguments[0], ctrlKey: arguments[1], bubbles: true, cancelable: true,
              clientX: edge.left + 200, clientY: edge.top + 50}));""", delta, ctrl)

    def test_what_is_under_the_pointer_stays_there(self):
        self.open(source=showpage.DEFAULT, size=WIDE)
        self.typed("1")()
        self.browser.run("document.getElementById('drawing').scrollTo(600, 300)")
        before = self.box("#drawing svg")
        self.wheel(-100)()
        after = self.box("#drawing svg")
        pointer = self.box("#drawing")["left"] + 200
        share = [(pointer - box["left"]) / box["width"] for box in (before, after)]
        self.assertAlmostEqual(share[0], share[1], places=3)
        self.assertGreater(after["width"], before["width"])

    def test_drawing_and_outline_show_the_same_node(self):
        for size in (WIDE, browser.PHONE):
            self.open(source=showpage.DEFAULT, size=size)
            self.browser.find("#close-all").click()
            self.browser.find("#zoom-read").click()
            self.browser.run("document.querySelector('[data-node=\"32\"]').dispatchEvent("
                             "new MouseEvent('click', {bubbles: true}))")
            at = self.browser.driver.switch_to.active_element
            self.assertEqual(at.get_attribute("id"), "node-32")
            at.send_keys(Keys.ARROW_DOWN)
            self.assertEqual([one.get_attribute("data-node")
                              for one in self.browser.find_all("#drawing .at")], ["33"])
            box, frame = self.box("#drawing .at"), self.box("#drawing")
            self.assertGreaterEqual(box["left"], frame["left"])
            self.assertLessEqual(box["right"], frame["right"])

    def test_the_drawing_marks_the_path_and_what_is_found(self):
        self.open("--message", showpage.EXAMPLES / "mailing-list.eml", "--dns", "off",
                  source=showpage.DEFAULT)
        path = self.answer()["path"]
        numbers = lambda selector, name: [int(one.get_attribute(name))
                                          for one in self.browser.find_all(selector)]
        self.assertGreater(len(path), 3)
        self.assertEqual(numbers("#drawing .box.on-path", "data-node"), path)
        self.assertEqual(numbers("#drawing .edge.on-path", "data-to"), path[1:])
        self.assertEqual(numbers("#drawing .decides", "data-node"), path[-1:])
        self.choose("")
        self.assertEqual(numbers("#drawing .on-path", "data-node"), [])
        self.browser.find("#search").send_keys("neighbour")
        self.assertEqual(numbers("#drawing .found", "data-node"), [19])
        self.assertEqual(numbers("#tree .hit", "data-number"), [19])

    def test_bars_show_the_spam_and_the_ham_of_each_node(self):
        self.open(source=showpage.DEFAULT)
        rows = self.browser.run("""
            const parts = (element) => ['spam', 'ham'].map((kind) => Number(
                element.querySelector(`.mail-${kind}`).getAttribute('width')));
            return [...document.querySelectorAll('#tree > li')].map((item) => [
              item.querySelector('.counts').textContent, parts(item),
              parts(document.querySelector(`[data-node="${item.dataset.number}"]`))]);""")
        self.assertEqual(len(rows), showpage.defaults("confidence"))
        everything = int(re.search(r"\d+", rows[0][0].replace(",", ""))[0])
        for counts, outline, drawn in rows:
            _, spam, ham = (int(one.replace(",", "")) for one in re.findall(r"[\d,]*\d", counts))
            self.assertAlmostEqual(drawn[0] / sum(drawn), spam / (spam + ham), delta=0.001, msg=counts)
            self.assertAlmostEqual(sum(outline), 100 * (spam + ham) / everything, delta=0.02)
            self.assertAlmostEqual(outline[0], 100 * spam / everything, delta=0.01)

    def test_each_number_stands_once_with_the_same_digits(self):
        self.open(source=showpage.DEFAULT)
        texts = self.browser.run(
            "return [...document.querySelectorAll('#tree > li, #elite tbody tr, #drawing .lesser')]"
            ".map((one) => one.innerHTML.replace(/<[^>]*>/g, ' '))")
        nodes = showpage.defaults("confidence")
        self.assertEqual(len(texts), nodes + showpage.defaults("decide") + nodes)
        for text in texts:
            percentages = re.findall(r"([\d.]+) %", text)
            self.assertEqual(len(percentages), len(set(percentages)), text)
            for one in percentages:
                self.assertRegex(one, r"^(\d+\.\d\d|0\.0\d\d|0|100)$", text)

    # --- the tree ---

    def test_opens_and_closes_by_mouse(self):
        self.open()
        self.browser.find("#close-all").click()
        self.assertEqual(self.shown_nodes(), [2])
        self.browser.find("#node-2 .words").click()
        self.assertEqual(self.shown_nodes(), [2, 3, 6, 13])
        self.browser.find("#node-6 .words").click()
        self.browser.find("#open-level").click()
        self.assertEqual(self.shown_nodes(), [2, 3, 4, 5, 6, 7, 8, 13, 14, 19])
        for _ in range(9):
            self.browser.find("#open-level").click()
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

    def test_names_rules_and_nodes_and_finds_them_by_their_names(self):
        self.open()
        self.assertEqual(self.browser.find("#elite tr[data-code='o'] .named").text,
                         "Both names are the author's The author's domain owns both names of the "
                         "machine, which is hard to arrange from a borrowed one.")
        self.assertEqual(self.browser.find_all("#node-4 .named"), [])
        self.browser.find("#search").send_keys("runs its own mail")
        self.assertEqual(self.shown_nodes(), [2, 13, 14, 15, 16])
        self.assertEqual(self.browser.find("#node-16 .named b").text,
                         "A sender that runs its own mail")

    def test_a_name_and_its_sentence_are_text(self):
        sentence = "</span><img src=x onerror=alert(1)> \u05e9\u05dc\u05d5\u05dd &amp; {}"
        rules = f"""version 1
            elite first
            decide 0.97 code 1 name "<b>&lt</b>" because "{sentence}" always
            tree name "<i>" because "{sentence}" {{
                15 == yes: confidence 0.01 support 50
                15 != yes: confidence 0.99 support 50
            }}"""
        self.open(text=rules)
        self.assertEqual([one.text for one in self.browser.find_all(".named")],
                         [f"<i> {sentence}", f"<b>&lt</b> {sentence}"])
        self.assertEqual(self.browser.find_all("#elite img, #tree img, #elite .named i"), [])

    def test_shows_measured_traffic_beside_that_of_the_training(self):
        self.open("--on", *sorted(showpage.EXAMPLES.glob("*.eml")), "--dns-data",
                  showpage.EXAMPLES / "dns.zone")
        paths = [record["explain"]["tree"]["path"] for record in showpage.records()]
        rules = [record["node"] for record in showpage.records()]
        judged = [path for path, node in zip(paths, rules) if path or node]
        for node in (2, 13, 16):
            share = 100 * sum(node in path for path in judged) / len(judged)
            shown = self.browser.run("return document.querySelector(arguments[0]).textContent",
                                     f"#node-{node} .figures")
            self.assertIn(f"{share:.2f} % of the measured mail".replace("100.00", "100"), shown)
            self.assertIn("of the training mail", shown)
        fired = 100 * rules.count(9001) / len(judged)
        self.assertIn(f"{fired:.2f} %", self.browser.find("#elite tr[data-code='9001']").text)

    # --- hostile rules ---

    def test_survives_a_chain_of_497_nodes(self):
        lines = [f"node {number} chain_broken == {number}: confidence 0.5 support 50 {{"
                 for number in range(3, 498)]
        self.open(text="tree {\n" + "\n".join(lines) + "\nnode 498 chain_broken == 9: "
                  "confidence 0.9 support 1\n" + "}" * 496 + "\n", size=browser.PHONE)
        self.browser.find("#search").send_keys("chain_broken")
        self.assertEqual(self.shown_nodes(), list(range(2, 499)))
        self.assert_fits()
        self.assertLess(self.height(), 4 * browser.PHONE[1])

    def test_shows_where_walks_give_up(self):
        self.open(text="tree {\n chain_broken == yes: confidence 0.2 support 20 {\n -> 2\n }\n"
                  " chain_broken == no: confidence 0.3 support 30 {\n -> 700\n -> 3\n }\n}\n")
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


if __name__ == "__main__":
    unittest.main()
