// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A browser with the page in it, and the programs beside it.

import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createServer } from "node:http";
import { tmpdir } from "node:os";
import { extname, join, normalize } from "node:path";
import { inflateSync } from "node:zlib";
import puppeteer from "puppeteer-core";

export const programs = process.env.SEEDFOREST_BUILD;
const pageFolder = process.env.SEEDFOREST_PAGE;
const chromium = process.env.CHROMIUM ?? "/usr/bin/chromium";

const types = {
  ".html": "text/html",
  ".css": "text/css",
  ".js": "text/javascript",
  ".svg": "image/svg+xml",
  ".png": "image/png",
  ".wasm": "application/wasm",
};

/** The page's folder on a port of its own. */
export async function serve() {
  const server = createServer((request, response) => {
    const path = normalize(new URL(request.url, "http://localhost").pathname);
    const file = join(pageFolder, path.endsWith("/") ? `${path}index.html` : path);
    try {
      const bytes = readFileSync(file);
      response.writeHead(200, { "content-type": types[extname(file)] ?? "application/octet-stream" });
      response.end(bytes);
    } catch {
      response.writeHead(404).end();
    }
  });
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  return { server, address: `http://127.0.0.1:${server.address().port}/` };
}

export const launch = () =>
  puppeteer.launch({
    executablePath: chromium,
    headless: true,
    pipe: true,
    args: ["--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"],
  });

/** The page as a visitor uses it. Files to take home are caught where the browser would save them. */
export class Visitor {
  errors = [];

  static async open(browser, address, size = { width: 1400, height: 900 }) {
    const visitor = new Visitor();
    const page = await browser.newPage();
    visitor.page = page;
    page.on("pageerror", (error) => visitor.errors.push(error.message));
    await page.setViewport(size);
    await page.evaluateOnNewDocument(() => {
      window.caught = [];
      URL.createObjectURL = (blob) => (window.caught.push(blob), "blob:caught");
      HTMLAnchorElement.prototype.click = () => {};
    });
    await page.goto(address);
    await visitor.idle();
    return visitor;
  }

  idle(timeout = 120_000) {
    const isIdle = () => document.getElementById("main").getAttribute("aria-busy") === "false";
    return this.page.waitForFunction(isIdle, { timeout, polling: 5 });
  }

  text(id) {
    return this.page.$eval(`#${id}`, (element) => element.textContent);
  }

  isError() {
    return this.page.$eval("#message", (element) => element.classList.contains("error"));
  }

  /** Chooses a file from the disk; for an image, waits for its regions. */
  async choose(path, id = "file") {
    await (await this.page.$(`#${id}`)).uploadFile(path);
    await this.idle();
  }

  /** Sets controls by name or id, as a visitor leaves them. */
  async set(values) {
    await this.page.evaluate((wanted) => {
      for (const [id, value] of Object.entries(wanted)) {
        const control = document.getElementById(id);
        if (control.type === "checkbox" || control.type === "radio") control.checked = value;
        else control.value = value;
        control.dispatchEvent(new Event("input", { bubbles: true }));
        control.dispatchEvent(new Event("change", { bubbles: true }));
      }
    }, values);
    await this.idle();
  }

  canSave(what) {
    return this.page.$eval(`[data-save=${what}]`, (button) => !button.disabled);
  }

  /** The bytes of a file to take home. */
  async save(what) {
    const before = await this.page.evaluate(() => window.caught.length);
    await this.page.$eval(`[data-save=${what}]`, (button) => button.click());
    await this.page.waitForFunction((n) => window.caught.length > n, { polling: 5 }, before);
    const text = await this.page.evaluate(async () => {
      const bytes = new Uint8Array(await window.caught.at(-1).arrayBuffer());
      let latin = "";
      for (let i = 0; i < bytes.length; i += 8192)
        latin += String.fromCharCode(...bytes.subarray(i, i + 8192));
      return btoa(latin);
    });
    return Buffer.from(text, "base64");
  }
}

/** A folder for the life of a test. */
export function temporaryFolder(test) {
  const folder = mkdtempSync(join(tmpdir(), "seedforest-page-"));
  test.after(() => rmSync(folder, { recursive: true }));
  return folder;
}

export function run(program, args, cwd) {
  return spawnSync(join(programs, program), args, { cwd, encoding: "latin1" });
}

/** Width, height and samples of a grey PNG whose rows have no filter, as the page writes it. */
export function readPng(bytes) {
  const ncols = bytes.readUInt32BE(16);
  const nrows = bytes.readUInt32BE(20);
  const size = bytes[24] / 8;
  const parts = [];
  for (let at = 8; at < bytes.length; at += 12 + bytes.readUInt32BE(at))
    if (bytes.toString("latin1", at + 4, at + 8) === "IDAT")
      parts.push(bytes.subarray(at + 8, at + 8 + bytes.readUInt32BE(at)));
  const rows = inflateSync(Buffer.concat(parts));
  const samples = [];
  for (let y = 0, at = 0; y < nrows; ++y) {
    ++at;
    for (let x = 0; x < ncols; ++x, at += size) samples.push(rows.readUIntBE(at, size));
  }
  return { ncols, nrows, samples };
}

/** The same of a P5. */
export function readPgm(bytes) {
  const header = /^P5\s(\d+) (\d+)\s(\d+)\s/.exec(bytes.toString("latin1"));
  const [ncols, nrows, largest] = header.slice(1).map(Number);
  const size = largest > 255 ? 2 : 1;
  const samples = [];
  for (let i = 0, at = header[0].length; i < ncols * nrows; ++i, at += size)
    samples.push(bytes.readUIntBE(at, size));
  return { ncols, nrows, samples };
}
