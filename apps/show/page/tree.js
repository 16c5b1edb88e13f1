// SPDX-License-Identifier: Apache-2.0
//
// The tree as a list of items that open and close, by mouse and by keyboard as screen readers expect
// of a tree. The list is flat, since browsers cut documents that are nested too deep; the level of
// an item shows its place.
const QvTree = (() => {
  "use strict";

  // Levels that are open at first.
  const openLevels = 3;

  let list = null;
  let items = [];
  // The items to show while searching, null otherwise.
  let found = null;

  // Reads the items from the page and closes all but the first levels.
  function start(element) {
    list = element;
    items = Array.from(list.children, (item) => ({
      item, level: Number(item.getAttribute("aria-level")), parent: null, isOpen: false,
      hasChildren: false,
    }));
    const above = [];
    for (const one of items) {
      above.length = one.level - 1;
      one.parent = above.at(-1) ?? null;
      if (one.parent) {
        one.parent.hasChildren = true;
      }
      above.push(one);
    }
    openTo(openLevels);
    items[0].item.tabIndex = 0;
    list.addEventListener("click", onClick);
    list.addEventListener("keydown", onKey);
  }

  const ofItem = (item) => items.find((one) => one.item === item);

  const isBelowClosed = (one) => {
    for (let above = one.parent; above; above = above.parent) {
      if (!above.isOpen) {
        return true;
      }
    }
    return false;
  };

  function show() {
    let hasFocus = false;
    for (const one of items) {
      one.item.hidden = found ? !found.has(one) : isBelowClosed(one);
      if (one.hasChildren) {
        one.item.setAttribute("aria-expanded", String(found !== null || one.isOpen));
      }
      hasFocus ||= !one.item.hidden && one.item.tabIndex === 0;
    }
    if (!hasFocus) {
      const first = items.find((one) => !one.item.hidden);
      takeTab(first ?? items[0]);
    }
  }

  // --- opening and closing ---

  function openTo(level) {
    for (const one of items) {
      one.isOpen = one.level < level;
    }
    show();
  }

  function toggle(one, isOpen = !one.isOpen) {
    one.isOpen = isOpen && one.hasChildren;
    show();
  }

  // Opens everything above the items, and nothing else when `isAlone`. A search shows them too.
  function reveal(chosen, isAlone = false) {
    if (isAlone) {
      openTo(1);
    }
    for (const item of chosen) {
      for (let one = ofItem(item); one; one = one.parent) {
        one.isOpen ||= one.item !== item;
        found?.add(one);
      }
    }
    show();
  }

  // Shows these items and what is above them; null ends that.
  function filter(chosen) {
    found = null;
    if (chosen) {
      found = new Set();
      for (const item of chosen) {
        for (let one = ofItem(item); one && !found.has(one); one = one.parent) {
          found.add(one);
        }
      }
    }
    show();
  }

  // --- moving about ---

  // One item at a time is a stop of the Tab key.
  function takeTab(one) {
    for (const other of items) {
      other.item.tabIndex = -1;
    }
    one.item.tabIndex = 0;
  }

  function focus(one) {
    if (one) {
      takeTab(one);
      one.item.focus();
    }
  }

  // Opens what is above an item, and moves to it.
  function goTo(item) {
    reveal([item]);
    focus(ofItem(item));
    item.scrollIntoView({block: "center"});
  }

  const shown = () => items.filter((one) => !one.item.hidden);

  function neighbour(one, step) {
    const visible = shown();
    return visible[visible.indexOf(one) + step];
  }

  const moves = {
    ArrowDown: (one) => focus(neighbour(one, 1)),
    ArrowUp: (one) => focus(neighbour(one, -1)),
    Home: () => focus(shown()[0]),
    End: () => focus(shown().at(-1)),
    ArrowRight: (one) => one.hasChildren && !one.isOpen ? toggle(one, true)
      : one.hasChildren && focus(neighbour(one, 1)),
    ArrowLeft: (one) => one.hasChildren && one.isOpen ? toggle(one, false) : focus(one.parent),
    Enter: (one) => toggle(one),
    " ": (one) => toggle(one),
    "*": (one) => {
      for (const other of items.filter(({parent}) => parent === one.parent)) {
        other.isOpen = other.hasChildren;
      }
      show();
    },
  };

  function onKey(event) {
    const one = ofItem(event.target);
    if (one && Object.hasOwn(moves, event.key) && !event.ctrlKey && !event.altKey &&
        !event.metaKey) {
      event.preventDefault();
      moves[event.key](one);
    }
  }

  function onClick(event) {
    const one = ofItem(event.target.closest("[role=treeitem]"));
    if (!one || event.target.closest("a")) {
      return;
    }
    // Selecting text to copy it must not open or close.
    if (getSelection().isCollapsed) {
      toggle(one);
      takeTab(one);
    }
  }

  return {start, openTo, reveal, filter, goTo, all: () => items.map(({item}) => item)};
})();
