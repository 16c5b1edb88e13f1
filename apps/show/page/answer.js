// SPDX-License-Identifier: Apache-2.0
//
// The explanation of one message as its record has it: the verdict and why, its hops, its
// attributes, the rules that fired, the path in the tree and what another verdict would need. The
// page adds nothing to it. Text of messages enters the page as text only.
const QvAnswer = (() => {
  "use strict";

  let eliteRows = new Map();
  const part = (name) => document.getElementById(name);

  function start(rows) {
    // By place in the engine's list; rules that engines drop have none.
    eliteRows = new Map(rows.filter((row) => row.dataset.place !== undefined)
      .map((row) => [Number(row.dataset.place), row]));
  }

  // An element with properties and children; a string child is text.
  function make(tag, properties, ...children) {
    const element = Object.assign(document.createElement(tag), properties);
    element.append(...children);
    return element;
  }

  // "0.97 spam reaches ..." as a sentence.
  const sentence = (text) => `${text.charAt(0).toUpperCase()}${text.slice(1)}.`;
  const nodeItem = (number) => part(`node-${number}`);
  const code = (text) => make("code", {textContent: text});

  // --- marks in tree and table ---

  function clearMarks() {
    for (const marked of document.querySelectorAll(".on-path, .decides, .fired, .failed")) {
      marked.classList.remove("on-path", "decides", "fired", "failed");
      marked.removeAttribute("aria-current");
    }
    for (const outcome of document.querySelectorAll("#elite .outcome")) {
      outcome.remove();
    }
  }

  function markTree({node, explain: {tree}}) {
    const path = tree.path.map(nodeItem).filter((item) => item !== null);
    for (const item of path) {
      item.classList.add("on-path");
    }
    if (tree.use === "walked" && node !== 0) {
      nodeItem(node)?.classList.add("decides");
      nodeItem(node)?.setAttribute("aria-current", "true");
    }
    if (path.length > 0) {
      QvTree.reveal(path, true);
    }
  }

  function markElite({explain: {rules, tree}}) {
    for (const [place, rule] of rules.entries()) {
      const row = eliteRows.get(place);
      row.classList.toggle("fired", rule.fired);
      row.classList.toggle("decides", tree.use === "eliteDecided" && rule.outcome === "chosen");
      row.querySelector(".effect").append(
        make("span", {className: "outcome", textContent: rule.text}));
      if (rule.failedTest !== null) {
        row.querySelectorAll(".when li")[rule.failedTest].classList.add("failed");
      }
    }
  }

  // --- parts of the explanation ---

  function linkTo(number) {
    const link = make("a", {href: `#node-${number}`, textContent: `node ${number}`});
    link.addEventListener("click", (event) => {
      const item = nodeItem(number);
      if (item) {
        event.preventDefault();
        QvTree.goTo(item);
      }
    });
    return link;
  }

  const linkToRule = (rule, place) =>
    make("a", {href: `#elite-${place}`, textContent: `rule ${rule.code}`});

  // Nothing without content.
  function section(title, ...content) {
    return content.length === 0 ? [] : [make("h4", {textContent: title}), ...content];
  }

  const listOf = (tag, items) => items.length === 0 ? [] : [make(tag, {}, ...items)];
  const wordsOf = (words) => listOf("ul", words.map((text) => make("li", {textContent: text})));

  // Rows of [class, ...cells]; on narrow screens each cell stands after its name.
  function table(label, names, rows) {
    if (rows.length === 0) {
      return [];
    }
    const cell = (content, i) => {
      const one = make("td", {}, content);
      one.dataset.name = names[i];
      return one;
    };
    const box = make("div", {className: "scroll", tabIndex: 0, ariaLabel: label},
      make("table", {},
        make("thead", {}, make("tr", {}, ...names.map((name) => make("th", {textContent: name})))),
        make("tbody", {}, ...rows.map(([className, ...cells]) =>
          make("tr", {className}, ...cells.map(cell))))));
    box.setAttribute("role", "region");
    return [box];
  }

  function decider({node, explain: {rules, tree}}) {
    if (node === 0) {
      return [];
    }
    const place = rules.findIndex(({outcome}) => outcome === "chosen");
    return [tree.use === "walked" ? make("p", {}, "Decided by ", linkTo(node), " of the tree.")
      : make("p", {}, "Decided by elite ", linkToRule(rules[place], place), ".")];
  }

  function trail({trail: hops}) {
    const judged = ["firstPublic", "analysed"];
    let number = 0;
    const rows = hops.map((hop) => [
      judged.includes(hop.role) ? "judged" : "", hop.current ? "now" : String(number += 1),
      hop.vouched ? "our side" : "the sender?", hop.address ?? "-", hop.from || "-",
      hop.reverseName || "-", hop.by || "-", hop.text,
    ]);
    return rows.length === 0 ? [] : section("Trail, newest hop first", ...table("Trail", ["#",
      "recorded by", "address", "announced", "reverse name", "receiver", "taken for"], rows),
    make("p", {className: "muted",
      textContent: "A sender could have invented what our side did not record."}));
  }

  // Only those without an answer: answers show in the attributes.
  function lookups({lookups: all}) {
    return section("DNS could not say (counts as not existing)", ...listOf("ul",
      all.filter(({result}) => ["failed", "late"].includes(result)).map(({name, text}) =>
        make("li", {}, make("bdi", {textContent: name}), `: ${text}`))));
  }

  function attributes({facts}) {
    const rows = facts.map(({attribute, value, words}) => ["", code(attribute), value, words]);
    return rows.length === 0 ? [] : [make("details", {},
      make("summary", {textContent: `Attributes that are not at their default (${rows.length})`}),
      ...table("Attributes", ["attribute", "value", "in words"], rows))];
  }

  function firedRules({rules}) {
    const fired = [...rules.entries()].filter(([, rule]) => rule.fired);
    return section("Elite rules that fired", ...listOf("ul", fired.map(([place, rule]) => {
      const effect = eliteRows.get(place).querySelector(".effect").firstChild.textContent;
      return make("li", {}, linkToRule(rule, place), ` (${effect}): ${rule.text}`,
        ...wordsOf(rule.tests.map(({words}) => words)));
    })));
  }

  function path({tree}) {
    const rows = tree.nodes.map(({node, test, words}) => [
      "", nodeItem(node)?.querySelector(".badge").cloneNode(true) ?? "", linkTo(node),
      words ?? "All mail", code(test ?? "-"),
    ]);
    return rows.length === 0 ? [] : section("Path through the tree", ...table("Path",
      ["spam", "node", "in words", "test"], rows),
    make("p", {className: "muted", textContent: `The walk ends here: ${tree.text}.`}));
  }

  function needed({needed: ways}) {
    return section("Needed for another verdict", ...listOf("ul", ways.map((way) =>
      make("li", {}, make("b", {textContent: way.verdict}), `: ${way.change}`,
        ...wordsOf(way.words)))));
  }

  // --- the whole ---

  const titles = {spam: "Spam", ham: "Ham", none: "No verdict"};

  function show(source, record) {
    const {verdict, explain} = record;
    clearMarks();
    part("verdict").replaceChildren(
      make("h3", {className: `verdict ${verdict}`},
        make("span", {className: "word", textContent: titles[verdict]}), " ",
        make("bdi", {className: "source", textContent: source})),
      make("p", {className: "why", textContent: sentence(explain.because)}));
    part("explanation").replaceChildren(...decider(record),
      ...section("What led there", ...listOf("ol", explain.story.map((words) =>
        make("li", {className: "fact", textContent: sentence(words)})))),
      ...trail(explain), ...lookups(explain), ...attributes(explain), ...firedRules(explain),
      ...path(explain), ...needed(explain));
    markTree(record);
    markElite(record);
  }

  // Instead of an answer: what is wrong.
  function complain(text) {
    clear();
    part("verdict").replaceChildren(make("p", {className: "complaint", textContent: text}));
  }

  function clear() {
    clearMarks();
    part("verdict").replaceChildren();
    part("explanation").replaceChildren();
  }

  return {start, show, complain, clear};
})();
