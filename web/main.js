// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The page: what happens where.

import { colorOf } from "./colors.js";
import { commandFor } from "./command.js";
import { fitControls, prepareControls, readSettings, showParts, showSettings } from "./controls.js";
import { Engine } from "./engine.js";
import { listenForFiles } from "./intake.js";
import { listenForKeys } from "./keys.js";
import { rowsOf, sentenceOf, showLines, showNothing, showRows } from "./panel.js";
import { listenOn } from "./pointer.js";
import { defaultsFor, requestFor } from "./settings.js";
import { History } from "./state.js";
import { listenForSaves } from "./takeHome.js";
import { View } from "./view.js";

const at = (id) => document.getElementById(id);
const view = new View(at("canvas"));
const history = new History();
let live = null; // settings as they are while a slider moves or a stroke is drawn
let facts = null; // of the image
let result = null; // { labels, rows, … } of the settings, once they are computed
let seedsAlone = false; // there are seeds from which no regions can grow
let shownSettings = null; // those of the last result, to which cancelling returns
let rootsFiles = ["", ""]; // names
let rootsFilesTaken = 0;
let isLoading = false; // an image that the visitor chose
let lastImage = null; // the one before it
let startedAt = 0;
let showBusyAt = 0;

const engine = new Engine({ loaded, progress, regions, table, marks, failed });

function say(sentence, isError = false) {
  at("message").textContent = sentence;
  at("message").classList.toggle("error", isError);
}

function setBusy(isBusy) {
  at("main").setAttribute("aria-busy", String(isBusy));
  clearTimeout(showBusyAt);
  if (isBusy) showBusyAt = setTimeout(() => showBusy(true), 250); // what is quicker needs no notice
  else showBusy(false);
}

function showBusy(isShown) {
  at("progress").hidden = at("cancel").hidden = !isShown;
  if (isShown) at("progress").removeAttribute("value");
}

const marksShown = () => ({ outlines: at("showOutlines").checked, seeds: at("showSeeds").checked });

// ---- images

async function load(file, about) {
  const { name } = about;
  setBusy(true);
  say(`Reading ${name} …`);
  try {
    const bytes = await file;
    isLoading = true;
    lastImage = engine.source;
    engine.load(bytes, about);
  } catch {
    finish(`${name} cannot be loaded.`, true);
  }
}

function loaded(message) {
  const { settings, isOnDisk } = engine.source;
  facts = { ...message.facts, isFile: message.facts.isFile && isOnDisk };
  view.setImage(message.picture, facts.ncols, facts.nrows);
  fitControls(facts);
  if (isLoading) {
    rootsFiles = ["", ""];
    at("joinA").value = at("joinB").value = "";
    history.start({ ...defaultsFor(facts), ...settings });
    shownSettings = null;
  } // else it is back in a new worker
  isLoading = false;
  apply(history.state);
}

// ---- settings

/** Takes settings over into the form and computes. */
function apply(settings) {
  showSettings(settings);
  showHistory();
  compute(settings);
}

function compute(settings) {
  live = settings;
  showParts(settings);
  showCommand();
  setBusy(true);
  startedAt = performance.now();
  engine.run(requestFor(settings, rootsFilesTaken), marksShown());
}

function commit(settings) {
  history.push(settings);
  showHistory();
}

function showHistory() {
  at("undo").disabled = !history.canUndo;
  at("redo").disabled = !history.canRedo;
  at("clearStrokes").disabled = (history.state?.strokes.length ?? 0) === 0;
}

function travel(step) {
  if (facts === null) return;
  const state = history.go(step);
  apply(state);
  at("object").value = state.strokes.findLast((stroke) => stroke.label > 0)?.label ?? 1;
  showObject();
}

const settingsNow = () => ({ ...readSettings(), strokes: history.state.strokes });

at("settings").addEventListener("input", ({ target }) => {
  if (facts === null || target.name === "") return;
  if (target.type === "range") compute(settingsNow()); // others when they have changed
});

at("settings").addEventListener("change", ({ target }) => {
  if (facts === null) return;
  if (target.type === "file") takeRootsFile(target);
  else if (target.closest("#viewing") === null) {
    const settings = settingsNow();
    commit(settings);
    if (JSON.stringify(settings) !== JSON.stringify(live)) compute(settings);
  }
});
at("settings").addEventListener("submit", (event) => event.preventDefault());

async function takeRootsFile(input) {
  const file = input.files[0];
  if (!file) return;
  const place = input.id === "joinA" ? 0 : 1;
  rootsFiles[place] = file.name;
  rootsFilesTaken += 1;
  engine.takeRootsFile(place, new Uint8Array(await file.arrayBuffer()));
  if (rootsFiles.every((name) => name !== "")) compute(settingsNow());
}

// ---- results

function progress({ fraction }) {
  at("progress").value = fraction;
}

function regions(message) {
  result = { ...message, labels: new Int32Array(message.labels), rows: null };
  shownSettings = live;
  view.setLayer("fill", message.fill);
  view.setLayer("marks", message.marks);
  at("time").textContent = `${Math.round(performance.now() - startedAt)} ms`;
  at("seedCount").textContent = message.rootCount.toLocaleString("en");
  showCommand();
}

function table(message) {
  const rows = rowsOf(message.rows, facts.nbands);
  result.rows = new Map(rows.map((row) => [row.label, row]));
  view.names = rows;
  view.draw();
  showRows(rows);
  const { name, ncols, nrows, nbands } = facts;
  const found = `${rows.length.toLocaleString("en")} object${rows.length === 1 ? "" : "s"}`;
  finish(
    result.rootCount === 0
      ? "There are no seeds: change the parameters, or draw some."
      : `${name}, ${ncols} × ${nrows}, ${nbands === 3 ? "colour" : "grey"}: ${found}.`,
  );
}

