// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The exact Euclidean distance transform by looking at every root from every pixel.
#pragma once

#include "ift/core/ifCost.h"
#include "support.h"

/// Four bands, of which ifExactDistance() writes the last three.
inline imImagePtr nearestOfAll(int ncols, int nrows, const std::vector<Root> &roots) {
  std::vector<int> last(static_cast<std::size_t>(ncols * nrows), -1); // place of a pixel's root
  for (std::size_t i = 0; i < roots.size(); ++i)
    last[roots[i].pixel] = static_cast<int>(i);
  imImagePtr expected = blank(ncols, nrows, 4);
  for (int p = 0; p < ncols * nrows; ++p) {
    Root nearest = {p, 0, ifInfiniteCost};
    for (std::size_t i = 0; i < roots.size(); ++i) {
      const int dx = p % ncols - roots[i].pixel % ncols;
      const int dy = p / ncols - roots[i].pixel / ncols;
      if (last[roots[i].pixel] == static_cast<int>(i) && dx * dx + dy * dy < nearest.value)
        nearest = {roots[i].pixel, roots[i].label, dx * dx + dy * dy};
    }
    expected->band[1][p] = nearest.label;
    expected->band[2][p] = nearest.value;
    expected->band[3][p] = nearest.pixel;
  }
  return expected;
}
