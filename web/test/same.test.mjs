// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the page gives is what the programs give: roots files byte for byte, label images pixel for
// pixel, tables, and the command line that the page shows.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { copyFileSync, existsSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { makeImages } from "./images.mjs";
import { launch, programs, readPgm, readPng, run, serve, temporaryFolder, Visitor } from "./support.mjs";

let browser, site, visitor;
before(async () => {
  site = await serve();
  browser = await launch();
  visitor = await Visitor.open(browser, site.address);
});
after(async () => {
  await browser?.close();
  site?.server.close();
});

const plain = { smooth: 0, ground: false };
const options = [
  { words: ["regMax", "2", "200"], set: { method: "regMax", low: 2, high: 200 } },
  { words: ["regMin", "0", "60"], set: { method: "regMin", low: 0, high: 60 } },
  { words: ["dt"], set: { method: "dt" } },
  { words: ["frame", "0"], set: { method: "frame", uniform: false } },
  { words: ["frame", "1", "7"], set: { method: "frame", uniform: true, label: 7 } },
  { words: ["labels"], set: { method: "labels" } },
  { words: ["cells", "2"], set: { method: "cells", steps: 2 } },
  { words: ["join", "a.txt", "b.txt"], set: { method: "join" } },
];

/** The programs' roots file and labels; null where they have none. */
function byPrograms(image, words, folder) {
  for (const name of ["roots.txt", "labels.pgm"]) rmSync(join(folder, name), { force: true });
  const found = run("seedforest", [image, "roots.txt", ...words], folder);
  if (found.status !== 0 || !existsSync(join(folder, "roots.txt"))) return { said: found.stderr.trim() };
  const grown = run("seedforest-segment", [image, "roots.txt", "labels.pgm"], folder);
  return {
    roots: readFileSync(join(folder, "roots.txt")),
    labels: grown.status === 0 ? readPgm(readFileSync(join(folder, "labels.pgm"))) : null,
  };
}

/** Sliders end where the values of the image do; here all images have the same ranges. */
const widenSliders = () =>
  visitor.page.evaluate(() => {
    for (const id of ["low", "high"]) Object.assign(document.getElementById(id), { min: -999, max: 999 });
  });

test("roots files and labels of the seven options, on ten images", async (t) => {
  const folder = temporaryFolder(t);
  let compared = 0;
  for (const { name, opened, read } of makeImages(folder)) {
    await visitor.choose(opened);
    await visitor.set(plain);
    rmSync(join(folder, "b.txt"), { force: true });
    run("seedforest", [read, "a.txt", "regMin", "0", "40"], folder);
    run("seedforest", [read, "b.txt", "frame", "1", "3"], folder);
    for (const { words, set } of options) {
      const what = `${name}: ${words.join(" ")}`;
      const expected = byPrograms(read, words, folder);
      await widenSliders();
      await visitor.set(set);
      if (set.method === "join" && existsSync(join(folder, "b.txt"))) {
        await visitor.choose(join(folder, "a.txt"), "joinA");
        await visitor.choose(join(folder, "b.txt"), "joinB");
      }
      if (!expected.roots) {
        assert.ok(await visitor.isError(), `${what}: ${expected.said}`);
        assert.equal(await visitor.canSave("roots"), false, what);
        continue;
      }
      assert.equal(await visitor.isError(), false, `${what}: ${await visitor.text("message")}`);
      assert.ok(expected.roots.equals(await visitor.save("roots")), `${what}: another roots file`);
      assert.equal(await visitor.canSave("labels"), expected.labels !== null, what);
      if (expected.labels) assert.deepEqual(readPng(await visitor.save("labels")), expected.labels, what);
      compared += expected.labels ? 1 : 0;
    }
  }
  assert.ok(compared > 50, `${compared} label images compared`);
  assert.deepEqual(visitor.errors, []);
});

