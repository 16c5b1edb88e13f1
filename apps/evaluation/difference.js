// SPDX-License-Identifier: Apache-2.0
// Shows the changes that hold all words of the filter, and opens the lists that they are in.
"use strict";

(() => {
  const input = document.getElementById("filter");
  if (!input) {
    return;
  }
  document.documentElement.classList.add("scripted");
  const ways = [...document.querySelectorAll(".way")].map((way) => ({way, wasOpen: way.open,
    cards: [...way.querySelectorAll(".deciders > li")].map((card) =>
      ({card, text: `${way.querySelector("summary").textContent} ${card.textContent}`
        .toLowerCase()}))}));
  const all = ways.reduce((sum, {cards}) => sum + cards.length, 0);

  input.addEventListener("input", () => {
    const words = input.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    let found = 0;
    for (const {way, wasOpen, cards} of ways) {
      let shown = 0;
      for (const {card, text} of cards) {
        card.hidden = !words.every((word) => text.includes(word));
        shown += card.hidden ? 0 : 1;
      }
      way.hidden = shown === 0;
      way.open = words.length === 0 ? wasOpen : shown > 0;
      found += shown;
    }
    document.getElementById("filtered").textContent =
      words.length === 0 ? "" : `${found} of ${all} kinds of change`;
  });
})();
