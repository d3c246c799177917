// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Colours that visitors with any kind of colour vision can tell apart (M. Okabe and K. Ito, "Color
// Universal Design", 2008), without black. Labels take them in turn.

const palette = ["#E69F00", "#56B4E9", "#009E73", "#F0E442", "#0072B2", "#D55E00", "#CC79A7"];

export const colorOf = (label) => palette[(label - 1) % palette.length];

/** A colour as the four bytes of a pixel in memory. */
function pixelOf(color, opacity = 255) {
  const number = parseInt(color.slice(1), 16);
  const bytes = [number >> 16, (number >> 8) & 255, number & 255, opacity];
  return new Uint32Array(new Uint8Array(bytes).buffer)[0];
}

export const palettePixels = Uint32Array.from(palette, (color) => pixelOf(color));
export const seedPixels = Uint32Array.from(palette, (color) => pixelOf(color, 215));
export const white = pixelOf("#FFFFFF");
export const black = pixelOf("#000000");
