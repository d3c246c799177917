// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The form on the left: shows settings and reads them. Every slider has a field for its number.

import { methods } from "./settings.js";

const form = document.getElementById("settings");
const byName = (name) => form.elements.namedItem(name);
const names = [...form.elements].map((control) => control.name).filter(Boolean);

/** Puts a field for the number beside a slider; either follows the other. */
function addNumber(slider) {
  const field = document.createElement("input");
  field.type = "number";
  field.dataset.slider = slider.id;
  Object.assign(field, { min: slider.min, max: slider.max, value: slider.value });
  field.setAttribute("aria-label", `${slider.labels[0].textContent}, number`);
  slider.after(field);
  slider.addEventListener("input", () => (field.value = slider.value));
  const follow = (event) => {
    if (field.value === "" || !field.checkValidity()) return;
    slider.value = field.value;
    slider.dispatchEvent(new Event(event.type, { bubbles: true }));
  };
  field.addEventListener("input", (event) => (event.stopPropagation(), follow(event)));
  field.addEventListener("change", (event) => (event.stopPropagation(), follow(event)));
}

function setSlider(slider, value) {
  slider.value = value;
  if (slider.nextElementSibling?.dataset.slider === slider.id)
    slider.nextElementSibling.value = slider.value;
}

function setBounds(name, least, most) {
  const slider = byName(name);
  for (const control of [slider, slider.nextElementSibling]) {
    control.min = least;
    control.max = most;
  }
}

/** Sets the bounds that depend on the image. */
export function fitControls({ least, largest, ncols, nrows }) {
  setBounds("h", 0, Math.max(1, largest - least));
  for (const name of ["low", "high", "limit", "above"]) setBounds(name, least, Math.max(largest, least + 1));
  setBounds("minArea", 0, Math.max(20, Math.round((ncols * nrows) / 100)));
}

export function showSettings(settings) {
  for (const name of names) {
    const control = byName(name);
    if (control.type === "checkbox") control.checked = settings[name];
    else if (control.type === "range") setSlider(control, settings[name]);
    else control.value = settings[name];
  }
  showParts(settings);
}

export function readSettings() {
  const settings = {};
  for (const name of names) {
    const control = byName(name);
    if (control.type === "checkbox") settings[name] = control.checked;
    else if (control.type === "range") settings[name] = Number(control.value);
    else if (control.type === "number") settings[name] = wholeOf(control);
    else settings[name] = control.value;
  }
  return settings;
}

function wholeOf(field) {
  const value = Math.trunc(Number(field.value));
  return Math.min(Math.max(value || 1, 1), 2147483647);
}

/** Shows the controls that have an effect. */
export function showParts(settings) {
  const method = methods[settings.method];
  document.getElementById("about").textContent = method.about;
  const holds = {
    uniform: settings.uniform,
    auto: settings.auto,
    merge: settings.merge,
    above: settings.only === "above",
    ground: Boolean(method.canHaveGround) && settings.ground,
    split: settings.method === "split",
  };
  for (const row of form.querySelectorAll(".row")) {
    const { for: wanted, if: any, unless } = row.dataset;
    row.hidden =
      (wanted !== undefined && !wanted.split(" ").includes(settings.method)) ||
      (any !== undefined && !any.split(" ").some((name) => holds[name])) ||
      (unless !== undefined && holds[unless]);
  }
}

export function prepareControls() {
  const select = byName("method");
  for (const [word, method] of Object.entries(methods)) select.append(new Option(method.name, word));
  for (const slider of document.querySelectorAll("#settings input[type=range], #brush input[type=range]"))
    addNumber(slider);
}
