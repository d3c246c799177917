// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The page in a visitor's hands: files that are none, undoing, keys, cancelling, no network, large
// images, small screens, and what a checker of accessibility says.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { pngFile } from "../exports.js";
import { launch, readPng, run, serve, temporaryFolder, Visitor } from "./support.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

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

/** A PNG whose rows are zeros, or whose header says another size. */
async function zeroPng(ncols, nrows, rows = nrows) {
  const blob = await pngFile({ ncols, nrows, bits: 8, isColor: false }, new Uint8Array((ncols + 1) * rows));
  return Buffer.from(await blob.arrayBuffer());
}

test("damaged and hostile files get a sentence, and the page goes on", async (t) => {
  const folder = temporaryFolder(t);
  run("examples/make_micrograph", ["64", "48", "good.pgm"], folder);
  const good = readFileSync(join(folder, "good.pgm"));
  const png = await zeroPng(40, 30);
  const files = {
    "empty.png": [Buffer.alloc(0), /empty/],
    "text.png": [Buffer.from("This is a letter, and no picture.\n"), /no image/],
    "short.pgm": [good.subarray(0, 200), /expecting|hold|read/],
    "header.pgm": [Buffer.from("P5\n64"), /width, height/],
    "short.png": [png.subarray(0, 45), /no image/],
    "zero.pgm": [Buffer.from("P5\n0 5\n255\n"), /impossible size/],
    "zero.png": [await zeroPng(0, 5), /no image/],
    "plain.ppm": [Buffer.from("P3\n1 1\n255\n1 2 3\n"), /P2, P5 and P6/],
    "scan.tif": [Buffer.from("II*\0\x08\0\0\0"), /TIFF/],
    "huge.png": [await zeroPng(10000, 10000, 1000), /100 million pixels/],
    "huge.pgm": [Buffer.concat([Buffer.from("P5\n10000 10000\n255\n"), Buffer.alloc(1e8)]), /100 million pixels/],
    "giant.pgm": [Buffer.from("P5\n2000000000 1\n255\n"), /memory|hold|expecting|alloc/],
    "negative.pgm": [Buffer.from("P5\n-3 -4\n255\n"), /impossible size/],
  };
  for (const [name, [bytes, sentence]] of Object.entries(files)) {
    writeFileSync(join(folder, name), bytes);
    await visitor.choose(join(folder, name));
    assert.ok(await visitor.isError(), name);
    assert.match(await visitor.text("message"), sentence, name);
    await visitor.choose(join(folder, "good.pgm"));
    assert.equal(await visitor.isError(), false, `after ${name}: ${await visitor.text("message")}`);
    assert.ok(Number(await visitor.text("count")) > 0);
  }
  await visitor.set({ method: "join" });
  writeFileSync(join(folder, "letter.txt"), "no seeds here\n");
  await visitor.choose(join(folder, "letter.txt"), "joinA");
  await visitor.page.waitForFunction(() => document.getElementById("message").textContent.includes("invalid"));
  await visitor.choose(join(folder, "good.pgm"));
  assert.equal(await visitor.isError(), false);
  assert.deepEqual(visitor.errors, []);
});

test("undo and redo", async (t) => {
  const folder = temporaryFolder(t);
  run("examples/make_micrograph", ["120", "90", "cells.pgm"], folder);
  await visitor.choose(join(folder, "cells.pgm"));
  const before = await visitor.text("command");
  await visitor.set({ h: 3 });
  await visitor.set({ relief: "negative" });
  const behind = await visitor.text("command");
  assert.match(behind, /markers 3\n.*--on negative/);
  for (const [key, expected] of [["z", /markers 3\n.*segment --background/], ["z", before], ["y", /markers 3/], ["y", behind]]) {
    await visitor.page.keyboard.down("Control");
    await visitor.page.keyboard.press(key);
    await visitor.page.keyboard.up("Control");
    await visitor.idle();
    const command = await visitor.text("command");
    if (typeof expected === "string") assert.equal(command, expected);
    else assert.match(command, expected);
  }
  assert.equal(await visitor.page.$eval("#redo", (button) => button.disabled), true);
});

