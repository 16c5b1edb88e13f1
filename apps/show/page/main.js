// SPDX-License-Identifier: Apache-2.0
//
// Starts the scripts of the page. What needs no script is in the page already.
(() => {
  "use strict";

  const data = JSON.parse(document.getElementById("data").textContent);
  const part = (name) => document.getElementById(name);
  const eliteRows = Array.from(document.querySelectorAll("#elite tbody tr"));

  document.documentElement.classList.add("scripted");
  QvTree.start(part("tree"));
  QvSearch.start(part("search"), part("found"), eliteRows);
  part("open-all").addEventListener("click", () => QvTree.openTo(Infinity));
  part("close-all").addEventListener("click", () => QvTree.openTo(1));
  for (const link of document.querySelectorAll("a.to-node")) {
    link.addEventListener("click", (event) => {
      event.preventDefault();
      QvTree.goTo(document.querySelector(link.getAttribute("href")));
    });
  }
  if (part("answer")) {
    QvAnswer.start(eliteRows);
    QvMessages.start(data.messages);
  }
  if (part("pasted")) {
    QvTrial.start(data.maxMessage);
  }
})();
