// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Files to take home.

const crcTable = Uint32Array.from({ length: 256 }, (_, n) => {
  for (let k = 0; k < 8; ++k) n = n & 1 ? 0xedb88320 ^ (n >>> 1) : n >>> 1;
  return n;
});

function crcOf(bytes) {
  let crc = 0xffffffff;
  for (const byte of bytes) crc = crcTable[(crc ^ byte) & 255] ^ (crc >>> 8);
  return ~crc >>> 0;
}

function chunk(type, data) {
  const bytes = new Uint8Array(data.length + 12);
  const view = new DataView(bytes.buffer);
  view.setUint32(0, data.length);
  bytes.set(new TextEncoder().encode(type), 4);
  bytes.set(data, 8);
  view.setUint32(data.length + 8, crcOf(bytes.subarray(4, data.length + 8)));
  return bytes;
}

async function deflated(bytes) {
  const stream = new Blob([bytes]).stream().pipeThrough(new CompressionStream("deflate"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** A PNG of rows of samples, each behind the number of its filter, 0 for none. */
export async function pngFile({ ncols, nrows, bits, isColor }, rows) {
  const header = new Uint8Array(13);
  new DataView(header.buffer).setUint32(0, ncols);
  new DataView(header.buffer).setUint32(4, nrows);
  header[8] = bits;
  header[9] = isColor ? 2 : 0;
  const signature = Uint8Array.of(0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a);
  const data = chunk("IDAT", await deflated(rows));
  const parts = [signature, chunk("IHDR", header), data, chunk("IEND", new Uint8Array())];
  return new Blob(parts, { type: "image/png" });
}

/** Rows of labels, of two bytes the most significant first. */
function rowsOf(labels, ncols, nrows, isWide) {
  const rows = new Uint8Array(nrows * (1 + ncols * (isWide ? 2 : 1)));
  for (let y = 0, at = 0, p = 0; y < nrows; ++y) {
    ++at;
    for (let x = 0; x < ncols; ++x, ++p) {
      if (isWide) rows[at++] = labels[p] >> 8;
      rows[at++] = labels[p] & 255;
    }
  }
  return rows;
}

/** A label image as a grey PNG of 8 bits or, where labels need them, 16. */
export function pngOf(labels, ncols, nrows) {
  let largest = 0;
  for (let p = 0; p < labels.length; ++p) if (labels[p] > largest) largest = labels[p];
  if (largest > 65535)
    throw new Error(
      `Labels up to ${largest} do not fit a PNG, which holds 65535; the command line writes them as TIFF.`,
    );
  const isWide = largest > 255;
  const shape = { ncols, nrows, bits: isWide ? 16 : 8, isColor: false };
  return pngFile(shape, rowsOf(labels, ncols, nrows, isWide));
}

/** Hands a file to the browser's downloads. */
export function download(blob, name) {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
