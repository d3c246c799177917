// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The layers that lie over each other on the page, as pixels of four bytes.

import { black, palettePixels, seedPixels, white } from "./colors.js";

/** Least and largest value of all bands. */
export function rangeOf(bands) {
  let least = bands[0][0];
  let largest = least;
  for (const band of bands)
    for (let p = 0; p < band.length; ++p) {
      const value = band[p];
      if (value < least) least = value;
      if (value > largest) largest = value;
    }
  return { least, largest };
}

/** The image; values beyond 0 to 255 are brought to that range. */
export function paintImage(bands, { least, largest }) {
  const isPlain = least >= 0 && largest <= 255;
  const from = isPlain ? 0 : least;
  const factor = isPlain ? 1 : 255 / Math.max(1, largest - least);
  const picture = new Uint8ClampedArray(bands[0].length * 4);
  for (let b = 0; b < 3; ++b) {
    const band = bands[b % bands.length];
    for (let p = 0, at = b; p < band.length; ++p, at += 4) picture[at] = (band[p] - from) * factor;
  }
  for (let at = 3; at < picture.length; at += 4) picture[at] = 255;
  return picture;
}

/** Each region in the colour of its label. */
export function paintRegions(labels) {
  const picture = new Uint32Array(labels.length);
  const count = palettePixels.length;
  for (let p = 0; p < labels.length; ++p)
    if (labels[p] > 0) picture[p] = palettePixels[(labels[p] - 1) % count];
  return picture;
}

/** Outlines of regions, in black on bright images and white on others, and seeds but the ground's. */
export function paintMarks(labels, ncols, roots, { outlines, seeds, isBright, ground }) {
  const picture = new Uint32Array(labels.length);
  const line = isBright ? black : white;
  if (outlines) paintOutlines(picture, labels, ncols, line);
  if (seeds)
    for (let i = 0; i < roots.pixels.length; ++i) {
      const label = roots.labels[i];
      if (label > 0 && label !== ground)
        picture[roots.pixels[i]] = seedPixels[(label - 1) % seedPixels.length];
    }
  return picture;
}

/** One pixel wide: pixels whose right or lower neighbour has another label. */
function paintOutlines(picture, labels, ncols, line) {
  for (let start = 0; start < labels.length; start += ncols) {
    const end = start + ncols;
    const hasBelow = end < labels.length;
    for (let p = start; p < end; ++p) {
      const label = labels[p];
      if ((p + 1 < end && labels[p + 1] !== label) || (hasBelow && labels[p + ncols] !== label))
        picture[p] = line;
    }
  }
}

/** The mean of an image's first band, to know whether it is bright. */
export function meanOf(band) {
  let sum = 0;
  for (let p = 0; p < band.length; ++p) sum += band[p];
  return sum / band.length;
}
