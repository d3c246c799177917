// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// All computing, off the page's own thread. Messages in: "load" an image, "roots" a file to join,
// "run" with settings, "repaint" the marks, "save" a file. Steps whose settings have not changed are
// not done again, and between steps a newer run takes over.

import { contentOf } from "./files.js";
import { meanOf, paintImage, paintMarks, paintRegions, rangeOf } from "./pictures.js";
import createModule from "./seedforest.js";
import { seedsOf } from "./strokes.js";

let lastTold = 0;
function tellProgress(fraction) {
  const now = performance.now();
  if (now - lastTold < 100) return;
  lastTold = now;
  postMessage({ kind: "progress", fraction });
}

const ready = createModule({ tellProgress });
let wasm;
const done = { seeds: "", strokes: null, regions: "" }; // the settings of each step's result
let isBright = false;
const noMemory = "The image is too large: the browser gives no more memory.";

/** Throws the libraries' sentence where a call returned 0. */
function must(isWell) {
  if (!isWell) throw new Error(textAt(wasm._errorText()));
}

function textAt(address) {
  const end = wasm.HEAPU8.indexOf(0, address >>> 0);
  return new TextDecoder().decode(wasm.HEAPU8.subarray(address >>> 0, end));
}

/** Calls use(address) with a copy of an array in the libraries' memory. */
function withCopy(array, use) {
  const bytes = new Uint8Array(array.buffer, array.byteOffset, array.byteLength);
  const address = wasm._malloc(Math.max(1, bytes.length)) >>> 0; // beyond 2 GB it comes as negative
  if (address === 0) throw new Error(noMemory);
  try {
    wasm.HEAPU8.set(bytes, address);
    return use(address);
  } finally {
    wasm._free(address);
  }
}

const integersAt = (address, count) =>
  wasm.HEAP32.subarray(address >>> 2, (address >>> 2) + count);
const pixelCount = () => wasm._columns() * wasm._rows();
const labels = () => integersAt(wasm._labelPixels(), pixelCount());

function roots() {
  const count = wasm._rootCount();
  return {
    pixels: integersAt(wasm._rootPixels(), count),
    labels: integersAt(wasm._rootLabels(), count),
  };
}

function largest(numbers) {
  let result = 0;
  for (const number of numbers) if (number > result) result = number;
  return result;
}

async function load({ file, name }) {
  const content = await contentOf(file, name);
  if (content.pnm)
    withCopy(content.pnm, (address) => must(wasm._loadFile(address, content.pnm.length)));
  else
    withCopy(content.samples, (address) =>
      must(wasm._loadPixels(address, content.ncols, content.nrows)),
    );
  Object.assign(done, { seeds: "", strokes: null, regions: "" });
  const nbands = wasm._bands();
  const bands = Array.from({ length: nbands }, (_, b) => integersAt(wasm._band(b), pixelCount()));
  const range = rangeOf(bands);
  const picture = paintImage(bands, range);
  isBright = meanOf(bands[0]) - range.least > (Math.max(range.largest, 255) - range.least) / 2;
  const isFile = content.pnm || (nbands === 1 ? content.isPlainGrey : content.isPlainColor);
  const facts = {
    name,
    ncols: wasm._columns(),
    nrows: wasm._rows(),
    nbands,
    ...range,
    otsu: wasm._otsu(),
    isFile: Boolean(isFile), // the programs read the same from the visitor's file
    isForTool: Boolean(content.pnm) && wasm._isForTool() === 1,
  };
  postMessage({ kind: "loaded", facts, picture: picture.buffer }, [picture.buffer]);
}

function takeRoots({ place, bytes }) {
  withCopy(bytes, (address) => must(wasm._takeRootsFile(place, address, bytes.length)));
  done.seeds = "";
}

function findSeeds(s) {
  must(
    wasm._findRoots(s.method, s.a, s.b, s.smooth, s.limit === null, s.limit ?? 0, s.hasGround),
  );
}

function addStrokes(strokes) {
  const pairs = seedsOf(strokes, wasm._columns(), wasm._rows());
  withCopy(pairs, (address) => must(wasm._addStrokes(address, pairs.length / 2)));
}

