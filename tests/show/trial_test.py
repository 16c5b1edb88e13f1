# SPDX-License-Identifier: Apache-2.0
"""Messages in the page of a rule set, in a browser: shown in a file, and tried in a served page."""
import json
import pathlib
import re
import tempfile
import unittest

import showpage

HOSTILE = "<img/src=x/onerror=alert`1`></script><!--'&\u202eevil"
TITLES = {"spam": "Spam", "ham": "Ham", "none": "No verdict"}
FIRED = ("adjusted", "passedOver", "replaced", "chosen")
WIDE = (1400, 900)
SPAM = showpage.EXAMPLES / "spam-bot-dynamic-name.eml"


def sentence(text):
    return text[:1].upper() + text[1:] + "."


def named(record):
    """What follows the number of a rule or node: its name in brackets."""
    return f" ({record['ruleName']})" if "ruleName" in record else ""


class InAFile(showpage.ShowPageTest):
    """Messages that were judged when the page was written."""

    def open(self, *messages, options=(), **how):
        given = [word for message in messages for word in ("--message", message)]
        self.browser.open(self.page(*given, "--dns-data", showpage.EXAMPLES / "dns.zone", *options,
                                    **how))

    def assert_shows(self, record):
        """The page says what the record says, part by part."""
        answer, explain = self.answer(), record["explain"]
        self.assertEqual(answer["verdict"], TITLES[record["verdict"]])
        self.assertIn(record["source"], answer["text"])
        self.assertEqual(answer["why"], sentence(explain["because"]))
        self.assertEqual(answer["facts"], [sentence(fact) for fact in explain["story"]])
        self.assertEqual([hop[3:8] + hop[9:] for hop in answer["hops"]],
                         [[hop[name] or "-" for name in
                           ("delayText", "address", "from", "reverseName", "by", "text")]
                          for hop in explain["trail"]])
        self.assertEqual([(hop[2], hop[8]) for hop in answer["hops"]],
                         [((hop["time"] or "-").replace("T", " ").replace("Z", ""),
                           ", ".join(filter(None, (hop["protocol"], hop["tls"]))) or "-")
                          for hop in explain["trail"]])
        self.assertEqual([hop[1] for hop in answer["hops"]],
                         ["our side" if hop["vouched"] else "the sender?"
                          for hop in explain["trail"]])
        self.assertEqual(answer["attributes"],
                         [[fact["attribute"], fact["value"], fact["words"]]
                          for fact in explain["facts"]])
        self.assertEqual([(node[1], node[3]) for node in answer["walk"]],
                         [(f"node {node['node']}{named(node)}", node["test"] or "-")
                          for node in explain["tree"]["nodes"]])
        if record["node"] != 0:
            rule = "node" if explain["tree"]["use"] == "walked" else "elite rule"
            self.assertIn(f"Decided by {rule} {record['node']}{named(record)}", answer["text"])
        self.assertIn(record.get("ruleSentence", ""), answer["text"])
        for rule in explain["rules"]:
            if rule["fired"]:
                self.assertIn(f"rule {rule['code']}{named(rule)} (", answer["text"])
        for way in explain["needed"]:
            self.assertIn(f"{way['verdict']}: {way['change']}", answer["text"])
        note = (explain["singleChanges"] or {"text": ""})["text"]
        if note:
            self.assertIn(sentence(note), answer["text"])
        self.assertEqual("Needed for another verdict" in answer["text"],
                         bool(explain["needed"] or note))
        self.assert_marks(answer, record)

    def assert_marks(self, answer, record):
        """The path lights up in the tree, and each elite rule says what became of it."""
        rules, tree = record["explain"]["rules"], record["explain"]["tree"]
        decided = tree["use"] == "walked" and record["node"] != 0
        self.assertEqual(answer["path"], tree["path"])
        self.assertEqual(answer["decides"], [record["node"]] if decided else [])
        self.assertEqual(answer["outcomes"], [rule["text"] for rule in rules])
        self.assertEqual(answer["fired"],
                         [str(rule["code"]) for rule in rules if rule["outcome"] in FIRED])
        self.assertEqual(answer["chosen"],
                         [str(record["node"])] if tree["use"] == "eliteDecided" else [])
        self.assertEqual(len(answer["failed"]),
                         sum(rule["outcome"] == "noMatch" for rule in rules))

    def test_shows_each_example_as_its_record_has_it(self):
        for source in (showpage.STARTER, showpage.DEFAULT):
            records = showpage.records(source)
            self.open(*[record["source"] for record in records], source=source)
            for place, record in enumerate(records):
                with self.subTest(record["source"]):
                    self.choose(place)
                    self.assert_shows(record)
            self.assertEqual({record["verdict"] for record in records}, set(TITLES))

    def test_shows_the_first_message_until_another_is_chosen(self):
        self.open(showpage.EXAMPLES / "zimbra.eml", showpage.EXAMPLES / "no-received-header.eml")
        self.assertIn("Decided by node 16 (A sender that runs its own mail) of the tree.",
                      self.answer()["text"])
        self.assertEqual(self.titles(), ["none", "zimbra.eml", "no-received-header.eml"])
        answer = self.choose(1)
        self.assertEqual((answer["why"], answer["hops"], answer["path"]),
                         ("The message has no Received header.", [], []))
        answer = self.choose("")
        self.assertEqual((answer["text"], answer["outcomes"]), ("", []))

    def test_tells_hops_that_were_judged_from_others(self):
        self.open(showpage.EXAMPLES / "private-hops-before-public.eml")
        answer = self.answer()
        self.assertGreater(len(answer["hops"]), len(answer["judged"]))
        self.assertEqual(answer["judged"],
                         [hop[0] for hop in answer["hops"] if hop[9].endswith("judged")])

    def test_numbers_hops_after_the_one_that_the_host_adds(self):
        self.open(SPAM, options=["--current-received",
                                 "from a.example ([203.0.113.9]) by mx.example; "
                                 "Wed, 15 May 2024 04:10:11 +0200"])
        self.assertEqual([hop[0] for hop in self.answer()["hops"]], ["now", "1"])

    def test_marks_the_test_that_a_rule_failed(self):
        self.open(showpage.EXAMPLES / "forwarder-many-hops.eml")
        answer = self.answer()
        self.assertIn("helo_is_recipient_not_envelope is yes",
                      [f"{name} is {value}" for name, value, _ in answer["attributes"]])
        # The first test of 9002 holds; the second one fails.
        self.assertEqual(answer["failed"][-1], "first_helo_matches_reverse == no")

    def test_one_of_several_rules_that_fired_is_chosen(self):
        self.open(SPAM, text="elite last also-tree\n"
                  "decide 0.97 code 9001 when first_reverse_dynamic == yes\n"
                  "decide 0.97 code 9001 when first_helo_dynamic == yes\n"
                  "adjust -0.5 code 'm' level 3 always\n"
                  "tree {\n}\n")
        answer = self.answer()
        self.assertEqual(answer["outcomes"],
                         ["replaced by rule 9001", "chosen",
                          "left out: its level is above the settings' maximum"])
        self.assertEqual((answer["fired"], answer["chosen"]), (["9001"] * 2, ["9001"]))
        self.assertIn("rule 9001 (97.00 % spam): replaced by rule 9001", answer["text"])
        self.browser.find("#answer a[href='#elite-1']").click()
        self.assertTrue(self.browser.run("return location.hash === '#elite-1'"))

    def test_a_rule_that_was_chosen_need_not_decide(self):
        self.open(SPAM, options=["--spam-threshold", "0.98"])
        answer = self.answer()
        self.assertEqual((answer["verdict"], answer["fired"], answer["chosen"]),
                         ("No verdict", ["9001"], []))
        self.assertIn("of the tree.", answer["text"])
        self.assertNotEqual(answer["decides"], [])

    def test_says_which_names_dns_left_open(self):
        self.open(SPAM, options=["--dns", "127.0.0.1@1", "--dns-data", self.write("none.zone", "")])
        self.assertNotIn("DNS could not say", self.answer()["text"])
        path = self.page("--message", SPAM, "--dns", "127.0.0.1@1")
        self.browser.open(path)
        self.assertRegex(self.answer()["text"], r"DNS could not say[^:]*\n"
                         r"dsl-203-0-113-17\.pool\.provider\.example: "
                         r"(the look-up failed|no answer before the deadline)")

    def with_adjusting_rule(self):
        """The default rules and a rule that fires without deciding."""
        text = showpage.DEFAULT.read_text(encoding="utf-8")
        return self.write("adjusted.qvr", text.replace(
            "\nelite first also-tree\n", "\nelite first also-tree\n"
            "adjust -0.01 code 'm' when first_reverse_dynamic == no\n"))

    def test_shows_what_a_record_adds_by_its_name(self):
        path = self.page("--message", showpage.EXAMPLES / "mailing-list.eml", "--dns", "off",
                         source=self.with_adjusting_rule())
        page = path.read_text(encoding="utf-8")
        start = page.index(">", page.index('id="data"')) + 1
        end = page.index("</script>", start)
        data = json.loads(page[start:end])
        explain = data["messages"][0]["explain"]
        fired = next(rule for rule in explain["rules"] if rule["fired"])
        fired["nickname"] = HOSTILE
        explain["tree"]["nodes"][-1]["alias"] = "last of all"
        explain["needed"].append({"verdict": "ham", "change": "rule 9002 gone", "words": [],
                                  "byRule": {"code": 9002, "tests": [HOSTILE, "two"]},
                                  "nothing": None})
        text = json.dumps(data).replace("<", "\\u003c")
        path.write_text(page[:start] + text + page[end:], encoding="utf-8")
        for size in (showpage.browser.DESKTOP, showpage.browser.PHONE):
            self.browser.open(path, size)
            answer = self.answer()
            self.assertIn(f"nickname: {HOSTILE}", answer["text"])
            self.assertIn("ham: rule 9002 gone", answer["text"])
            for line in ("by rule:", "code: 9002", "two"):
                self.assertIn(line, answer["text"])
            self.assertIn("alias: last of all", answer["walk"][-1][2])
            self.assertNotIn("nothing", answer["text"].split("Needed for another verdict")[1])
            # What is known has a place of its own.
            for name in ("outcome:", "failed test:", "confidence:", "verdict:"):
                self.assertNotIn(name, answer["text"])
            self.assertEqual(self.browser.find_all("#answer img"), [])
            self.assert_fits()

    def test_tells_hops_path_and_what_would_change_the_verdict_on_every_screen(self):
        path = self.page("--message", showpage.EXAMPLES / "mailing-list.eml", "--dns", "off",
                         source=showpage.DEFAULT)
        explained = showpage.rules("explain", showpage.DEFAULT, showpage.EXAMPLES /
                                   "mailing-list.eml", "--dns", "off", "--all")
        ways = re.findall(r"^    ((?:spam|ham): .*)$", explained, re.MULTILINE)
        self.assertGreater(len(ways), 2)
        for size in (WIDE, showpage.browser.PHONE):
            self.browser.open(path, size)
            answer = self.answer()
            for way in ways:
                self.assertIn(way, answer["text"])
            self.assertEqual((len(answer["hops"]), len(answer["walk"])), (3, 11))
            outside = self.browser.run("""
                return [...document.querySelectorAll('#answer td')].filter((cell) => {
                  const {left, right} = cell.getBoundingClientRect();
                  return left < 0 || right > document.documentElement.clientWidth;
                }).map((cell) => cell.textContent);""")
            self.assertEqual(outside, [])

    def test_links_lead_to_their_nodes(self):
        self.open(showpage.EXAMPLES / "zimbra.eml")
        self.browser.find("#close-all").click()
        link = self.browser.find("#answer a[href='#node-16']")
        self.browser.run("arguments[0].scrollIntoView({block: 'center'})", link)
        link.click()
        self.assertEqual(self.browser.driver.switch_to.active_element.get_attribute("id"),
                         "node-16")

    def test_has_no_place_to_try_messages_but_says_where_there_is_one(self):
        self.open(SPAM)
        self.assertEqual(self.browser.find_all("#pasted, #file, #settings, #try-it"), [])
        self.assertIn("qvrules show RULES --serve judges messages", self.browser.find("header").text)
        self.browser.open(self.page())
        self.assertEqual(self.browser.find_all("#try"), [])
        self.assertIn("qvrules show RULES --serve judges messages", self.browser.find("header").text)

    def test_shows_hostile_text_as_text(self):
        name = "n" * 2000
        message = self.write("a<b>&'\".eml",
                             f"Received: from {HOSTILE} ({name} [203.0.113.7]) by {HOSTILE};"
                             " Wed, 15 May 2024 04:10:11 +0200\n"
                             f"Received: from {name} ([198.51.100.9]) by {name}; Wed, 15 May 2024\n"
                             f"From: x@{HOSTILE}\n\n")
        for size in (showpage.browser.DESKTOP, showpage.browser.PHONE):
            self.browser.show(size)
            self.open(message, text=showpage.STARTER.read_text(encoding="utf-8"),
                      name="<b>&'\".qvr")
            self.browser.show(size)
            self.browser.find("#explanation summary").click()
            self.assertIn("<b>&'\".qvr", self.browser.run("return document.title"))
            answer = self.answer()
            self.assertIn("a<b>&'\".eml", answer["text"])
            self.assertIn(HOSTILE, [hop[5] for hop in answer["hops"]])
            self.assertIn(name, answer["text"])
            self.assertEqual(self.browser.find_all("img, #answer script, #answer bdi b"), [])
            self.assert_fits()


