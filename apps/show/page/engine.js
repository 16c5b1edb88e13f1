// SPDX-License-Identifier: Apache-2.0
//
// The rules' answer to one attribute vector: elite rules, then the walk through the tree, then the
// verdict, exactly as the engine of the library does it (adapter/EliteNodes.cpp, DecisionTree.cpp,
// Verdict.cpp); a test compares the two. Numbers are doubles there and here. Pure functions.
const QvEngine = (() => {
  "use strict";

  const noDecision = -1;
  const tableSize = 500;
  const root = 2;
  const maxChildren = 10;
  const attributeCount = 38;
  const treeOffThreshold = 95.0;
  const selectFirst = 1;
  const selectLast = 2;
  const selectHighest = 3;
  const selectLowest = 4;
  const adjusting = 1;
  const deciding = 2;
  // What the file does not hold the engine fills with zeros.
  const emptyNode = {
    attribute: 0, test: 0, value: 0, isLeaf: 0, children: [], childCount: 0, confidence: 0,
    support: 0,
  };

  // The rules as they stand in the page's data. Numbers that JSON does not know are texts there.
  function readRules(data) {
    return {
      table: data.table.map(([attribute, test, value, isLeaf, children, childCount, confidence,
        support]) => ({
        attribute, test, value, isLeaf, children, childCount, confidence: Number(confidence),
        support: Number(support),
      })),
      selectMode: data.elite.selectMode,
      alsoWalkTree: data.elite.alsoWalkTree,
      elite: data.elite.rules.map(([code, weight, support, type, level, conditions]) => ({
        code, weight: Number(weight), support: Number(support), type, level,
        conditions: conditions.map(([attribute, test, value]) => ({attribute, test, value})),
      })),
    };
  }

  const isAttribute = (index) => index >= 0 && index < attributeCount;

  // --- elite rules ---

  function holds(condition, attributes) {
    if (!isAttribute(condition.attribute)) {
      return false;
    }
    const isEqual = attributes[condition.attribute] === condition.value;
    return (condition.test === 0 && isEqual) || (condition.test === 1 && !isEqual);
  }

  function isPreferred(rule, hits, selectMode) {
    if (hits.code === 0) {
      return true;
    }
    switch (selectMode) {
      case selectLast: return true;
      case selectHighest: return rule.weight > hits.confidence;
      case selectLowest: return rule.weight < hits.confidence;
      default: return false;
    }
  }

  // `fired`: places in the list of rules that did something; `chosen`: the deciding one that was
  // taken last; `reasons`: the low bytes of the codes of the adjusting ones.
  function runElite(rules, attributes, settings) {
    const hits = {adjust: 0, confidence: 0, support: 0, code: 0, reasons: [], fired: [], chosen: -1};
    for (const [place, rule] of rules.elite.entries()) {
      if (rule.level > settings.maxEliteLevel ||
          !rule.conditions.every((condition) => holds(condition, attributes))) {
        continue;
      }
      if (rule.type === adjusting) {
        hits.adjust += rule.weight;
        hits.reasons.push(rule.code & 0xff);
        hits.fired.push(place);
      } else if (rule.type === deciding && rule.support >= settings.minSupport) {
        hits.fired.push(place);
        if (isPreferred(rule, hits, rules.selectMode)) {
          Object.assign(hits, {
            confidence: rule.weight, code: rule.code, support: rule.support, chosen: place,
          });
        }
        if (rules.selectMode === selectFirst) {
          break;
        }
      }
    }
    return hits;
  }

  function doesEliteDecide(hits, settings) {
    return hits.support >= settings.minSupport &&
      hits.confidence + hits.adjust >= settings.spamThreshold;
  }

  // --- the tree ---

  const nodeAt = (rules, number) => rules.table[number] ?? emptyNode;

  function admits(node, value) {
    return node.test === 0 ? value === node.value : value !== node.value;
  }

  function chooseChild(rules, parent, attributes) {
    if (parent.childCount < 1 || parent.childCount > maxChildren) {
      return noDecision;
    }
    for (const child of parent.children.slice(0, parent.childCount)) {
      if (child < 1 || child >= tableSize) {
        return noDecision;
      }
      const node = nodeAt(rules, child);
      if (!isAttribute(node.attribute)) {
        return noDecision;
      }
      if (admits(node, attributes[node.attribute])) {
        return child;
      }
    }
    return noDecision;
  }

  function isConfidentEnough(node, settings) {
    return settings.walkToLeaf === 0 && node.confidence >= settings.spamThreshold &&
      node.support >= settings.minSupport;
  }

  // `path`: the nodes that the walk stood on; `end`: why it ended there.
  function walk(rules, attributes, settings) {
    const path = [];
    const ended = (result, end) => ({path, result: result === 0 ? noDecision : result, end});
    for (let current = root; path.length < tableSize;) {
      path.push(current);
      const node = nodeAt(rules, current);
      if (node.isLeaf !== 0) {
        return ended(current, "leaf");
      }
      if (current !== 0 && isConfidentEnough(node, settings)) {
        return ended(current, "confident");
      }
      const child = chooseChild(rules, node, attributes);
      if (child === noDecision) {
        return ended(noDecision, "noBranch");
      }
      if (!(nodeAt(rules, child).support >= settings.minSupport)) {
        return ended(current, "rareBranch");
      }
      current = child;
    }
    return ended(noDecision, "circles");
  }

  // --- the verdict ---

  function consultsTree(rules, settings) {
    return (rules.elite.length === 0 || rules.alsoWalkTree === 1) &&
      treeOffThreshold > settings.spamThreshold;
  }

  // The answer to a vector. `by`: "elite", "tree" or "nothing" decided; `walk` is null when the tree
  // was not asked.
  function judge(rules, attributes, settings) {
    const hits = runElite(rules, attributes, settings);
    const answer = {
      verdict: "none", by: "nothing", node: 0, confidence: -1, support: 0, adjust: 0, hits,
      walk: null,
    };
    if (doesEliteDecide(hits, settings)) {
      return {
        ...answer, verdict: "spam", by: "elite", node: hits.code, confidence: hits.confidence,
        support: hits.support, adjust: hits.adjust,
      };
    }
    if (!consultsTree(rules, settings)) {
      return answer;
    }
    answer.walk = walk(rules, attributes, settings);
    const number = answer.walk.result;
    if (number <= root) {
      return answer;
    }
    const node = nodeAt(rules, number);
    Object.assign(answer, {
      by: "tree", node: number, confidence: node.confidence, support: node.support,
      adjust: hits.adjust,
    });
    answer.verdict = classify(node, hits, settings);
    return answer;
  }

  function classify(node, hits, settings) {
    if (!(node.support >= settings.minSupport)) {
      return "none";
    }
    if (hits.adjust + node.confidence >= settings.spamThreshold) {
      return "spam";
    }
    return 1.0 - node.confidence >= settings.hamThreshold ? "ham" : "none";
  }

  return {readRules, judge, nodeAt, root, attributeCount, adjusting, deciding};
})();
