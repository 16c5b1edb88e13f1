// SPDX-License-Identifier: Apache-2.0
//
// The drawing of the tree: fitted into its frame at first, larger and smaller by buttons, by the
// wheel with Ctrl, and by keyboard. The frame scrolls by itself.
const QvDrawing = (() => {
  "use strict";

  const step = 1.25;
  // Of the size in which the text can be read.
  const largest = 2;

  let frame = null;
  let picture = null;
  let scale = 1;
  // The whole tree is shown, also when the frame changes its size.
  let isFitted = true;

  function start(element, onNode) {
    frame = element;
    picture = frame.querySelector("svg");
    picture.addEventListener("click", ({target}) => {
      const box = target.closest("[data-node]");
      if (box) {
        onNode(box.dataset.node);
      }
    });
    const controls = {"zoom-in": "+", "zoom-out": "-", "zoom-fit": "0", "zoom-read": "1"};
    for (const [id, key] of Object.entries(controls)) {
      document.getElementById(id).addEventListener("click", keys[key]);
    }
    frame.addEventListener("keydown", onKey);
    frame.addEventListener("wheel", onWheel, {passive: false});
    new ResizeObserver(() => isFitted && zoomTo(0)).observe(frame);
    zoomTo(0);
  }

  // --- size ---

  const size = () => picture.viewBox.baseVal;

  const fitting = () => Math.min(1, (frame.clientWidth - 1) / size().width,
    parseFloat(getComputedStyle(frame).maxHeight) / size().height);

  const middle = () => ({x: frame.clientWidth / 2, y: frame.clientHeight / 2});

  // What is at this place of the frame stays there.
  function zoomTo(wanted, {x, y} = middle()) {
    const left = (frame.scrollLeft + x) / scale;
    const top = (frame.scrollTop + y) / scale;
    isFitted = wanted <= fitting();
    scale = isFitted ? fitting() : Math.min(wanted, largest);
    picture.style.width = `${size().width * scale}px`;
    frame.scrollTo(left * scale - x, top * scale - y);
    document.getElementById("zoom").textContent = `${Math.round(100 * scale)} %`;
  }

  const keys = {
    "+": () => zoomTo(scale * step),
    "=": () => zoomTo(scale * step), // "+" without Shift
    "-": () => zoomTo(scale / step),
    "0": () => zoomTo(0),
    "1": () => zoomTo(1),
  };

  function onKey(event) {
    if (Object.hasOwn(keys, event.key) && !event.ctrlKey && !event.altKey && !event.metaKey) {
      event.preventDefault();
      keys[event.key]();
    }
  }

  // Without Ctrl the wheel scrolls, as everywhere.
  function onWheel(event) {
    if (event.ctrlKey || event.metaKey) {
      event.preventDefault();
      const edge = frame.getBoundingClientRect();
      zoomTo(event.deltaY < 0 ? scale * step : scale / step,
        {x: event.clientX - edge.left, y: event.clientY - edge.top});
    }
  }

  // --- marks ---

  const boxOf = (number) => picture.querySelector(`[data-node="${number}"]`);

  // Where one is in the outline; shown in the middle, unless all of the tree is.
  function point(number) {
    picture.querySelector(".at")?.classList.remove("at");
    const box = number ? boxOf(number) : null;
    if (box) {
      box.classList.add("at");
      const [at, edge] = [box.getBoundingClientRect(), frame.getBoundingClientRect()];
      frame.scrollBy(at.left + at.width / 2 - edge.left - middle().x,
        at.top + at.height / 2 - edge.top - middle().y);
    }
  }

  // The path of a message and the node that decided, 0 for none.
  function follow(path, decider) {
    for (const number of path) {
      for (const part of picture.querySelectorAll(
        `[data-node="${number}"], [data-to="${number}"]`)) {
        part.classList.add("on-path");
      }
    }
    boxOf(decider)?.classList.add("decides");
  }

  // All but these nodes; null ends that.
  function dim(numbers) {
    picture.classList.toggle("searching", numbers !== null);
    for (const box of picture.querySelectorAll("[data-node]")) {
      box.classList.toggle("found", numbers?.includes(box.dataset.node) ?? false);
    }
  }

  return {start, point, follow, dim};
})();
