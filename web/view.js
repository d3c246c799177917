// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image and its layers on the canvas: zoom, place, cursor. One unit of `scale` is a device pixel
// for each image pixel, so that whole numbers are exact.

import { colorOf } from "./colors.js";

const steps = [1 / 32, 1 / 16, 1 / 8, 1 / 4, 1 / 2, 1, 2, 3, 4, 6, 8, 12, 16, 24, 32, 48, 64];

function layerOf(buffer, ncols, nrows) {
  const canvas = new OffscreenCanvas(ncols, nrows);
  const pixels = new ImageData(new Uint8ClampedArray(buffer), ncols, nrows);
  canvas.getContext("2d").putImageData(pixels, 0, 0);
  return canvas;
}

export class View {
  #canvas;
  #context;
  #layers = {};
  #isAsked = false;
  #scale = 1;
  #x = 0; // of the image's corner on the canvas, in device pixels
  #y = 0;
  #isFitted = true;
  ncols = 0;
  nrows = 0;
  shown = { image: true, fill: true, numbers: false, opacity: 0.4 };
  names = []; // { label, area, x, y } of regions
  cursor = null; // { x, y }
  brush = null; // { radius, label } at the cursor
  stroke = null; // being drawn
  onZoom = () => {};

  constructor(canvas) {
    this.#canvas = canvas;
    this.#context = canvas.getContext("2d");
    new ResizeObserver(() => this.#resize()).observe(canvas);
  }

  get scale() {
    return this.#scale;
  }

  setImage(buffer, ncols, nrows) {
    this.#layers = {};
    this.ncols = ncols;
    this.nrows = nrows;
    this.names = [];
    this.cursor = null;
    this.#layers.image = layerOf(buffer, ncols, nrows);
    this.fit();
  }

  /** Sets "fill" or "marks", or clears one by null. */
  setLayer(name, buffer) {
    this.#layers[name] = buffer && layerOf(buffer, this.ncols, this.nrows);
    this.draw();
  }

  #resize() {
    const ratio = devicePixelRatio;
    this.#canvas.width = Math.max(1, Math.round(this.#canvas.clientWidth * ratio));
    this.#canvas.height = Math.max(1, Math.round(this.#canvas.clientHeight * ratio));
    if (this.#isFitted) this.fit();
    else this.draw();
  }

  /** The largest scale that shows all of the image; a whole number where it is 3 or more. */
  fit() {
    if (this.ncols === 0) return;
    const { width, height } = this.#canvas;
    const largest = Math.min(width / this.ncols, height / this.nrows);
    this.#scale = largest >= 3 ? Math.min(Math.floor(largest), 32) : largest;
    this.#x = Math.round((width - this.ncols * this.#scale) / 2);
    this.#y = Math.round((height - this.nrows * this.#scale) / 2);
    this.#isFitted = true;
    this.#changed();
  }

  /** Zooms about a place on the canvas, by default its middle. */
  zoomTo(scale, px = this.#canvas.width / 2, py = this.#canvas.height / 2) {
    const wanted = Math.min(Math.max(scale, steps[0]), steps.at(-1));
    this.#x = Math.round(px - ((px - this.#x) * wanted) / this.#scale);
    this.#y = Math.round(py - ((py - this.#y) * wanted) / this.#scale);
    this.#scale = wanted;
    this.#isFitted = false;
    this.#keepInside();
    this.#changed();
  }

  zoomBy(direction, px, py) {
    const next =
      direction > 0
        ? steps.find((s) => s > this.#scale * 1.01)
        : steps.findLast((s) => s < this.#scale * 0.99);
    if (next) this.zoomTo(next, px, py);
  }

  moveBy(dx, dy) {
    this.#x += Math.round(dx);
    this.#y += Math.round(dy);
    this.#isFitted = false;
    this.#keepInside();
    this.draw();
  }

  /** Some of the image stays in sight. */
  #keepInside() {
    const { width, height } = this.#canvas;
    const inside = (at, size, room) => Math.min(Math.max(at, 40 - size), room - 40);
    this.#x = Math.round(inside(this.#x, this.ncols * this.#scale, width));
    this.#y = Math.round(inside(this.#y, this.nrows * this.#scale, height));
  }

  #changed() {
    this.onZoom(this.#scale);
    this.draw();
  }

  /** A place of the window in device pixels of the canvas. */
  placeOf({ clientX, clientY }) {
    const box = this.#canvas.getBoundingClientRect();
    const ratio = this.#canvas.width / box.width;
    return { px: (clientX - box.left) * ratio, py: (clientY - box.top) * ratio };
  }

  /** The pixel at a place, which may be outside the image. */
  pixelAt({ px, py }) {
    return {
      x: Math.floor((px - this.#x) / this.#scale),
      y: Math.floor((py - this.#y) / this.#scale),
    };
  }

  has({ x, y }) {
    return x >= 0 && y >= 0 && x < this.ncols && y < this.nrows;
  }

  /** Moves the image so far that a pixel is in sight. */
  reveal({ x, y }) {
    const margin = 24;
    const shift = (at, room) =>
      at < margin ? margin - at : at > room - margin ? room - margin - at : 0;
    const dx = shift(this.#x + (x + 0.5) * this.#scale, this.#canvas.width);
    const dy = shift(this.#y + (y + 0.5) * this.#scale, this.#canvas.height);
    if (dx !== 0 || dy !== 0) this.moveBy(dx, dy);
  }

  draw() {
    if (this.#isAsked) return;
    this.#isAsked = true;
    requestAnimationFrame(() => {
      this.#isAsked = false;
      this.#paint();
    });
  }

  #paint() {
    const context = this.#context;
    const { image, fill, marks } = this.#layers;
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.clearRect(0, 0, this.#canvas.width, this.#canvas.height);
    if (!image) return;
    context.imageSmoothingEnabled = this.#scale < 3 && !Number.isInteger(this.#scale);
    context.setTransform(this.#scale, 0, 0, this.#scale, this.#x, this.#y);
    if (this.shown.image) context.drawImage(image, 0, 0);
    else this.#paintGround();
    if (fill && this.shown.fill) {
      context.globalAlpha = this.shown.image ? this.shown.opacity : 1;
      context.drawImage(fill, 0, 0);
      context.globalAlpha = 1;
    }
    if (marks) context.drawImage(marks, 0, 0);
    if (this.stroke) this.#paintStroke(this.stroke);
    this.#paintCursor();
    if (this.shown.numbers) this.#paintNumbers();
  }

  #paintGround() {
    this.#context.fillStyle = "#000000";
    this.#context.fillRect(0, 0, this.ncols, this.nrows);
  }

  /** A stroke at once, as a line; the pixels follow with the regions. */
  #paintStroke({ points, radius, label }) {
    const context = this.#context;
    context.strokeStyle = label > 0 ? colorOf(label) : "#FFFFFF";
    context.lineWidth = 2 * radius + 1;
    context.lineCap = context.lineJoin = "round";
    context.beginPath();
    context.moveTo(points[0] + 0.5, points[1] + 0.5);
    for (let i = 0; i < points.length; i += 2)
      context.lineTo(points[i] + 0.5, points[i + 1] + 0.5);
    context.stroke();
  }

  #paintCursor() {
    if (!this.cursor || !this.has(this.cursor)) return;
    const context = this.#context;
    const { x, y } = this.cursor;
    const radius = this.brush ? this.brush.radius + 0.5 : 0.5;
    for (const [color, width] of [["#000000", 3], ["#FFFFFF", 1]]) {
      context.strokeStyle = color;
      context.lineWidth = (width * devicePixelRatio) / this.#scale;
      context.beginPath();
      if (this.brush && this.brush.radius > 0) context.arc(x + 0.5, y + 0.5, radius, 0, 7);
      else context.rect(x, y, 1, 1);
      context.stroke();
    }
  }

  /** The labels of regions that have room for them. */
  #paintNumbers() {
    const context = this.#context;
    const size = 12 * devicePixelRatio;
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.font = `600 ${size}px system-ui, sans-serif`;
    context.textAlign = "center";
    context.textBaseline = "middle";
    context.lineWidth = 3 * devicePixelRatio;
    context.lineJoin = "round";
    for (const { label, area, x, y } of this.names) {
      if (Math.sqrt(area) * this.#scale < 1.4 * size) continue;
      const place = [this.#x + (x + 0.5) * this.#scale, this.#y + (y + 0.5) * this.#scale];
      context.strokeStyle = "#000000";
      context.strokeText(label, ...place);
      context.fillStyle = "#FFFFFF";
      context.fillText(label, ...place);
    }
  }
}