function growRegions(r) {
  must(
    wasm._growRegions(
      r.relief,
      r.connectivity === 4,
      r.cost,
      r.only,
      r.above,
      r.minArea,
      r.similar ?? -1,
      r.lines,
    ),
  );
}

/** Lets messages in that have come in the meantime. */
function breathe() {
  return new Promise((resolve) => {
    const { port1, port2 } = new MessageChannel();
    port1.onmessage = () => resolve(port1.close());
    port2.postMessage(null);
  });
}

/** Brings seeds and regions up to the settings; returns whether all was done. */
async function compute({ seeds, strokes, regions }) {
  const seedsKey = JSON.stringify(seeds);
  const regionsKey = JSON.stringify(regions);
  if (done.seeds !== seedsKey) {
    Object.assign(done, { seeds: "", strokes: null, regions: "" });
    findSeeds(seeds);
    done.seeds = seedsKey;
    await breathe();
    if (isOutdated()) return false;
  }
  if (done.strokes !== JSON.stringify(strokes)) {
    Object.assign(done, { strokes: null, regions: "" });
    addStrokes(strokes);
    done.strokes = JSON.stringify(strokes);
  }
  if (done.regions !== regionsKey) {
    done.regions = "";
    growRegions(regions);
    done.regions = regionsKey;
    await breathe();
  }
  return !isOutdated();
}

const paint = (grown, marks) =>
  paintMarks(grown, wasm._columns(), roots(), { ...marks, isBright, ground: wasm._groundLabel() });

async function run({ id, settings, marks }) {
  const isDone = await compute(settings);
  if (!isDone) return;
  const found = roots();
  const grown = labels().slice();
  const fill = paintRegions(grown);
  const painted = paint(grown, marks);
  const message = {
    kind: "regions",
    id,
    labels: grown.buffer,
    fill: fill.buffer,
    marks: painted.buffer,
    rootCount: found.pixels.length,
    largestLabel: largest(found.labels),
    ground: wasm._groundLabel(),
  };
  postMessage(message, [grown.buffer, fill.buffer, painted.buffer]);
  await breathe();
  if (isOutdated()) return;
  must(wasm._measureRegions());
  const start = wasm._regionRows() >>> 3;
  const rows = wasm.HEAPF64.slice(start, start + wasm._regionRowsSize());
  postMessage({ kind: "table", id, rows: rows.buffer }, [rows.buffer]);
}

function repaint({ marks }) {
  if (done.regions === "") return;
  const painted = paint(labels(), marks);
  postMessage({ kind: "marks", marks: painted.buffer }, [painted.buffer]);
}

function save({ id, what }) {
  const writers = {
    roots: () => wasm._writeRootsText(0),
    method: () => wasm._writeRootsText(1),
    strokes: () => wasm._writeRootsText(2),
    table: () => wasm._writeTable(),
    image: () => wasm._writeImageFile(),
  };
  must(writers[what]());
  const start = wasm._textBytes() >>> 0;
  const bytes = wasm.HEAPU8.slice(start, start + wasm._textSize());
  postMessage({ kind: "saved", id, bytes }, [bytes.buffer]);
}

const actions = { load, roots: takeRoots, run, repaint, save };
let tasks = [];
let isWorking = false;

const isOutdated = () => tasks.some((task) => task.kind === "run" || task.kind === "load");

onmessage = async ({ data }) => {
  if (data.kind === "run") tasks = tasks.filter((task) => task.kind !== "run");
  tasks.push(data);
  if (isWorking) return;
  isWorking = true;
  wasm ??= await ready;
  while (tasks.length > 0) {
    const task = tasks.shift();
    try {
      await actions[task.kind](task);
    } catch (error) {
      const sentence = error instanceof RangeError ? noMemory : error.message;
      const hasSeeds = done.strokes !== null; // and only the regions failed
      postMessage({ kind: "failed", task: task.kind, id: task.id, sentence, hasSeeds });
    }
  }
  isWorking = false;
};
