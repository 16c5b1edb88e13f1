// SPDX-License-Identifier: Apache-2.0
//
// Attributes, tests and verdicts in plain words. The sentences are those of the library
// (rules/language/Sentences.h), filled here with the names of a message. Pure functions; what they
// return is text, never markup.
const QvWords = (() => {
  "use strict";

  let attributes = [];
  let sentences = [];

  function use(data) {
    attributes = data.attributes;
    sentences = data.sentences.map(([attribute, value, is, isNot]) =>
      ({attribute, value, is, isNot}));
  }

  // {NAME} becomes ", TEXT", and another comma before a blank; without the name, nothing.
  function fill(sentence, names) {
    return sentence.replace(/\{([^}]*)\}( ?)/g, (_, name, blank) =>
      Object.hasOwn(names, name) && names[name] !== ""
        ? `, ${names[name]}${blank === "" ? "" : ", "}` : blank);
  }

  // What the message is like in this attribute.
  function valueSentence(attribute, value, names) {
    const row = sentences.find((sentence) => sentence.attribute === attribute &&
      (sentence.value === null || sentence.value === value));
    return row ? fill(row.is.replace("{value}", String(value)), names)
      : `attribute ${attribute} is ${value}`;
  }

  // "yes", or the number where it has no word.
  function valueText(attribute, value) {
    const word = attributes[attribute].words.find(([, code]) => code === value);
    return word ? word[0] : String(value);
  }

  // The names that sentences hold, from a record that qvscan explained.
  function namesOf(explain) {
    const text = (value) => typeof value === "string" ? value : "";
    const [first = {}, deep = {}] = Array.isArray(explain.receivers) ? explain.receivers : [];
    // Borders write "unknown" where they found none.
    const reverse = (hop) => text(hop?.reverseName) === "unknown" ? "" : text(hop?.reverseName);
    return {
      firstHelo: text(first?.helo), firstReverse: reverse(first), firstAddress: text(first?.ip),
      deepHelo: text(deep?.helo), deepReverse: reverse(deep), deepAddress: text(deep?.ip),
      authorDomain: text(explain.headerFrom), envelopeDomain: text(explain.envelopeFrom),
      recipientDomain: text(explain.recipient), messageIdDomain: text(explain.messageIdDomain),
    };
  }

  // Four significant digits, without zeros at the end.
  const number = (value) => Number.isFinite(value) ? String(Number(value.toPrecision(4)))
    : String(value);

  function sum(answer) {
    const adjust = answer.adjust === 0 ? ""
      : ` ${answer.adjust < 0 ? "−" : "+"} ${number(Math.abs(answer.adjust))}`;
    return `${number(answer.confidence)}${adjust} spam`;
  }

  // Why the verdict is what it is, in one sentence.
  function reason(answer, settings) {
    const ham = `${number(1 - answer.confidence)} ham`;
    if (answer.by === "nothing") {
      return answer.walk === null
        ? "No elite rule decided, and the tree is not asked." : "No rule decided.";
    }
    switch (answer.verdict) {
      case "spam":
        return `${sum(answer)} reaches the spam threshold ${number(settings.spamThreshold)}.`;
      case "ham":
        return `${ham} reaches the ham threshold ${number(settings.hamThreshold)}.`;
      default:
        return `Not sure enough: ${sum(answer)} is below the spam threshold ` +
          `${number(settings.spamThreshold)}, ${ham} below the ham threshold ` +
          `${number(settings.hamThreshold)}.`;
    }
  }

  // Why the walk ended where it did.
  function ending(walk) {
    return {
      leaf: "A leaf: the walk ends here.",
      confident: "Sure enough of spam: the walk stops here.",
      noBranch: "No branch fits: the walk gives up.",
      rareBranch: "The branch that fits was seen too rarely in training: the walk stays here.",
      circles: "The walk goes in circles and gives up.",
    }[walk.end];
  }

  // "the host name ..." as a sentence of its own.
  const capital = (text) => text.charAt(0).toUpperCase() + text.slice(1);

  return {use, fill, valueSentence, valueText, namesOf, number, reason, ending, capital};
})();
