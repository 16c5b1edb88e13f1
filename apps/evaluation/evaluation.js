// SPDX-License-Identifier: Apache-2.0
// Shows one corpus at a time. Without it the page shows them one below the other.
"use strict";

(() => {
  const links = [...document.querySelectorAll(".corpora a")];
  const sections = [...document.querySelectorAll(".corpus")];

  function show(id) {
    for (const section of sections) {
      section.classList.toggle("away", section.id !== id);
    }
    for (const link of links) {
      link.setAttribute("aria-current", String(link.hash === "#" + id));
    }
  }

  function showNamed() {
    const id = location.hash.slice(1);
    if (sections.some((section) => section.id === id)) {
      show(id);
    }
  }

  if (links.length > 0) {
    for (const link of links) {
      // The section appears where the last one was: nothing has to scroll.
      link.addEventListener("click", (event) => {
        event.preventDefault();
        history.replaceState(null, "", link.hash);
        showNamed();
      });
    }
    addEventListener("hashchange", showNamed);
    show(sections[0].id);
    showNamed();
  }
})();
