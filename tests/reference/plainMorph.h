// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Dilation and erosion in their literal form: one pass over the whole disc for each pixel.
#pragma once

#include "base/buffer.h"
#include "image/imNeighborhood.h"

#include <algorithm>

/// The best value under `isBetter` of the disc around each pixel, found from `start` on.
template <class IsBetter>
void plainMorph(const imImage *in, imImage *out, int s, int start, IsBetter isBetter) {
  int *list = nullptr;
  const int n = imNeighborhood(&list, s);
  const seedforest::detail::Array<int> disc(list);
  out->maxValue = -1000000;
  for (int b = 0; b < in->nbands; ++b)
    for (int p = 0; p < in->npixels; ++p) {
      int best = start;
      for (int k = 0; k < n; ++k) {
        const int x = p % in->ncols + disc[2 * k];
        const int y = p / in->ncols + disc[2 * k + 1];
        if (x < 0 || x >= in->ncols || y < 0 || y >= in->nrows)
          continue;
        if (isBetter(in->band[b][x + in->row[y]], best))
          best = in->band[b][x + in->row[y]];
      }
      out->band[b][p] = best;
      out->maxValue = std::max(out->maxValue, best);
    }
}

inline void plainDilate(const imImage *in, imImage *out, int s) {
  plainMorph(in, out, s, -1000000, [](int v, int best) { return v > best; });
}

inline void plainErode(const imImage *in, imImage *out, int s) {
  plainMorph(in, out, s, 1000000, [](int v, int best) { return v < best; });
}
