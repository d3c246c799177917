// Component labelling as a flood from each unlabelled object pixel in raster order: the plain form
// of ifLabelImage().
#pragma once

#include "image/imNeighborhood.h"

#include <queue>
#include <vector>

inline void floodLabel(const imImage *binary, imImage *labels) {
  const seedforest::detail::NeighborWalk neighbors(binary, imNeighborhood8);
  const int *value = binary->band[0];
  int *label = labels->band[0];
  std::vector<bool> inserted(static_cast<std::size_t>(binary->npixels));
  std::queue<int> queue;
  int n = 0;
  const auto insert = [&](int p) {
    inserted[p] = true;
    label[p] = n;
    queue.push(p);
  };
  for (int p = 0; p < binary->npixels; ++p) {
    if (value[p] <= 0 || label[p] != 0)
      continue;
    ++n;
    insert(p);
    while (!queue.empty()) {
      const int q = queue.front();
      queue.pop();
      neighbors.each(q, [&](int r, int) {
        if (value[r] > 0 && !inserted[r])
          insert(r);
      });
    }
  }
  labels->maxValue = n;
}
