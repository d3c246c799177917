// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Mouse, touch and keys on the canvas: one finger or the left button does what the tool says, two
// fingers, the middle button and the wheel move and zoom.

const arrows = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

/**
 * `tools` has `tool()`: "pan", "draw" or "erase"; `begin(pixel)`, `extend(pixel)` and `end()` of a
 * stroke, `drop()` of one that was none, and `point(pixel or null)`.
 */
export function listenOn(canvas, view, tools) {
  const pointers = new Map();
  let isStroke = false;
  let isSpace = false;

  const middleOf = () => {
    const places = [...pointers.values()];
    const mean = (key) => places.reduce((sum, place) => sum + place[key], 0) / places.length;
    const [a, b] = places;
    return { px: mean("px"), py: mean("py"), spread: b ? Math.hypot(a.px - b.px, a.py - b.py) : 0 };
  };

  canvas.addEventListener("pointerdown", (event) => {
    canvas.setPointerCapture(event.pointerId);
    pointers.set(event.pointerId, view.placeOf(event));
    if (pointers.size === 2 && isStroke) {
      isStroke = false;
      tools.drop();
    } else if (pointers.size === 1 && event.button === 0 && tools.tool() !== "pan") {
      isStroke = true;
      tools.begin(view.pixelAt(view.placeOf(event)));
    }
    if (event.button === 1) event.preventDefault();
  });

  canvas.addEventListener("pointermove", (event) => {
    const place = view.placeOf(event);
    tools.point(view.pixelAt(place));
    if (!pointers.has(event.pointerId)) return;
    if (isStroke) {
      for (const part of event.getCoalescedEvents?.() ?? [event])
        tools.extend(view.pixelAt(view.placeOf(part)));
      return;
    }
    const before = middleOf();
    pointers.set(event.pointerId, place);
    const after = middleOf();
    view.moveBy(after.px - before.px, after.py - before.py);
    if (before.spread > 0)
      view.zoomTo((view.scale * after.spread) / before.spread, after.px, after.py);
  });

  const release = (event) => {
    pointers.delete(event.pointerId);
    if (!isStroke) return;
    isStroke = false;
    tools.end();
  };
  canvas.addEventListener("pointerup", release);
  canvas.addEventListener("pointercancel", release);
  canvas.addEventListener("pointerleave", () => tools.point(null));

  canvas.addEventListener(
    "wheel",
    (event) => {
      event.preventDefault();
      const { px, py } = view.placeOf(event);
      if (event.ctrlKey) view.zoomTo(view.scale * Math.exp(-event.deltaY / 100), px, py);
      else if (event.deltaY !== 0) view.zoomBy(-event.deltaY, px, py);
    },
    { passive: false },
  );

  canvas.addEventListener("keydown", (event) => {
    const step = arrows[event.key];
    if (step) {
      event.preventDefault();
      const size = event.shiftKey ? 10 : 1;
      const from = view.cursor ?? { x: view.ncols >> 1, y: view.nrows >> 1 };
      const inside = (value, count) => Math.min(Math.max(value, 0), count - 1);
      const to = {
        x: inside(from.x + step[0] * size, view.ncols),
        y: inside(from.y + step[1] * size, view.nrows),
      };
      view.reveal(to);
      tools.point(to, true);
      if (isSpace) tools.extend(to);
    } else if ((event.key === "Enter" || event.key === " ") && view.cursor && !event.repeat) {
      event.preventDefault();
      if (tools.tool() === "pan" || isSpace) return;
      tools.begin(view.cursor);
      if (event.key === " ") isSpace = true;
      else tools.end();
    } else if (event.key === " ") event.preventDefault();
  });

  canvas.addEventListener("keyup", (event) => {
    if (event.key !== " " || !isSpace) return;
    isSpace = false;
    tools.end();
  });
  canvas.addEventListener("blur", () => {
    if (!isSpace) return;
    isSpace = false;
    tools.end();
  });
}
