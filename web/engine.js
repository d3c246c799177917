// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The worker from the page's side. The newest settings win; cancelling ends the worker and starts
// another with the same image.

export class Engine {
  #worker;
  #listener;
  #source = null; // an image: its file, name and what else is known about it
  #rootsFiles = [null, null];
  #ids = 0;
  #saves = new Map();
  newestRun = 0;

  /** `listener` has a function for each kind of message. */
  constructor(listener) {
    this.#listener = listener;
    this.#start();
  }

  #start() {
    this.#worker = new Worker("worker.js", { type: "module" });
    this.#worker.onmessage = ({ data }) => this.#take(data);
    this.#worker.onerror = () =>
      this.#listener.failed({ task: "start", sentence: "The computing part of the page did not start: the browser is too old, or a file is missing." });
  }

  #take(message) {
    const save = message.task === "save" || message.kind === "saved" ? this.#saves.get(message.id) : null;
    if (save) {
      this.#saves.delete(message.id);
      if (message.kind === "saved") save.resolve(message.bytes);
      else save.reject(new Error(message.sentence));
      return;
    }
    const isOld = message.id !== undefined && message.id !== this.newestRun && message.task !== "load";
    if (!isOld) this.#listener[message.kind](message);
  }

  load(file, about) {
    this.#source = { ...about, file };
    this.#rootsFiles = [null, null];
    this.#worker.postMessage({ kind: "load", file, name: about.name });
  }

  takeRootsFile(place, bytes) {
    this.#rootsFiles[place] = bytes;
    this.#worker.postMessage({ kind: "roots", place, bytes });
  }

  run(settings, marks) {
    this.newestRun = ++this.#ids;
    this.#worker.postMessage({ kind: "run", id: this.newestRun, settings, marks });
  }

  repaint(marks) {
    this.#worker.postMessage({ kind: "repaint", marks });
  }

  /** The bytes of a file of the present result. */
  save(what) {
    const id = ++this.#ids;
    this.#worker.postMessage({ kind: "save", id, what });
    return new Promise((resolve, reject) => this.#saves.set(id, { resolve, reject }));
  }

  cancel() {
    this.#worker.terminate();
    for (const save of this.#saves.values()) save.reject(new Error("Cancelled."));
    this.#saves.clear();
    this.#start();
    if (!this.#source) return;
    const rootsFiles = this.#rootsFiles;
    this.load(this.#source.file, this.#source);
    rootsFiles.forEach((bytes, place) => bytes && this.takeRootsFile(place, bytes));
  }

  /** Forgets an image that could not be loaded: the worker still has the one before. */
  keepSource(source) {
    this.#source = source;
  }
  get source() {
    return this.#source;
  }
}
