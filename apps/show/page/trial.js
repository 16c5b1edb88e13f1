// SPDX-License-Identifier: Apache-2.0
//
// Messages and attributes that are pasted, dropped or chosen in a served page: the program that
// serves it judges them, and judges again whenever a setting changes.
const QvTrial = (() => {
  "use strict";

  let maxMessage = 0;
  const part = (name) => document.getElementById(name);

  function start(limit) {
    maxMessage = limit;
    part("settings").addEventListener("change", QvMessages.show);
    part("try-it").addEventListener("click", () => takeText(part("pasted").value));
    part("pasted").addEventListener("keydown", (event) => {
      if (event.key === "Enter" && (event.ctrlKey || event.metaKey)) {
        takeText(part("pasted").value);
      }
    });
    part("file").addEventListener("change", (event) => {
      takeFile(event.target.files[0]);
      event.target.value = ""; // the same file may be chosen again
    });
    document.addEventListener("paste", (event) => {
      if (!event.target.closest?.("input, textarea")) {
        takeText(event.clipboardData.getData("text"));
      }
    });
    startDropping();
  }

  // --- input ---

  // A message begins with a header field, and its name holds no "=" (RFC 5322, section 3.6.8, allows
  // it, but nobody writes one).
  const isVector = (text) => /^\s*\w+\s*=/.test(text);

  // What is sent: the body and its type. Line breaks separate attributes as commas do.
  const message = (body) => ({body, type: "message/rfc822"});
  const vector = (text) => ({
    body: text.trim().replace(/\s*[,;\n]\s*/g, ","), type: "text/x-attribute-vector",
  });

  function takeText(text) {
    if (isVector(text)) {
      QvMessages.add({source: text.trim().slice(0, 60), ...vector(text)});
    } else {
      QvMessages.add({source: "pasted message", ...message(text)});
    }
  }

  async function takeFile(file) {
    if (!file) {
      return;
    }
    if (file.size > maxMessage) {
      QvAnswer.complain(`${file.name}: larger than ${maxMessage / 1024 / 1024} MiB`);
      return;
    }
    const isText = isVector(await file.slice(0, 200).text());
    QvMessages.add({source: file.name, ...(isText ? vector(await file.text()) : message(file))});
  }

  function startDropping() {
    for (const kind of ["dragenter", "dragover"]) {
      document.addEventListener(kind, (event) => {
        if (event.dataTransfer?.types.length > 0) {
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
        takeText(event.dataTransfer.getData("text"));
      }
    });
  }

  // --- asking ---

  // {record}, or {problem}: why there is none.
  async function ask({body, type}) {
    const settings = new URLSearchParams(
      Array.from(part("settings").querySelectorAll("input"), ({name, value}) =>
        [name, value.trim()]));
    try {
      const answer = await fetch(`explain?${settings}`,
        {method: "POST", headers: {"Content-Type": type}, body});
      return answer.ok ? {record: await answer.json()} : {problem: await answer.text()};
    } catch {
      return {problem: "the program that served this page no longer runs; start it again"};
    }
  }

  return {start, message, ask};
})();
