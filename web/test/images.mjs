// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Ten images: what the page opens, and the PNM file that the programs on the command line read.

import { execFileSync } from "node:child_process";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { run } from "./support.mjs";

/** Pixels without a pattern, the same in every run. */
function noise(count, most) {
  let state = 1;
  return Array.from({ length: count }, () => {
    state = (Math.imul(state, 1103515245) + 12345) >>> 0;
    return (state >>> 16) % most;
  });
}

const pgm = (ncols, nrows, values) =>
  Buffer.concat([Buffer.from(`P5\n${ncols} ${nrows}\n255\n`), Buffer.from(values)]);

export function makeImages(folder) {
  const place = (name) => join(folder, name);
  run("examples/make_micrograph", ["160", "120", "cells.pgm"], folder);
  run("examples/make_scene", ["scene.ppm", "markers.pgm", "shapes.pgm"], folder);
  run("examples/make_text", ["page.pgm"], folder);
  run("examples/make_maze", ["9", "maze.pgm"], folder);
  writeFileSync(place("noise.pgm"), pgm(37, 23, noise(37 * 23, 6)));
  writeFileSync(place("dot.pgm"), pgm(1, 1, [7]));
  writeFileSync(place("row.pgm"), pgm(9, 1, [0, 3, 3, 1, 9, 9, 0, 2, 5]));
  const signed = noise(20 * 15, 900).map((value) => value - 300);
  writeFileSync(place("signed.pgm"), `P2\n20 15\n600\n${signed.join(" ")}\n`);
  // A colour file without a colour counts as grey, like the file that it was made of.
  const grey = readFileSync(place("cells.pgm"));
  const pixels = grey.subarray(grey.length - 160 * 120);
  writeFileSync(
    place("equal.ppm"),
    Buffer.concat([Buffer.from("P6\n160 120\n255\n"), Buffer.from([...pixels].flatMap((v) => [v, v, v]))]),
  );
  const toPng = join(import.meta.dirname, "../samples.mjs");
  execFileSync(process.execPath, [toPng, folder, "scene.ppm", "equal.ppm", "markers.pgm"], { cwd: folder });
  const same = ["cells.pgm", "shapes.pgm", "page.pgm", "maze.pgm", "noise.pgm", "dot.pgm", "signed.pgm"];
  return [
    ...same.map((name) => ({ name, opened: place(name), read: place(name) })),
    { name: "scene.png", opened: place("scene.png"), read: place("scene.ppm") },
    { name: "equal.png", opened: place("equal.png"), read: place("cells.pgm") },
    { name: "markers.png", opened: place("markers.png"), read: place("markers.pgm") },
    { name: "row.pgm", opened: place("row.pgm"), read: place("row.pgm") },
  ];
}

