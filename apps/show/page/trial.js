// SPDX-License-Identifier: Apache-2.0
//
// Trying messages: what is pasted, dropped or chosen from the list becomes the message at hand, and
// is judged again whenever a setting changes.
const QvTrial = (() => {
  "use strict";

  // Larger files are no records, and reading them would only block the page.
  const maxFile = 20 * 1024 * 1024;

  let data = null;
  let rules = null;
  let messages = [];
  let current = -1;
  const part = (name) => document.getElementById(name);

  function start(pageData) {
    data = pageData;
    rules = QvEngine.readRules(data.rules);
    for (const [name, value] of Object.entries(data.settings)) {
      data.settings[name] = Number(value); // infinities are texts in JSON
    }
    for (const input of document.querySelectorAll("#settings input")) {
      input.value = data.settings[input.name];
      input.addEventListener("input", judge);
    }
    part("try-it").addEventListener("click", () => take(part("pasted").value));
    part("pasted").addEventListener("keydown", (event) => {
      if (event.key === "Enter" && (event.ctrlKey || event.metaKey)) {
        take(part("pasted").value);
      }
    });
    part("forget").addEventListener("click", forget);
    part("file").addEventListener("change", (event) => takeFile(event.target.files[0]));
    part("message").addEventListener("change", (event) => choose(Number(event.target.value)));
    startDropping();
    document.addEventListener("paste", (event) => {
      if (!event.target.closest?.("input, textarea")) {
        take(event.clipboardData.getData("text"));
      }
    });
    add(data.messages.map(QvReader.fromRecord), false);
  }

  // --- what comes in ---

  function take(text) {
    try {
      add(QvReader.read(text, data.attributes), true);
    } catch (error) {
      if (error instanceof QvReader.RawMessage) {
        takeMessage(new Blob([text]), "pasted message");
      } else if (error instanceof QvReader.InputError) {
        QvAnswer.complain(error.message);
      } else {
        throw error;
      }
    }
  }

  async function takeFile(file) {
    if (!file) {
      return;
    }
    if (file.size > maxFile) {
      QvAnswer.complain(`${file.name} is larger than ${maxFile / 1024 / 1024} MB.`);
      return;
    }
    const text = await file.text();
    try {
      add(QvReader.read(text, data.attributes), true);
    } catch (error) {
      if (error instanceof QvReader.RawMessage) {
        takeMessage(file, file.name);
      } else if (error instanceof QvReader.InputError) {
        QvAnswer.complain(`${file.name}: ${error.message}`);
      } else {
        throw error;
      }
    }
  }

  // A message itself: only the program behind a served page can read it.
  async function takeMessage(blob, name) {
    if (!data.isServed) {
      QvAnswer.complain("This is a message itself. A page from a file cannot read messages.",
        "Either drop what \"qvscan --format json --explain\" prints about it, or start " +
        "\"qvrules show RULES --serve\" and drop it in the page that this serves.");
      return;
    }
    let answer;
    try {
      answer = await fetch("/explain", {
        method: "POST", headers: {"Content-Type": "message/rfc822"}, body: blob,
      });
    } catch {
      QvAnswer.complain("The program that served this page no longer runs: start it again.");
      return;
    }
    if (!answer.ok) {
      QvAnswer.complain(`${name}: ${await answer.text()}`);
      return;
    }
    const record = QvReader.fromRecord(await answer.json(), 0);
    add([{...record, title: name}], true);
  }

  function startDropping() {
    const isFile = (event) => event.dataTransfer?.types.length > 0;
    for (const kind of ["dragenter", "dragover"]) {
      document.addEventListener(kind, (event) => {
        if (isFile(event)) {
          event.preventDefault();
          document.body.classList.add("dropping");
        }
      });
    }
    document.addEventListener("dragleave", (event) => {
      if (event.relatedTarget === null) {
        document.body.classList.remove("dropping");
      }
    });
    document.addEventListener("drop", (event) => {
      event.preventDefault();
      document.body.classList.remove("dropping");
      const [file] = event.dataTransfer.files;
      if (file) {
        takeFile(file);
      } else {
        take(event.dataTransfer.getData("text"));
      }
    });
  }

  // --- the list of messages ---

  // Puts messages before those that are there.
  function add(fresh, isChosen) {
    messages = [...fresh, ...messages];
    const list = part("message");
    list.replaceChildren(new Option("none", "-1"), ...messages.map(({title}, i) =>
      new Option(title, String(i))));
    part("messages").hidden = messages.length === 0;
    if (isChosen) {
      list.value = "0";
      choose(0);
    }
  }

  function choose(index) {
    current = index;
    judge();
  }

  function forget() {
    part("pasted").value = "";
    part("file").value = "";
    part("message").value = "-1";
    choose(-1);
  }

  // --- judging ---

  // What stands in the fields; what is no number there stays as it came.
  function settings() {
    const chosen = {...data.settings};
    for (const input of document.querySelectorAll("#settings input")) {
      if (input.value !== "" && Number.isFinite(Number(input.value))) {
        chosen[input.name] = Number(input.value);
      }
    }
    return chosen;
  }

  function judge() {
    if (messages[current]) {
      QvAnswer.show(rules, messages[current], settings());
    } else {
      QvAnswer.clear();
    }
  }

  return {start, take};
})();
