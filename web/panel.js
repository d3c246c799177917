// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The results in words and numbers.

import { drawAreas, median } from "./chart.js";

const at = (id) => document.getElementById(id);
const counted = (number) => number.toLocaleString("en");

/** The table of the regions, from rows of numbers side by side. */
export function rowsOf(buffer, nbands) {
  const numbers = new Float64Array(buffer);
  const rows = [];
  for (let i = 0; i < numbers.length; i += 4 + nbands) {
    const [label, area, x, y, ...means] = numbers.subarray(i, i + 4 + nbands);
    rows.push({ label, area, x, y, means });
  }
  return rows;
}

export function showRows(rows) {
  const areas = Float64Array.from(rows, (row) => row.area).sort();
  at("count").textContent = counted(rows.length);
  at("median").textContent = rows.length > 0 ? `${counted(median(areas))} px` : "–";
  drawAreas(at("chart"), areas);
}

export function showNothing() {
  for (const id of ["count", "seedCount", "median", "time"]) at(id).textContent = "–";
  drawAreas(at("chart"), []);
}

/** What is at a pixel. */
export function sentenceOf({ x, y }, facts, result) {
  const label = result?.labels[y * facts.ncols + x] ?? 0;
  const row = result?.rows?.get(label);
  const place = `x ${x}, y ${y}`;
  if (!row) return label > 0 ? `${place}: label ${label}` : `${place}: no object`;
  const means = row.means.map((mean) => mean.toFixed(1)).join(", ");
  return `${place}: label ${label}, area ${counted(row.area)} px, mean ${means}`;
}

/** The command line. */
export function showLines(text) {
  at("command").replaceChildren(...text.split("\n").map(lineOfWords));
}

/** A line of a command, to be broken between words only. */
function lineOfWords(text) {
  const line = document.createElement("span");
  for (const word of text.split(" ")) {
    const part = document.createElement("i");
    part.textContent = word;
    line.append(...(line.hasChildNodes() ? [" "] : []), part);
  }
  line.append("\n");
  return line;
}
