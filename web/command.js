// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The command line that does what the page shows.

import { inForce, parametersOf } from "./settings.js";

/** A word as a shell takes it. */
const quoted = (word) => (/^[\w.+/-]+$/.test(word) && word[0] !== "-" ? word : quotedWhole(word));
const quotedWhole = (word) =>
  `'${(word[0] === "-" ? "./" + word : word).replaceAll("'", "'\\''")}'`;

/** The name under which the page saves an image as PNM. */
export const pnmName = (facts) =>
  facts.name.replace(/\.[^.]*$/, "") + (facts.nbands === 3 ? ".ppm" : ".pgm");

function seedOptions(s) {
  const { smooth, hasGround, limit } = inForce(s);
  const options = [];
  if (smooth > 0) options.push("--smooth", smooth);
  if (hasGround) options.push("--ground");
  if (limit !== null) options.push("--threshold", limit);
  return options;
}

/** The line that writes the seeds of the method to a file; by the tool itself where it can. */
function seedLine(image, out, s, facts) {
  const options = seedOptions(s);
  const isOwn = ["markers", "split"].includes(s.method);
  const isTools = facts.isForTool && options.length === 0 && !isOwn;
  const program = isTools ? "seedforest" : "seedforest-seeds";
  const files = s.method === "join" ? s.rootsFiles.map(quoted) : [];
  const parameters = parametersOf(s);
  if (!isTools && parameters.some((number) => number < 0)) options.push("--"); // they are no options
  return [program, ...options, image, out, s.method, ...parameters, ...files].join(" ");
}

function segmentOptions(s, ground) {
  const options = [];
  if (s.relief !== "gradient") options.push("--on", s.relief);
  if (s.connectivity === "4") options.push("--connectivity", 4);
  if (s.cost !== "max") options.push("--cost", s.cost);
  if (s.only === "auto") options.push("--threshold", "auto");
  if (s.only === "above") options.push("--threshold", s.above);
  if (s.minArea > 1) options.push("--min-area", s.minArea);
  if (s.merge) options.push("--similar", s.similar);
  if (ground > 0) options.push("--background", ground);
  if (s.lines) options.push("--lines");
  return options;
}

/** Lines for a shell; `result` has the label of the ground and the largest label. */
export function commandFor(s, facts, result) {
  const lines = [];
  const saved = facts.isFile ? [] : [pnmName(facts)];
  const image = quoted(facts.isFile ? facts.name : pnmName(facts));
  const readable = facts.isFile ? facts : { ...facts, isForTool: true };
  const hasStrokes = s.strokes.length > 0;
  if (s.method === "drawn") {
    saved.push("roots.txt");
  } else if (hasStrokes) {
    saved.push("strokes.txt");
    lines.push(seedLine(image, "method.txt", s, readable));
    const join = { ...s, method: "join", rootsFiles: ["method.txt", "strokes.txt"] };
    lines.push(seedLine(image, "roots.txt", join, readable));
  } else {
    lines.push(seedLine(image, "roots.txt", s, readable));
  }
  const labels = result.largestLabel > 65535 ? "labels.tif" : "labels.png";
  const options = segmentOptions(s, result.ground);
  lines.push(["seedforest-segment", ...options, image, "roots.txt", labels].join(" "));
  lines.push(`seedforest-measure ${labels} ${image} > table.csv`);
  if (saved.length > 0) lines.unshift(`# with ${saved.join(" and ")} saved from the page`);
  return lines.join("\n");
}
