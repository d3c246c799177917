// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Connected components as one would write them down.
#pragma once

#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"
#include "support.h"

/// A flood from each unlabelled object pixel in raster order. Components may carry labels, and are
/// renumbered whole from their first pixel that does not; background keeps what it carries.
inline imImagePtr flooded(const imImagePtr &binary, const imImagePtr &before) {
  const seedforest::detail::NeighborWalk neighbors(binary.get(), imNeighborhood8);
  imImagePtr labels(imCopyImage(before.get()));
  std::vector<bool> reached(binary->npixels);
  int n = 0;
  for (int p = 0; p < binary->npixels; ++p) {
    if (binary->band[0][p] <= 0 || labels->band[0][p] != 0 || reached[p])
      continue;
    ++n;
    std::vector<int> zone = {p};
    for (std::size_t i = 0; i < zone.size(); ++i)
      neighbors.each(zone[i], [&](int q, int) {
        if (binary->band[0][q] > 0 && !reached[q])
          zone.push_back(q);
        reached[q] = true;
      });
    for (const int q : zone)
      labels->band[0][q] = n;
  }
  labels->maxValue = n;
  return labels;
}
