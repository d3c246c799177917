// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Seeds that are drawn by hand. A stroke has a label, 0 for the eraser, a radius in pixels, and the
// pixels that the pointer passed: x, y, x, y …

/** Calls visit(x, y) along the straight line between two pixels, both included. */
function alongLine(x0, y0, x1, y1, visit) {
  const steps = Math.max(Math.abs(x1 - x0), Math.abs(y1 - y0), 1);
  for (let i = 0; i <= steps; ++i)
    visit(Math.round(x0 + ((x1 - x0) * i) / steps), Math.round(y0 + ((y1 - y0) * i) / steps));
}

function stamp(seeds, stroke, ncols, nrows, cx, cy) {
  const r = stroke.radius;
  for (let y = Math.max(0, cy - r); y <= Math.min(nrows - 1, cy + r); ++y)
    for (let x = Math.max(0, cx - r); x <= Math.min(ncols - 1, cx + r); ++x) {
      if ((x - cx) ** 2 + (y - cy) ** 2 > r * r) continue;
      if (stroke.label > 0) seeds.set(y * ncols + x, stroke.label);
      else seeds.delete(y * ncols + x);
    }
}

/** The seeds that strokes leave, in raster order: pixel, label, pixel, label … Later ones win. */
export function seedsOf(strokes, ncols, nrows) {
  const seeds = new Map();
  for (const stroke of strokes) {
    const at = stroke.points;
    let last = at.slice(0, 2);
    for (let i = 0; i < at.length; i += 2) {
      alongLine(...last, at[i], at[i + 1], (x, y) => stamp(seeds, stroke, ncols, nrows, x, y));
      last = [at[i], at[i + 1]];
    }
  }
  const sorted = [...seeds].sort(([a], [b]) => a - b);
  return Int32Array.from(sorted.flat());
}