const cases = [
  { image: "it's (1).pgm", set: { method: "markers", h: 20, smooth: 2, ground: true } },
  { image: "cells.pgm", set: { method: "markers", h: 9, smooth: 0, ground: false, relief: "negative", only: "auto", lines: true } },
  { image: "shapes.pgm", set: { method: "split", neck: 1, smooth: 0, ground: false, auto: false, limit: 60, only: "above", above: 40 } },
  { image: "scene.png", set: { method: "regMin", low: 0, high: 255, smooth: 3, ground: false, minArea: 60, merge: true, similar: 25 } },
  { image: "equal.png", set: { method: "cells", steps: 3, smooth: 0, cost: "sum" } },
  { image: "signed.pgm", set: { method: "regMax", low: -50, high: 500, smooth: 1, ground: false, relief: "image", cost: "local", connectivity: "4" } },
  { image: "markers.png", set: { method: "labels", smooth: 0, relief: "image" } },
  { image: "shapes.pgm", set: { method: "dt", smooth: 0 } },
  { image: "deep.pgm", set: { method: "markers", h: 500, smooth: 1, ground: true, auto: false, limit: 9000 } },
];

test("the command line does the same", async (t) => {
  const folder = temporaryFolder(t);
  makeImages(folder);
  // 16 bits a sample: a ramp with bumps.
  const deep = Buffer.alloc(40 * 30 * 2);
  for (let p = 0; p < 1200; ++p) deep.writeUInt16BE(300 * (p % 40) + ((p * p) % 977), 2 * p);
  writeFileSync(join(folder, "deep.pgm"), Buffer.concat([Buffer.from("P5\n40 30\n65535\n"), deep]));
  copyFileSync(join(folder, "cells.pgm"), join(folder, "it's (1).pgm"));
  await visitor.page.select("#sample", "scene.png");
  await visitor.idle();
  await assertSameCommand(folder, "a sample, which the visitor has not as a file");
  for (const { image, set } of cases) {
    await visitor.choose(join(folder, image));
    await visitor.set(set);
    await assertSameCommand(folder, image);
  }
});

/** Runs the command line that the page shows, with the files that it names, and compares. */
async function assertSameCommand(folder, what) {
  const command = await visitor.text("command");
  const name = `${what}\n${command}\n${await visitor.text("message")}`;
  assert.equal(await visitor.isError(), false, name);
  const saved = /^# with (.*) saved from the page/.exec(command)?.[1].split(" and ") ?? [];
  const kinds = { "roots.txt": "roots", "strokes.txt": "strokes" }; // else the image
  for (const file of saved) writeFileSync(join(folder, file), await visitor.save(kinds[file] ?? "image"));
  const env = { ...process.env, PATH: `${programs}:${process.env.PATH}` };
  const asPgm = command.replaceAll("labels.png", "labels.pgm");
  execFileSync("bash", ["-euc", asPgm], { cwd: folder, env, stdio: ["ignore", "ignore", "ignore"] });
  const read = (file) => readFileSync(join(folder, file));
  assert.ok(read("roots.txt").equals(await visitor.save("roots")), name);
  assert.deepEqual(readPng(await visitor.save("labels")), readPgm(read("labels.pgm")), name);
  assert.equal((await visitor.save("table")).toString(), read("table.csv").toString(), name);
}

test("strokes: alone, and joined with a method's seeds", async (t) => {
  const folder = temporaryFolder(t);
  makeImages(folder);
  await visitor.choose(join(folder, "cells.pgm"));
  await visitor.set({ method: "drawn" });
  assert.match(await visitor.text("message"), /no seeds/);
  await visitor.set({ toolDraw: true });
  const canvas = await visitor.page.$("#canvas");
  const box = await canvas.boundingBox();
  const drag = async (x0, y0, x1, y1) => {
    await visitor.page.mouse.move(box.x + box.width * x0, box.y + box.height * y0);
    await visitor.page.mouse.down();
    await visitor.page.mouse.move(box.x + box.width * x1, box.y + box.height * y1, { steps: 5 });
    await visitor.page.mouse.up();
    await visitor.idle();
  };
  await drag(0.4, 0.4, 0.45, 0.45);
  await visitor.page.click("#nextObject");
  await drag(0.6, 0.6, 0.65, 0.6);
  assert.equal(await visitor.text("count"), "2");
  await assertSameCommand(folder, "strokes alone");
  await visitor.set({ method: "markers", h: 20, smooth: 1, ground: true });
  await assertSameCommand(folder, "strokes and markers");
});