test("seeds are drawn, erased and read off by keys alone", async (t) => {
  const folder = temporaryFolder(t);
  writeFileSync(join(folder, "flat.pgm"), Buffer.concat([Buffer.from("P5\n40 20\n255\n"), Buffer.alloc(800, 9)]));
  await visitor.choose(join(folder, "flat.pgm"));
  await visitor.set({ method: "drawn", radius: 0 });
  await visitor.page.focus("#canvas");
  const press = async (...keys) => {
    for (const key of keys) await visitor.page.keyboard.press(key);
    await visitor.idle();
  };
  await press("d", "ArrowLeft", "Enter");
  assert.match(await visitor.text("under"), /^x 19, y 10: label 1, area 800 px, mean 9.0/);
  await press("n", "ArrowRight", "ArrowRight", "Enter");
  assert.equal(await visitor.text("count"), "2");
  assert.equal((await visitor.save("roots")).toString(), "2\n19 10 1\n21 10 2\n");
  // The pixel between both is as near to either, and goes to the seed that is served first.
  assert.equal(readPng(await visitor.save("labels")).samples[10 * 40 + 20], 1);
  await press("e", "Enter");
  assert.equal((await visitor.save("roots")).toString(), "1\n19 10 1\n");
  await press("d", "n");
  await visitor.page.keyboard.down("Space");
  await press("ArrowDown", "ArrowDown");
  await visitor.page.keyboard.up("Space");
  await visitor.idle();
  assert.equal((await visitor.save("roots")).toString(), "4\n19 10 1\n21 10 3\n21 11 3\n21 12 3\n");
});

test("the newest of many slider moves wins", async (t) => {
  const folder = temporaryFolder(t);
  run("examples/make_micrograph", ["300", "300", "cells.pgm"], folder);
  await visitor.choose(join(folder, "cells.pgm"));
  await visitor.page.evaluate(() => {
    const slider = document.getElementById("h");
    for (let h = 1; h <= 60; ++h) {
      slider.value = h;
      slider.dispatchEvent(new Event("input", { bubbles: true }));
    }
  });
  await visitor.idle();
  const labels = await visitor.save("labels");
  await visitor.set({ h: 60 });
  assert.deepEqual(await visitor.save("labels"), labels);
  run("seedforest-seeds", ["cells.pgm", "roots.txt", "markers", "60", "--smooth", "2", "--ground"], folder);
  assert.ok(readFileSync(join(folder, "roots.txt")).equals(await visitor.save("roots")));
});

test("4096 x 4096 pixels, and cancelling", async (t) => {
  const folder = temporaryFolder(t);
  run("examples/make_micrograph", ["4096", "4096", "large.pgm"], folder);
  await visitor.choose(join(folder, "large.pgm"));
  assert.equal(await visitor.isError(), false, await visitor.text("message"));
  assert.match(await visitor.text("message"), /4096 × 4096/);
  const seeds = await visitor.text("seedCount");
  const command = await visitor.text("command");
  await visitor.page.evaluate(() => {
    const slider = document.getElementById("smooth");
    slider.value = 20;
    slider.dispatchEvent(new Event("input", { bubbles: true }));
    slider.dispatchEvent(new Event("change", { bubbles: true }));
  });
  await visitor.page.waitForSelector("#cancel", { visible: true });
  await visitor.page.click("#cancel");
  await visitor.idle();
  assert.equal(await visitor.text("seedCount"), seeds);
  assert.equal(await visitor.text("command"), command);
});

async function assertAccessible(page, what) {
  await page.evaluate(axe);
  const { violations } = await page.evaluate(() => window.axe.run());
  const list = violations.map(({ id, impact, nodes }) => `${impact} ${id}: ${nodes.map((n) => n.html).join(" ")}`);
  assert.deepEqual(list, [], what);
}

test("a checker of accessibility finds nothing, on large and small screens, light and dark", async () => {
  for (const scheme of ["light", "dark"])
    for (const size of [{ width: 1400, height: 900 }, { width: 390, height: 844, hasTouch: true, isMobile: true }]) {
      const other = await Visitor.open(browser, site.address, size);
      await other.page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
      await other.set({ toolDraw: true, ground: true, auto: false, only: "above" });
      await other.page.$eval("details", (details) => (details.open = true));
      await assertAccessible(other.page, `${scheme}, ${size.width}`);
      const overflow = await other.page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
      assert.ok(overflow <= 0, `${overflow} pixels too wide at ${size.width}`);
      await other.page.click("#help");
      await assertAccessible(other.page, `${scheme}, ${size.width}, keys`);
      await other.page.close();
    }
});

test("works without a network once it was loaded", async () => {
  const other = await Visitor.open(browser, site.address);
  await other.page.evaluate(() => navigator.serviceWorker.ready);
  site.server.closeAllConnections();
  site.server.close();
  await other.page.reload();
  await other.idle();
  await other.page.select("#sample", "maze.png");
  await other.idle();
  assert.match(await other.text("message"), /^maze.png/);
  await other.page.close();
});
