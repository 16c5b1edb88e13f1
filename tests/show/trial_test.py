# SPDX-License-Identifier: Apache-2.0
"""Trying messages in the page of a rule set, in a browser."""
import json
import unittest

import showpage

HOSTILE = "<img src=x onerror=alert(1)></script><!--\"'&"


class Trial(showpage.ShowPageTest):
    def open(self, *arguments, **how):
        self.browser.open(self.page(*arguments, **how))

    def test_judges_every_example_as_the_engine_does(self):
        titles = {"spam": "Spam", "ham": "Ham", "none": "No verdict"}
        for source in (showpage.STARTER, showpage.DEFAULT):
            self.open(source=source)
            records = showpage.records(source)
            for record in records:
                answer = self.judge(json.dumps(record))
                self.assertEqual(answer["verdict"], titles[record["verdict"]], record["source"])
                self.assertEqual(answer["path"], record["explain"]["tree"]["path"],
                                 record["source"])
                self.assertEqual(answer["complaints"], [])
            self.assertEqual({record["verdict"] for record in records}, {"spam", "ham", "none"})

    def test_tells_the_story_that_qvscan_tells(self):
        self.open()
        for record in showpage.records():
            told = [line.lower() for line in self.judge(json.dumps(record))["facts"]]
            story = [line.lower() + "." for line in record["explain"].get("story", [])]
            self.assertEqual(told, story, record["source"])

    def test_takes_many_records_at_once(self):
        self.open()
        records = showpage.records()
        self.judge("\n".join(json.dumps(record) for record in records))
        self.assertEqual(len(self.browser.find_all("#message option")), len(records) + 1)

    def test_tells_the_reasons_with_the_names_of_the_message(self):
        self.open()
        record = next(one for one in showpage.records()
                      if one["source"].endswith("spam-bot-dynamic-name.eml"))
        answer = self.judge(json.dumps(record))
        helo = record["explain"]["receivers"][0]["helo"]
        self.assertIn(f"announced, {helo}, looks dynamically assigned.", answer["text"])
        self.assertIn("Decided by elite rule 9001.", answer["text"])
        self.assertIn("9001", answer["fired"])

    def test_takes_rows_of_csv(self):
        self.open()
        table = showpage.scan(showpage.STARTER, "--format", "csv",
                              showpage.EXAMPLES / "spam-bot-dynamic-name.eml",
                              showpage.EXAMPLES / "no-received-header.eml")
        answer = self.judge(table)
        self.assertEqual(answer["verdict"], "Spam")
        self.browser.run("const list = document.getElementById('message'); list.value = '1';"
                         "list.dispatchEvent(new Event('change'))")
        self.assertIn("no public hop", self.answer()["text"])

    def test_takes_named_values_and_follows_the_settings(self):
        self.open()
        values = "first_reverse_dynamic=yes, hop_behind_first=0\nfirst_helo_is_domain=no"
        answer = self.judge(values)
        self.assertEqual((answer["verdict"], answer["path"], answer["decides"]),
                         ("Spam", [2, 6, 8, 10, 12], [12]))
        self.assertEqual(self.shown_nodes(), [2, 3, 6, 7, 8, 9, 10, 11, 12, 13])
        self.browser.run("const field = document.querySelector('[name=spamThreshold]');"
                         "field.value = '0.97'; field.dispatchEvent(new Event('input'))")
        self.assertEqual(self.answer()["verdict"], "No verdict")
        self.browser.find("#forget").click()
        self.assertEqual((self.answer()["path"], self.answer()["text"]), ([], ""))

    def test_completes_named_values_as_explain_does(self):
        self.open()
        for text in ("first_reverse_dynamic=yes", "hop_behind_first=yes", "deep_helo_dynamic=yes",
                     "hop_behind_first=yes,deep_helo_dynamic=not-analysed",
                     "deep_same_address=unknown,hop_behind_first=1", "deep_same_address=no",
                     "hop_behind_first=no,deep_helo_is_domain=no,deep_helo_dynamic=3"):
            mine = self.browser.run("""
                const facts = JSON.parse(document.getElementById('data').textContent).attributes;
                const [{attributes}] = QvReader.read(arguments[0], facts);
                return Object.fromEntries(facts.map(({name, words}, i) =>
                    [name, words.find(([, code]) => code === attributes[i])?.[0] ??
                           attributes[i]]));""", text)
            told = json.loads(showpage.rules("explain", showpage.STARTER, text, "--format", "json"))
            self.assertEqual(mine, told["attributes"], text)

    def test_nothing_reaches_a_threshold_without_end(self):
        self.open("--spam-threshold", "inf", "--ham-threshold", "-inf")
        self.assertEqual(self.judge("first_reverse_dynamic=yes")["verdict"], "No verdict")
        self.open("--spam-threshold", "2", "--ham-threshold", "-inf")
        self.assertEqual(self.judge("first_reverse_dynamic=yes")["verdict"], "Ham")

    def test_says_what_is_wrong_with_an_input(self):
        self.open()
        for text, complaint in (
                ("", "nothing here"), ("[]", "no record"), ("first_helo=yes", "no attribute"),
                ("first_forged=maybe", "cannot be"),
                ("first_forged=1,first_forged=0", "given twice"), ("{\"a\": ", "no JSON"),
                ("{\"source\": \"x\"}", "--explain"), ("source,a\nx,1", "names no column"),
                ("{\"explain\": {\"attributes\": [1, 2]}}", "38 whole numbers"),
                ("source,\"a", "quotation mark"),
                ("Received: from x by y; Mon, 1 Jan 2024 10:00:00 +0000\n\n", "--serve")):
            answer = self.judge(text)
            self.assertIn(complaint, " ".join(answer["complaints"]), text)
            self.assertEqual(answer["path"], [])

    def test_takes_a_dropped_file(self):
        self.open()
        self.browser.run("""
            const transfer = new DataTransfer();
            transfer.items.add(new File(['first_reverse_dynamic=yes'], 'values.txt'));
            document.body.dispatchEvent(
                new DragEvent('drop', {dataTransfer: transfer, bubbles: true, cancelable: true}));
        """)
        self.wait_for(lambda: self.answer()["verdict"] == "Spam")
        self.assertEqual(self.answer()["path"][:2], [2, 6])

    def test_offers_messages_that_it_was_made_with(self):
        self.open("--message", showpage.EXAMPLES / "zimbra.eml", "--message", showpage.EXAMPLES /
                  "no-received-header.eml", "--dns-data", showpage.EXAMPLES / "dns.zone")
        self.assertEqual(self.answer()["text"], "")
        for index, text in (("0", "Decided by node 16"), ("1", "no public hop")):
            self.browser.run("const list = document.getElementById('message');"
                             "list.value = arguments[0]; list.dispatchEvent(new Event('change'))",
                             index)
            self.assertIn(text, self.answer()["text"])

    def test_takes_what_is_pasted_beside_the_field(self):
        self.open()
        self.browser.run("""
            const transfer = new DataTransfer();
            transfer.setData('text', 'first_reverse_dynamic=yes');
            document.body.dispatchEvent(
                new ClipboardEvent('paste', {clipboardData: transfer, bubbles: true}));
        """)
        self.assertEqual(self.answer()["verdict"], "Spam")

    def test_shows_names_as_text(self):
        self.open(text=showpage.STARTER.read_text(encoding="utf-8"), name="<b>&'\".qvr")
        self.assertIn("<b>&'\".qvr", self.browser.run("return document.title"))
        record = showpage.records()[0]
        record["source"] = HOSTILE
        for hop in record["explain"]["receivers"]:
            hop["helo"] = hop["reverseName"] = HOSTILE
        record["explain"]["attributes"][10] = record["explain"]["attributes"][5] = 1
        answer = self.judge(json.dumps(record))
        self.assertIn(HOSTILE, answer["text"])
        self.assertEqual(self.browser.find_all("img, #answer script, b"), [])


if __name__ == "__main__":
    unittest.main()