function finish(sentence, isError = false) {
  setBusy(false);
  say(sentence, isError);
  for (const button of document.querySelectorAll("[data-save]")) button.disabled = !canSave(button);
  point(view.cursor);
}

function canSave({ dataset: { save } }) {
  if (save === "image") return facts !== null;
  const isSeeds = save === "roots" || save === "strokes";
  if (result === null) return isSeeds && seedsAlone;
  return result.rows !== null && (isSeeds || result.rootCount > 0);
}

function marks(message) {
  view.setLayer("marks", message.marks);
}

function failed({ task, sentence, hasSeeds }) {
  if (task === "load") {
    isLoading = false;
    engine.keepSource(lastImage);
  } else if (task === "run" || task === "roots") {
    result = null;
    seedsAlone = Boolean(hasSeeds);
    view.setLayer("fill", null);
    view.setLayer("marks", null);
    view.names = [];
    showNothing();
  }
  finish(sentence, true);
}

at("cancel").addEventListener("click", cancel);

function cancel() {
  if (at("main").getAttribute("aria-busy") !== "true") return;
  if (isLoading) engine.keepSource(lastImage);
  isLoading = false;
  engine.cancel();
  if (facts === null) return finish("Cancelled.");
  history.push(shownSettings ?? { ...history.state, method: "drawn", strokes: [] });
  say("Cancelled.");
}

// ---- the pixel under the cursor

function point(pixel, isByKey = false) {
  view.cursor = pixel;
  const tool = toolNow();
  view.brush = tool === "pan" ? null : { radius: Number(at("radius").value) };
  view.draw();
  at("under").setAttribute("aria-live", isByKey ? "polite" : "off");
  const isInside = facts !== null && pixel !== null && view.has(pixel);
  at("under").textContent = isInside ? sentenceOf(pixel, facts, result) : "Point at the image.";
}

// ---- seeds by hand

const toolNow = () => document.querySelector("input[name=tool]:checked").value;

function showObject() {
  at("swatch").style.background = colorOf(Math.max(1, Number(at("object").value)));
}

function nextObject() {
  const used = history.state?.strokes.reduce((most, stroke) => Math.max(most, stroke.label), 0) ?? 0;
  const found = history.state?.method === "drawn" ? 0 : (result?.largestLabel ?? 0);
  at("object").value = Math.max(used, found) + 1;
  at("toolDraw").checked = true;
  showObject();
}

const withStroke = () => ({
  ...settingsNow(),
  strokes: [...history.state.strokes, { ...view.stroke }],
});

const strokes = {
  tool: toolNow,
  point,
  begin({ x, y }) {
    if (facts === null) return;
    const object = Math.max(1, Math.trunc(Number(at("object").value)) || 1);
    const label = toolNow() === "erase" ? 0 : object;
    view.stroke = { label, radius: Number(at("radius").value), points: [x, y] };
    compute(withStroke());
  },
  extend({ x, y }) {
    if (!view.stroke) return;
    const { points } = view.stroke;
    if (points.at(-2) === x && points.at(-1) === y) return;
    points.push(x, y);
    compute(withStroke());
  },
  end() {
    if (!view.stroke) return;
    const settings = withStroke();
    view.stroke = null;
    commit(settings);
    compute(settings);
  },
  drop() {
    view.stroke = null;
    compute(history.state);
  },
};

at("nextObject").addEventListener("click", nextObject);
at("object").addEventListener("input", showObject);
at("clearStrokes").addEventListener("click", () => {
  commit({ ...settingsNow(), strokes: [] });
  compute(history.state);
});
at("tools").addEventListener("change", () => point(view.cursor));
at("toolDraw").addEventListener("change", () => {
  if (history.state?.strokes.length === 0) nextObject(); // no object of the method's by mistake
});

// ---- the view

for (const [id, key] of [["showImage", "image"], ["showFill", "fill"], ["showNumbers", "numbers"]])
  at(id).addEventListener("change", () => {
    view.shown[key] = at(id).checked;
    view.draw();
  });
for (const id of ["showOutlines", "showSeeds"])
  at(id).addEventListener("change", () => facts && engine.repaint(marksShown()));
at("opacity").addEventListener("input", () => {
  view.shown.opacity = at("opacity").value / 100;
  view.draw();
});
view.onZoom = (scale) => {
  at("zoom").textContent = `${Math.round(scale * 100)} %`;
};
at("zoomIn").addEventListener("click", () => view.zoomBy(1));
at("zoomOut").addEventListener("click", () => view.zoomBy(-1));
at("fit").addEventListener("click", () => view.fit());

// ---- taking home

function showCommand() {
  if (facts === null || live === null) return;
  const settings = { ...live, rootsFiles: rootsFiles.map((name) => name || "ROOTS") };
  const text = commandFor(settings, facts, result ?? { ground: 0, largestLabel: 0 });
  showLines(text);
  const isJoined = live.method !== "drawn" && live.strokes.length > 0;
  document.querySelector("[data-save=strokes]").hidden = !isJoined;
}

// ---- the start

at("undo").addEventListener("click", () => travel(-1));
at("redo").addEventListener("click", () => travel(1));
at("help").addEventListener("click", () => at("keys").showModal());
prepareControls();
showObject();
listenOn(at("canvas"), view, strokes);
listenForFiles(load, (sentence) => say(sentence, true));
listenForSaves({ engine, say, facts: () => facts, labels: () => result.labels });
listenForKeys({ cancel, nextObject, travel, view });
navigator.serviceWorker?.register("sw.js").catch(() => {}); // without one the page works online
