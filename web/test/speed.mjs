// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Measures, and tests nothing: steps of the libraries as a program and in the browser, and how long
// the page takes to answer a slider, for a square image of that many pixels a side.

import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { launch, run, serve, Visitor } from "./support.mjs";
import { tmpdir } from "node:os";

const side = process.argv[2];
const runs = side > 2000 ? 3 : 15;
const folder = mkdtempSync(join(tmpdir(), "seedforest-speed-"));
run("examples/make_micrograph", [side, side, "image.pgm"], folder);
const file = join(folder, "image.pgm");

/** The median and, since machines are rarely quiet, the least. */
function tell(name, times) {
  times.sort((a, b) => a - b);
  console.log(name.padEnd(40), times[times.length >> 1].toFixed(1).padStart(8), times[0].toFixed(1).padStart(8));
}

const { server, address } = await serve();
const browser = await launch();
const visitor = await Visitor.open(browser, address);

/** The times of calls in a worker of their own. */
async function stepTimes(base64, count) {
  const { default: createModule } = await import(new URL("seedforest.js", location.href).href);
  const wasm = await createModule({ tellProgress() {} });
  const bytes = Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));
  const address = wasm._malloc(bytes.length);
  wasm.HEAPU8.set(bytes, address);
  const steps = {
    reading: () => wasm._loadFile(address, bytes.length),
    "h-maxima, seeds of them": (i) => wasm._findRoots(8, 20 + (i % 2), 0, 0, 1, 0, 0),
    "seeds of the background": (i) => wasm._findRoots(0, 20 + (i % 2), 0, 0, 1, 0, 1),
    "3 or 4 steps of smoothing, and these": (i) => wasm._findRoots(8, 20, 0, 3 + (i % 2), 1, 0, 0),
    again: (i) => wasm._findRoots(8, 20 + (i % 2), 0, 0, 1, 0, 0),
    watershed: () => wasm._growRegions(2, 0, 0, 0, 0, 0, -1, 0),
    measures: () => wasm._measureRegions(),
  };
  const times = {};
  for (const [name, step] of Object.entries(steps)) {
    times[name] = [];
    for (let i = 0; i < count; ++i) {
      const start = performance.now();
      if (step(i) !== 1) throw new Error(name);
      times[name].push(performance.now() - start);
    }
  }
  times["memory in MB"] = [wasm.HEAPU8.length / 1e6];
  return times;
}

const native = spawnSync(process.env.SEEDFOREST_NATIVE, [file, String(runs)], { encoding: "utf8" });
for (const line of native.stdout.trim().split("\n")) {
  const [name, numbers] = line.split(": ");
  tell(`native: ${name}`, numbers.split(" ").map(Number));
}

const worker = visitor.page.workers()[0];
const times = await worker.evaluate(stepTimes, readFileSync(file).toString("base64"), runs);
for (const [name, all] of Object.entries(times)) tell(name, all);

await visitor.choose(file);
const answers = await visitor.page.evaluate(async (count) => {
  const main = document.getElementById("main");
  const time = document.getElementById("time");
  const slider = document.getElementById("h");
  const all = { "slider to regions": [], "slider to table": [] };
  for (let i = 0; i < count; ++i) {
    time.textContent = "";
    slider.value = 20 + (i % 5);
    const start = performance.now();
    slider.dispatchEvent(new Event("input", { bubbles: true }));
    while (time.textContent === "") await new Promise((resolve) => setTimeout(resolve));
    all["slider to regions"].push(performance.now() - start);
    while (main.getAttribute("aria-busy") === "true") await new Promise((resolve) => setTimeout(resolve));
    all["slider to table"].push(performance.now() - start);
  }
  return all;
}, runs);
for (const [name, all] of Object.entries(answers)) tell(name, all);
await browser.close();
server.close();