class Served(showpage.ShowPageTest):
    """Messages and vectors that the program judges which serves the page."""

    @classmethod
    def setUpClass(cls):
        folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        odd = pathlib.Path(folder) / "odd.eml"
        odd.write_bytes(b"Received: from \xe2\x86\x92\xc3\xa9\xe9.example ([203.0.113.7]) by "
                        b"mx.example; Wed, 15 May 2024 04:10:11 +0200\n\n")
        cls.messages = [odd, showpage.EXAMPLES / "gmail-like.eml"]
        given = [word for message in cls.messages for word in ("--message", message)]
        cls.server = showpage.Server(*given)
        cls.origins = (cls.server.origin,)
        super().setUpClass()

    @classmethod
    def tearDownClass(cls):
        super().tearDownClass()
        assert cls.server.end() == 0

    def setUp(self):
        self.open(self.server)

    def open(self, server):
        """Opens the page of a server, and waits until the first of its messages is shown."""
        self.browser.open(server.page)
        self.wait_for(lambda: self.titles() == ["none"] or self.answer()["verdict"])

    def ask(self, text):
        """Pastes a text into the field; what the page says of it."""
        return self.changed("""
            document.getElementById('pasted').value = arguments[0];
            document.getElementById('try-it').click();""", text)

    def set(self, name, value):
        """Types a setting; what the page says then."""
        return self.changed("""
            const field = document.querySelector(`#settings [name=${arguments[0]}]`);
            field.value = arguments[1];
            field.dispatchEvent(new Event('change', {bubbles: true}));""", name, value)

    def changed(self, script, *arguments):
        """Runs a script that asks for something; the answer, when it is there."""
        self.browser.run("document.getElementById('verdict').replaceChildren();" + script,
                         *arguments)
        self.wait_for(lambda: self.answer()["why"] or self.answer()["problem"])
        return self.answer()

    def refusals(self):
        """What the browser itself says of answers that are not good."""
        return [line for line in self.browser.problems() if " 422 " in line]

    def drop(self, text, name):
        return self.changed("""
            const transfer = new DataTransfer();
            transfer.items.add(new File([arguments[0]], arguments[1]));
            document.body.dispatchEvent(
                new DragEvent('drop', {dataTransfer: transfer, bubbles: true, cancelable: true}));
            """, text, name)

    # --- messages ---

    def test_explains_a_message_that_is_dropped_in(self):
        answer = self.drop(SPAM.read_text(encoding="utf-8"), "odd & <b>.eml")
        self.assertEqual(answer["verdict"], "Spam")
        self.assertIn("odd & <b>.eml", answer["text"])
        self.assertIn("announced, dsl-203-0-113-17.pool.provider.example, looks dynamically",
                      answer["text"])
        self.assertIn("Decided by elite rule 9001 (Straight from a consumer line).", answer["text"])
        self.assertEqual((len(answer["hops"]), answer["fired"], answer["chosen"]),
                         (1, ["9001"], ["9001"]))

    def test_explains_a_message_that_is_pasted(self):
        self.assertEqual(self.ask(SPAM.read_text(encoding="utf-8"))["verdict"], "Spam")

    def test_explains_a_file_that_is_chosen_and_chosen_again(self):
        for count in (1, 2):
            self.browser.find("#file").send_keys(str(SPAM))
            titles = ["none"] + [SPAM.name] * count + ["odd.eml", "gmail-like.eml"]
            self.wait_for(lambda: self.titles() == titles)
            self.wait_for(lambda: self.answer()["verdict"] == "Spam")

    def test_takes_what_is_pasted_beside_the_field(self):
        answer = self.changed("""
            const transfer = new DataTransfer();
            transfer.setData('text', 'first_reverse_dynamic=yes');
            document.body.dispatchEvent(
                new ClipboardEvent('paste', {clipboardData: transfer, bubbles: true}));""")
        self.assertEqual((answer["verdict"], answer["path"][:2]), ("Spam", [2, 6]))

    def test_asks_about_the_messages_of_the_command_line_byte_for_byte(self):
        names = []
        for place, message in enumerate(self.messages):
            record = json.loads(showpage.scan(showpage.STARTER, "--format", "json", "--explain",
                                              message))
            self.choose(place)
            self.wait_for(lambda: str(message) in self.answer()["text"])
            answer = self.answer()
            self.assertEqual(answer["why"], sentence(record["explain"]["because"]))
            names += [[hop[5] for hop in answer["hops"]]]
            self.assertEqual(names[-1], [hop["from"] or "-" for hop in record["explain"]["trail"]])
        self.assertEqual(names[0], ["\u2192\u00e9\u00e9.example"])

    def test_says_what_is_wrong_with_what_it_is_given(self):
        for text, problem in (("", "not a message: it has no header field"),
                              ("no header here", "not a message: it has no header field"),
                              ("first_helo=yes", "no attribute is called \"first_helo\""),
                              ("first_forged=1; first_forged=0", "given twice")):
            answer = self.ask(text)
            self.assertIn(problem, answer["problem"], text)
            self.assertEqual((answer["path"], answer["outcomes"]), ([], []))
        self.assertEqual(len(self.refusals()), 4)

    def test_sends_no_file_that_is_too_large(self):
        self.browser.run("""
            const transfer = new DataTransfer();
            transfer.items.add(new File([new Uint8Array((32 << 20) + 1)], 'large.mbox'));
            document.body.dispatchEvent(
                new DragEvent('drop', {dataTransfer: transfer, bubbles: true, cancelable: true}));
            """)
        self.wait_for(lambda: self.answer()["problem"] == "large.mbox: larger than 32 MiB")

    # --- vectors ---

    def test_explains_attributes_and_follows_the_settings(self):
        answer = self.ask("first_reverse_dynamic=yes, hop_behind_first=0\nfirst_helo_is_domain=no\n")
        self.assertEqual((answer["verdict"], answer["path"], answer["decides"]),
                         ("Spam", [2, 6, 8, 10, 12], [12]))
        self.assertEqual(self.shown_nodes(), [2, 3, 6, 7, 8, 9, 10, 11, 12, 13])
        answer = self.set("spam-threshold", " 0.97 ")
        self.assertEqual((answer["verdict"], answer["path"]), ("No verdict", [2, 6, 8, 10, 12]))
        self.assertIn("spam: a spam threshold of 0.96 or less", answer["text"])
        answer = self.set("spam-threshold", "0.97x")
        self.assertIn('spam-threshold: "0.97x" is not a number', answer["problem"])
        self.assertEqual((answer["verdict"], answer["path"]), (None, []))
        self.assertEqual(len(self.refusals()), 1)
        self.set("spam-threshold", "2")
        self.assertEqual(self.set("ham-threshold", "0")["verdict"], "Ham")
        self.assertIn("switch the tree off", self.set("spam-threshold", "95")["why"])

    def test_the_settings_are_at_first_those_of_the_command_line(self):
        server = showpage.Server("--min-support", "100", "--walk-to-leaf", "0")
        self.browser.origins = (*self.origins, server.origin)
        try:
            self.open(server)
            fields = {field.get_attribute("name"): field.get_attribute("value")
                      for field in self.browser.find_all("#settings input")}
            self.assertEqual(fields, {"spam-threshold": "0.95", "ham-threshold": "0.95",
                                      "min-support": "100", "max-elite-level": "1",
                                      "walk-to-leaf": "0"})
            self.assertEqual(self.ask("first_reverse_dynamic=yes")["path"], [2])
        finally:
            server.end()

    def test_says_where_the_walk_gives_up(self):
        rules = self.write("circle.qvr", "tree {\n chain_broken == yes: confidence 0.2 support 20 "
                           "{\n -> 2\n }\n}\n")
        server = showpage.Server(source=rules)
        self.browser.origins = (*self.origins, server.origin)
        try:
            self.open(server)
            answer = self.ask("chain_broken=yes")
            self.assertEqual((answer["verdict"], answer["path"]), ("No verdict", [2, 3]))
            self.assertIn("The walk ends here: the rules lead in circles", answer["text"])
        finally:
            server.end()

    def test_a_vector_in_a_file_is_one(self):
        answer = self.drop("first_reverse_dynamic = yes\nhop_behind_first = no\n", "values.txt")
        self.assertEqual((answer["verdict"], answer["hops"]), ("Spam", []))

    # --- answers ---

    def test_an_answer_that_comes_too_late_is_not_shown(self):
        self.browser.run("""
            const real = window.fetch;
            window.fetch = () => new Promise((resolve) => {
              window.answerLate = () => resolve({ok: false, text: async () => 'too late'});
              window.fetch = real;
            });
            document.getElementById('pasted').value = 'chain_broken=yes';
            document.getElementById('try-it').click();""")
        self.ask("first_reverse_dynamic=yes")
        self.browser.run("window.answerLate();")
        self.assertEqual((self.answer()["problem"], self.answer()["verdict"]), (None, "Spam"))

    def test_says_when_the_server_is_gone(self):
        gone = showpage.Server()
        self.browser.origins = (*self.origins, gone.origin)
        self.open(gone)
        gone.end()
        self.assertIn("no longer runs", self.ask("Received: x\n\n")["problem"])
        # The browser complains, too.
        self.assertIn("/explain", " ".join(self.browser.problems()))


if __name__ == "__main__":
    unittest.main()
