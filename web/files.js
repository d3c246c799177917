// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Images from files. PNM goes to the libraries as it is, all else through the browser's decoders.

/** Not even the shape of more pixels is decoded. The libraries have a limit of their own. */
const mostPixels = 60e6;

const textOf = (bytes) => String.fromCharCode(...bytes);
const startsWith = (bytes, start) => textOf(bytes.subarray(0, start.length)) === start;
const bigEndian = (bytes, at) => new DataView(bytes.buffer, bytes.byteOffset).getUint32(at);

/** A sentence that says what to do about bytes that the browser could not decode. */
function complaintAbout(bytes, name) {
  if (bytes.length === 0) return `${name} is empty.`;
  if (/^P[1347][\s#]/.test(textOf(bytes.subarray(0, 3))))
    return `${name}: of PNM files, P2, P5 and P6 are read; convert it to one of these.`;
  if (["II*\0", "MM\0*"].some((start) => startsWith(bytes, start)))
    return `${name} is TIFF, which browsers do not read; the programs on the command line do.`;
  return `${name} is no image that this browser can read, or it is damaged.`;
}

/** The size in the header of a PNG, and whether the programs read the same pixels from it. */
function pngHeader(bytes) {
  if (!startsWith(bytes, "\x89PNG") || bytes.length < 33) return null;
  return {
    pixels: bigEndian(bytes, 16) * bigEndian(bytes, 20),
    isPlainGrey: bytes[24] === 8 && bytes[25] === 0,
    isPlainColor: bytes[24] === 8 && (bytes[25] === 2 || bytes[25] === 3),
  };
}

function requireSize(pixels, name) {
  if (pixels > mostPixels)
    throw new Error(
      `${name} has ${Math.round(pixels / 1e6)} million pixels, too many for a page in the browser. ` +
        "The programs on the command line take it.",
    );
}

/** Pixels of a bitmap as red, green, blue, 255. What is transparent lies on white. */
function samplesOf(bitmap) {
  const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
  const context = canvas.getContext("2d", { willReadFrequently: true });
  context.drawImage(bitmap, 0, 0);
  const read = () => context.getImageData(0, 0, bitmap.width, bitmap.height).data;
  let samples = read();
  let isOpaque = true;
  for (let at = 3; at < samples.length && isOpaque; at += 4) isOpaque = samples[at] === 255;
  if (!isOpaque) {
    context.globalCompositeOperation = "destination-over";
    context.fillStyle = "#FFFFFF";
    context.fillRect(0, 0, bitmap.width, bitmap.height);
    samples = read();
  }
  return { samples, isOpaque };
}

/**
 * What a file holds: `pnm`, its bytes, or `samples` with `ncols` and `nrows`. `isPlainGrey` and
 * `isPlainColor` say whether the programs read the same from the file itself.
 */
export async function contentOf(file, name) {
  const bytes = new Uint8Array(await file.arrayBuffer());
  if (/^P[256]/.test(textOf(bytes.subarray(0, 2)))) return { pnm: bytes };
  const png = pngHeader(bytes);
  if (png) requireSize(png.pixels, name);
  let bitmap;
  try {
    bitmap = await createImageBitmap(file, { colorSpaceConversion: "none" });
  } catch {
    throw new Error(complaintAbout(bytes, name));
  }
  const { width: ncols, height: nrows } = bitmap;
  requireSize(ncols * nrows, name);
  const { samples, isOpaque } = samplesOf(bitmap);
  bitmap.close();
  return {
    samples,
    ncols,
    nrows,
    isPlainGrey: isOpaque && Boolean(png?.isPlainGrey),
    isPlainColor: isOpaque && Boolean(png?.isPlainColor),
  };
}
