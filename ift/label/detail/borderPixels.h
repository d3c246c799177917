// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Pixels on the inner border of labelled regions.
#pragma once

#include "image/detail/neighborWalk.h"

namespace seedforest::detail {

/// Calls mark(p) for each pixel of label > 0 that has a pixel of label 0 among its neighbours.
template <class Mark>
void forEachBorderPixel(const imImage *labels, imNeighborhoodFn adjacency, Mark mark) {
  const NeighborWalk neighbors(labels, adjacency);
  const int *label = labels->band[0];
  int p = 0;
  for (int y = 0; y < labels->nrows; ++y)
    for (int x = 0; x < labels->ncols; ++x, ++p)
      if (label[p] > 0 && neighbors.any(x, y, [label](int q, int) { return label[q] == 0; }))
        mark(p);
}

} // namespace seedforest::detail
