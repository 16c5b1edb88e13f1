// SPDX-License-Identifier: Apache-2.0
//
// The answer to one message, told: the verdict, the reasons in plain words, the path in the tree and
// the elite rules that fired. Text of messages enters the page as text only.
const QvAnswer = (() => {
  "use strict";

  let place = null;
  let eliteRows = new Map();

  function start(element, rows) {
    place = element;
    // By place in the engine's list; rules that engines drop have none.
    eliteRows = new Map(rows.filter((row) => row.dataset.place !== undefined)
      .map((row) => [Number(row.dataset.place), row]));
  }

  // An element with properties and children; a string child is text.
  function make(tag, properties, ...children) {
    const element = Object.assign(document.createElement(tag), properties);
    element.append(...children.filter((child) => child !== null));
    return element;
  }

  const nodeItem = (number) => document.getElementById(`node-${number}`);

  // --- marks in tree and table ---

  function clearMarks() {
    for (const marked of document.querySelectorAll(".on-path, .decides, .fired")) {
      marked.classList.remove("on-path", "decides", "fired");
      marked.removeAttribute("aria-current");
    }
  }

  function markTree(answer) {
    const path = (answer.walk?.path ?? []).map(nodeItem).filter((item) => item !== null);
    for (const item of path) {
      item.classList.add("on-path");
    }
    if (answer.by === "tree") {
      const item = nodeItem(answer.node);
      item?.classList.add("decides");
      item?.setAttribute("aria-current", "true");
    }
    if (path.length > 0) {
      QvTree.reveal(path, true);
    }
  }

  function markElite(answer) {
    for (const fired of answer.hits.fired) {
      eliteRows.get(fired)?.classList.add("fired");
    }
    if (answer.by === "elite") {
      eliteRows.get(answer.hits.chosen)?.classList.add("decides");
    }
  }

  // --- the story ---

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

  function decider(answer) {
    switch (answer.by) {
      case "tree":
        return make("p", {}, "Decided by ", linkTo(answer.node), " of the tree.");
      case "elite": {
        const link = make("a", {href: `#elite-${answer.hits.chosen}`,
          textContent: `elite rule ${answer.node}`});
        return make("p", {}, "Decided by ", link, ".");
      }
      default:
        return null;
    }
  }

  // One line for each fact that a rule or a node on the way asked for and found. Several attributes
  // say that there is no deep hop.
  function facts(rules, message, answer) {
    const said = new Set();
    const lines = [];
    const add = (attribute, from) => {
      const words = QvWords.valueSentence(attribute, message.attributes[attribute], message.names);
      if (!said.has(words)) {
        said.add(words);
        lines.push(make("li", {},
          make("span", {className: "fact", textContent: `${QvWords.capital(words)}.`}),
          " ", make("span", {className: "muted from"}, ...from)));
      }
    };
    if (answer.by === "elite") {
      for (const {attribute} of rules.elite[answer.hits.chosen]?.conditions ?? []) {
        add(attribute, []);
      }
    }
    for (const number of (answer.walk?.path ?? []).slice(1)) {
      add(QvEngine.nodeAt(rules, number).attribute, [linkTo(number)]);
    }
    return lines.length === 0 ? null
      : make("div", {}, make("h4", {textContent: "What led there"}), make("ol", {}, ...lines));
  }

  function adjustments(rules, message, answer) {
    const fired = answer.hits.fired.filter((one) => rules.elite[one].type === QvEngine.adjusting);
    if (fired.length === 0) {
      return null;
    }
    const lines = fired.map((one) => {
      const {code, weight, conditions} = rules.elite[one];
      const because = conditions.map(({attribute}) =>
        QvWords.valueSentence(attribute, message.attributes[attribute], message.names));
      const amount = QvWords.number(Math.abs(weight));
      const does = !Number.isFinite(weight) ? "adds an unknown amount"
        : weight < 0 ? `takes away ${amount}` : `adds ${amount}`;
      const link = make("a", {href: `#elite-${one}`, textContent: `rule ${codeText(code)}`});
      return make("li", {}, link, ` ${does}`,
        because.length === 0 ? "." : `: ${because.join("; ")}.`);
    });
    return make("div", {}, make("h4", {textContent: "What moved the confidence"}),
      make("ul", {}, ...lines));
  }

  // An answer carries the low byte of an adjusting rule's code.
  function codeText(code) {
    const byte = code & 0xff;
    return byte > 0x20 && byte < 0x7f ? `'${String.fromCharCode(byte)}'` : `byte ${byte}`;
  }

  const titles = {spam: "Spam", ham: "Ham", none: "No verdict"};

  function show(rules, message, settings) {
    clearMarks();
    if (message.problem !== "") {
      place.replaceChildren(head(message, "none"), make("p", {textContent: message.problem}));
      return;
    }
    const answer = QvEngine.judge(rules, message.attributes, settings);
    markTree(answer);
    markElite(answer);
    const end = answer.walk === null ? null
      : make("p", {className: "muted", textContent: QvWords.ending(answer.walk)});
    place.replaceChildren(...[
      head(message, answer.verdict),
      make("p", {className: "why", textContent: QvWords.reason(answer, settings)}),
      decider(answer), facts(rules, message, answer), end, adjustments(rules, message, answer),
    ].filter((part) => part !== null));
  }

  function head(message, verdict) {
    return make("h3", {className: `verdict ${verdict}`},
      make("span", {className: "word", textContent: titles[verdict]}), " ",
      make("bdi", {className: "source", textContent: message.title}));
  }

  // Instead of an answer: what a person did wrong, in lines of their own.
  function complain(...lines) {
    clearMarks();
    place.replaceChildren(...lines.map((line) =>
      make("p", {className: "complaint", textContent: line})));
  }

  function clear() {
    clearMarks();
    place.replaceChildren();
  }

  return {start, show, complain, clear};
})();
