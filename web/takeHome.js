// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The buttons under "Take home".

import { pnmName } from "./command.js";
import { download, pngOf } from "./exports.js";

const at = (id) => document.getElementById(id);

const files = {
  roots: ["roots.txt", "text/plain"],
  strokes: ["strokes.txt", "text/plain"],
  table: ["table.csv", "text/csv"],
  image: [null, "image/x-portable-anymap"],
};

async function save(what, page) {
  try {
    if (what === "labels") {
      const { ncols, nrows } = page.facts();
      download(await pngOf(page.labels(), ncols, nrows), "labels.png");
    } else {
      const [name, type] = files[what];
      download(new Blob([await page.engine.save(what)], { type }), name ?? pnmName(page.facts()));
    }
  } catch (error) {
    page.say(error.message, true);
  }
}

/** `page` has the engine, say(sentence, isError), and functions for facts and labels. */
export function listenForSaves(page) {
  for (const button of document.querySelectorAll("[data-save]")) {
    button.disabled = true;
    button.addEventListener("click", () => save(button.dataset.save, page));
  }

  at("copy").addEventListener("click", async () => {
    try {
      await navigator.clipboard.writeText(at("command").textContent);
      page.say("The command line is copied.");
    } catch {
      getSelection().selectAllChildren(at("command"));
      page.say("Press Ctrl+C to copy the command line.");
    }
  });
}
