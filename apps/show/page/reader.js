// SPDX-License-Identifier: Apache-2.0
//
// Reads what a person drops or pastes: CSV rows of `qvscan --format csv`, records of
// `qvscan --format json --explain`, or "name=value" pairs. Everything is hostile until checked.
const QvReader = (() => {
  "use strict";

  // More messages than this are no list to choose from.
  const maxItems = 500;

  // What a person can mend; its text says how.
  class InputError extends Error {}
  // A whole message, which the page cannot read by itself.
  class RawMessage extends Error {}

  const isInt32 = (value) => Number.isInteger(value) && value >= -2147483648 && value <= 2147483647;

  function checkedVector(values) {
    if (!Array.isArray(values) || values.length !== QvEngine.attributeCount ||
        !values.every(isInt32)) {
      throw new InputError(`A vector has ${QvEngine.attributeCount} whole numbers.`);
    }
    return values;
  }

  // --- records of qvscan ---

  // A message that never came to the rules has a record without an analysed hop.
  function whyNotJudged(record) {
    if (typeof record.error === "string") {
      return `The scan failed: ${record.error}`;
    }
    return record.explain.receivers?.[0]?.hasIP === 3
      ? "The message has no public hop that could be judged, so no rule was asked." : "";
  }

  function fromRecord(record, place) {
    if (record === null || typeof record !== "object") {
      throw new InputError("This JSON is no record of a message.");
    }
    if (record.explain === null || typeof record.explain !== "object") {
      throw new InputError(
        "The record has no working record in it: write it with qvscan --format json --explain.");
    }
    return {
      title: typeof record.source === "string" ? record.source : `record ${place + 1}`,
      attributes: checkedVector(record.explain.attributes),
      names: QvWords.namesOf(record.explain),
      problem: whyNotJudged(record),
    };
  }

  function fromJson(text) {
    let records;
    try {
      const whole = JSON.parse(text);
      records = Array.isArray(whole) ? whole : [whole];
    } catch {
      records = fromJsonLines(text);
    }
    if (records.length === 0) {
      throw new InputError("This list holds no record.");
    }
    return records.slice(0, maxItems).map(fromRecord);
  }

  function fromJsonLines(text) {
    const lines = text.split("\n").filter((line) => line.trim() !== "").slice(0, maxItems);
    return lines.map((line, i) => {
      try {
        return JSON.parse(line);
      } catch (error) {
        throw new InputError(`Line ${i + 1} is no JSON: ${error.message}`);
      }
    });
  }

  // --- CSV ---

  // The fields of RFC 4180, record by record.
  function csvRecords(text) {
    const records = [];
    const field = /("(?:[^"]|"")*"|[^,"\r\n]*)(,|\r?\n)/gy;
    const whole = `${text}\n`;
    let record = [];
    while (field.lastIndex < whole.length && records.length <= maxItems) {
      const match = field.exec(whole);
      if (match === null) {
        throw new InputError("The CSV has a quotation mark where none can be.");
      }
      const [, value, end] = match;
      record.push(value.startsWith('"') ? value.slice(1, -1).replaceAll('""', '"') : value);
      if (end !== ",") {
        records.push(record);
        record = [];
      }
    }
    return records.filter((one) => one.length > 1 || one[0] !== "");
  }

  function fromCsv(text, facts) {
    const [head, ...rows] = csvRecords(text);
    const columns = facts.map(({name}) => {
      const column = head.indexOf(name);
      if (column < 0) {
        throw new InputError(`The first line names no column "${name}".`);
      }
      return column;
    });
    if (rows.length === 0) {
      throw new InputError("There is a line with names, but none with values.");
    }
    return rows.slice(0, maxItems).map((row, i) => csvItem(row, i, columns));
  }

  function csvItem(row, i, columns) {
    const title = row[0] || `row ${i + 1}`;
    const texts = columns.map((column) => (row[column] ?? "").trim());
    if (texts.every((text) => text === "")) {
      return {
        title, attributes: null, names: {},
        problem: "The message has no public hop that could be judged, so no rule was asked.",
      };
    }
    const values = texts.map((text) => /^-?\d+$/.test(text) ? Number(text) : NaN);
    if (!values.every(isInt32)) {
      throw new InputError(`Row ${i + 1} has a field that is no whole number.`);
    }
    return {title, attributes: checkedVector(values), names: {}, problem: ""};
  }

  // --- named values ---

  // What is not named is as a scan leaves it that finds nothing else: see VectorText.h, which
  // completes the vectors of command lines and rule tests in the same way.
  function completed(attributes, named, facts) {
    const told = facts.map((fact, index) => ({...fact, index}))
      .filter(({withoutDeepHop, index}) => withoutDeepHop !== null && named.has(index));
    const behind = facts.findIndex(({name}) => name === "hop_behind_first");
    const hasDeepHop = told.length === 0 ? attributes[behind] === 1
      : told.some(({withoutDeepHop, index}) => attributes[index] !== withoutDeepHop);
    return attributes.map((value, index) => {
      if (named.has(index)) {
        return value;
      }
      return hasDeepHop ? (index === behind ? 1 : value) : facts[index].withoutDeepHop ?? value;
    });
  }

  function fromNames(text, facts) {
    const attributes = facts.map(({start}) => start);
    const named = new Set();
    for (const pair of text.split(/[\s,;]+/).filter((one) => one !== "")) {
      const [, name, value] = /^([a-z0-9_]+)={1,2}(.+)$/.exec(pair) ?? [];
      const index = facts.findIndex((fact) => fact.name === name);
      if (index < 0) {
        throw new InputError(`"${pair.slice(0, 80)}" is no attribute with a value, as in ` +
          "first_helo_dynamic=yes.");
      }
      if (named.has(index)) {
        throw new InputError(`${name} is given twice.`);
      }
      named.add(index);
      attributes[index] = namedValue(facts[index], value);
    }
    return [{
      title: "these values", attributes: completed(attributes, named, facts), names: {},
      problem: "",
    }];
  }

  function namedValue(fact, text) {
    const word = fact.words.find(([one]) => one === text);
    const value = word ? word[1] : /^-?\d+$/.test(text) ? Number(text) : NaN;
    if (!isInt32(value)) {
      const words = fact.words.map(([one]) => one).join(", ");
      throw new InputError(`${fact.name} cannot be "${text.slice(0, 80)}"` +
        (words === "" ? "; it is a number." : `; it is ${words} or a number.`));
    }
    return value;
  }

  // --- all together ---

  const isMessage = (text) => /^(From |[!-9;-~]+[ \t]*:)/.test(text) && !text.startsWith("{");

  // A list of messages, each with a title, the vector (null: there is none), the names that its
  // sentences hold, and why it was not judged ("" when it was). Throws InputError or RawMessage.
  function read(text, facts) {
    const trimmed = text.replace(/^\uFEFF/, "").trim();
    if (trimmed === "") {
      throw new InputError("There is nothing here.");
    }
    if (trimmed.startsWith("{") || trimmed.startsWith("[")) {
      return fromJson(trimmed);
    }
    if (/^source,/.test(trimmed)) {
      return fromCsv(trimmed, facts);
    }
    if (isMessage(trimmed)) {
      throw new RawMessage();
    }
    return fromNames(trimmed, facts);
  }

  return {read, fromRecord, InputError, RawMessage};
})();
