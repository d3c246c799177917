// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Writes P5 and P6 files of 8 bits as PNG: node samples.mjs FOLDER FILE...

import { readFileSync, writeFileSync } from "node:fs";
import { basename, join } from "node:path";
import { pngFile } from "./exports.js";

const [folder, ...files] = process.argv.slice(2);
for (const file of files) {
  const bytes = readFileSync(file);
  const [header, kind, ncols, nrows] = /^(P[56])\s(\d+) (\d+)\s255\n/.exec(bytes.toString("latin1"));
  const isColor = kind === "P6";
  const size = ncols * (isColor ? 3 : 1);
  const rows = new Uint8Array(nrows * (size + 1));
  for (let y = 0; y < nrows; ++y)
    rows.set(bytes.subarray(header.length + y * size, header.length + (y + 1) * size), y * (size + 1) + 1);
  const shape = { ncols: Number(ncols), nrows: Number(nrows), bits: 8, isColor };
  const png = await pngFile(shape, rows);
  const name = basename(file).replace(/\.[^.]*$/, ".png");
  writeFileSync(join(folder, name), Buffer.from(await png.arrayBuffer()));
}
