// SPDX-License-Identifier: Apache-2.0
//
// The messages to choose from, and the chosen one. Those of a page in a file were judged when it
// was written; a served page asks the program that serves it.
const QvMessages = (() => {
  "use strict";

  let messages = [];
  // Only the answer to the last question is shown.
  let questions = 0;
  const list = () => document.getElementById("message");

  // Each message is a record, or {source, headers}: its name and its header section in Base64.
  function start(given) {
    messages = given.map((message) => message.explain ? message
      : {source: message.source, ...QvTrial.message(bytesOf(message.headers))});
    list().addEventListener("change", show);
    chooseFirst();
  }

  const bytesOf = (base64) => Uint8Array.from(atob(base64), (byte) => byte.charCodeAt(0));

  // Puts a message before those that are there, and shows it.
  function add(message) {
    messages.unshift(message);
    chooseFirst();
  }

  function chooseFirst() {
    list().replaceChildren(new Option("none", ""),
      ...messages.map(({source}, place) => new Option(source, String(place))));
    document.getElementById("messages").hidden = messages.length === 0;
    list().value = messages.length === 0 ? "" : "0";
    show();
  }

  async function show() {
    questions += 1;
    const question = questions;
    const message = messages[list().value];
    if (!message) {
      QvAnswer.clear();
      return;
    }
    const {record, problem} = message.explain ? {record: message} : await QvTrial.ask(message);
    if (question !== questions) {
      return;
    }
    if (record) {
      QvAnswer.show(message.source, record);
    } else {
      QvAnswer.complain(`${message.source}: ${problem}`);
    }
  }

  return {start, add, show};
})();
