// SPDX-License-Identifier: Apache-2.0
//
// Search in the tree and the elite rules: by words, names of attributes, node number or rule code.
// What does not match is hidden, except for the nodes above a match.
const QvSearch = (() => {
  "use strict";

  let nodes = [];
  let rules = [];
  let count = null;

  const textOf = (element) => element.textContent.toLowerCase().replace(/\s+/g, " ");

  function start(input, output, eliteRows) {
    count = output;
    nodes = QvTree.all().map((element) =>
      ({element, number: element.dataset.number ?? "", text: textOf(element)}));
    rules = eliteRows.map((element) =>
      ({element, number: element.dataset.code, text: textOf(element)}));
    input.addEventListener("input", () => search(input.value));
    input.addEventListener("keydown", (event) => {
      if (event.key === "Escape") {
        input.value = "";
        search("");
      }
    });
  }

  // A number means that node or rule; of other words all must be there.
  function matches(one, words) {
    if (words.length === 1 && /^\d+$/.test(words[0])) {
      return one.number === words[0];
    }
    return words.every((word) => one.text.includes(word) || one.number.toLowerCase() === word);
  }

  function search(text) {
    const words = text.toLowerCase().split(/\s+/).filter((word) => word !== "");
    const isOff = words.length === 0;
    const hits = (list) => list.filter((one) => !isOff && matches(one, words));
    const [foundNodes, foundRules] = [hits(nodes), hits(rules)];
    for (const one of nodes) {
      one.element.classList.toggle("hit", foundNodes.includes(one));
    }
    for (const one of rules) {
      one.element.hidden = !isOff && !foundRules.includes(one);
    }
    QvTree.filter(isOff ? null : foundNodes.map(({element}) => element));
    count.textContent = isOff ? "" : summary(foundNodes.length, foundRules.length);
  }

  function summary(nodeCount, ruleCount) {
    const plural = (number, what) => `${number} ${what}${number === 1 ? "" : "s"}`;
    return `${plural(nodeCount, "node")}, ${plural(ruleCount, "elite rule")}`;
  }

  return {start, search};
})();
