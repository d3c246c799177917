// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Keys that work everywhere on the page, but in fields that take text.

const at = (id) => document.getElementById(id);

function click(id) {
  at(id).click();
}

function changeRadius(step) {
  const slider = at("radius");
  slider.value = Number(slider.value) + step;
  slider.dispatchEvent(new Event("input", { bubbles: true }));
  slider.dispatchEvent(new Event("change", { bubbles: true }));
}

export function listenForKeys({ cancel, nextObject, travel, view }) {
  const withControl = {
    z: () => travel(-1),
    Z: () => travel(1),
    y: () => travel(1),
    o: () => click("open"),
  };
  const plain = {
    m: () => click("toolPan"),
    d: () => click("toolDraw"),
    e: () => click("toolErase"),
    n: nextObject,
    "[": () => changeRadius(-1),
    "]": () => changeRadius(1),
    "+": () => view.zoomBy(1),
    "=": () => view.zoomBy(1),
    "-": () => view.zoomBy(-1),
    0: () => view.fit(),
    1: () => view.zoomTo(1),
    r: () => click("showFill"),
    o: () => click("showOutlines"),
    s: () => click("showSeeds"),
    i: () => click("showImage"),
    Escape: cancel,
  };
  document.addEventListener("keydown", (event) => {
    if (at("keys").open || event.altKey) return;
    const isControl = event.ctrlKey || event.metaKey;
    const isText = event.target.matches("input[type=number], select, textarea");
    if (isText && !isControl && event.key !== "Escape") return;
    const action = (isControl ? withControl : plain)[event.key];
    if (!action) return;
    event.preventDefault();
    action();
  });
}
