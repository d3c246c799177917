// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The ways by which an image comes into the page: chosen, dropped, pasted, or a sample.

const at = (id) => document.getElementById(id);

/** The settings that show what is in a sample. */
const samples = {
  "cells.png": { h: 20, smooth: 4 },
  "scene.png": { method: "regMin", low: 32, high: 253, smooth: 6, minArea: 100, merge: true, similar: 25, ground: false },
  "shapes.png": { method: "split", smooth: 0, neck: 1 },
  "maze.png": { method: "dt", smooth: 0, relief: "image" },
};

/**
 * Calls load(file or promise, { name, isOnDisk, settings }) for each image, complain(sentence) where
 * there is none. What was pasted, or is a sample, is no file on the visitor's disk.
 */
export function listenForFiles(load, complain) {
  const take = (file, about) => {
    at("sample").value = "";
    const name = about.name.replace(/\p{Cc}/gu, "_"); // no lines of their own in commands
    load(file, { name, isOnDisk: about.isOnDisk && name === about.name });
  };

  at("open").addEventListener("click", () => at("file").click());
  at("file").addEventListener("change", () => {
    const file = at("file").files[0];
    if (file) take(file, { name: file.name, isOnDisk: true });
    at("file").value = ""; // so that the same file can be chosen again
  });

  const stage = document.body;
  let depth = 0; // of elements that the pointer has entered
  const show = (isShown) => (at("drop").hidden = !isShown);
  stage.addEventListener("dragenter", () => show(++depth > 0));
  stage.addEventListener("dragleave", () => show(--depth > 0));
  stage.addEventListener("dragover", (event) => event.preventDefault());
  stage.addEventListener("drop", (event) => {
    event.preventDefault();
    show((depth = 0) > 0);
    const file = event.dataTransfer.files[0];
    if (file) take(file, { name: file.name, isOnDisk: true });
    else complain("That was no file: drop an image from a folder.");
  });

  document.addEventListener("paste", (event) => {
    const file = [...event.clipboardData.files][0];
    if (file) take(file, { name: "pasted.png", isOnDisk: false });
  });

  const sampleOf = async (name) => {
    const answer = await fetch(`samples/${name}`);
    if (!answer.ok) throw new Error();
    return answer.blob();
  };
  const loadSample = (name) =>
    load(sampleOf(name), { name, isOnDisk: false, settings: samples[name] });
  at("sample").addEventListener("change", () => loadSample(at("sample").value));
  loadSample((at("sample").value = "cells.png"));
}
