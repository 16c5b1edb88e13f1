# SPDX-License-Identifier: Apache-2.0
"""The page's own walk through rules gives the engine's answers, on random rules and vectors.

QV_ENGINE_CASES names the program that makes them and asks the engine. QV_SEED gives other rules.
"""
import json
import os
import pathlib
import subprocess
import unittest

import browser

ENGINE = pathlib.Path(os.environ["QV_SOURCE"]) / "apps/show/page/engine.js"

# Compares on the page's side, where NaN and infinities are numbers.
COMPARE = """
const same = (a, b) => Object.is(Number(a), Number(b)) || Number(a) === Number(b);
const bad = [];
const seen = {spam: 0, ham: 0, none: 0, elite: 0, tree: 0, nothing: 0, leaf: 0, confident: 0,
              noBranch: 0, rareBranch: 0, circles: 0};
for (const [number, {rules, questions}] of cases.entries()) {
  const read = QvEngine.readRules(rules);
  for (const {settings, vector, answer} of questions) {
    const mine = QvEngine.judge(read, vector, settings);
    const {hits} = mine;
    const isSame = mine.verdict === answer.verdict && mine.node === answer.node &&
      same(mine.confidence, answer.confidence) && same(mine.support, answer.support) &&
      same(mine.adjust, answer.adjust) && same(hits.adjust, answer.elite.adjust) &&
      same(hits.confidence, answer.elite.confidence) && same(hits.support, answer.elite.support) &&
      hits.code === answer.elite.code &&
      JSON.stringify(hits.reasons) === JSON.stringify(answer.elite.reasons) &&
      (mine.walk === null) === (answer.walk === null) &&
      (mine.walk === null || (mine.walk.result === answer.walk.result &&
        JSON.stringify(mine.walk.path) === JSON.stringify(answer.walk.path)));
    if (!isSame) {
      bad.push({number, settings, vector, answer, mine});
    }
    for (const what of [mine.verdict, mine.by, mine.walk?.end]) {
      if (what) {
        seen[what] += 1;
      }
    }
  }
}
window.compared = {bad: bad.slice(0, 3), count: bad.length, seen};
"""


class EngineAgreement(browser.BrowserTest):
    def test_page_and_engine_answer_alike(self):
        seed = os.environ.get("QV_SEED", "1")
        cases = subprocess.run([os.environ["QV_ENGINE_CASES"], "300", "40", seed], check=True,
                               text=True, capture_output=True).stdout
        self.assertGreater(len(json.loads(cases)), 100)
        page = self.write("cases.html", "<!DOCTYPE html><meta charset=utf-8><title>cases</title>"
                          f"<script>{ENGINE.read_text(encoding='utf-8')}\nconst cases = {cases};\n"
                          f"{COMPARE}</script>")
        self.browser.open(page)
        compared = self.browser.run("return window.compared")
        self.assertEqual(compared["count"], 0, json.dumps(compared["bad"])[:4000])
        print(compared["seen"])
        never = [what for what, count in compared["seen"].items() if count == 0]
        self.assertEqual(never, [], "the random rules are too tame")


if __name__ == "__main__":
    unittest.main()
