// The levels of an area opening as one would write them down: a flood of each regional maximum by
// itself, on the public queue.
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifQueue.h"
#include "ift/core/ifRoots.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <vector>

struct LiteralLevels { // by label
  std::vector<int> level;
  std::vector<int> area; // taken, at most the threshold, which is at least 1
};

inline LiteralLevels literalAreaLevels(const imImage *f, const ifRoots *roots, int threshold) {
  const int *value = f->band[0];
  const int maximum = std::max(f->maxValue, *std::max_element(value, value + f->npixels));
  ifQueue queue;
  ifQueueNodes nodes;
  initQueue(&queue, maximum + 1, &nodes, f->npixels);
  const auto bucket = [&](int c) { return int((std::int64_t{maximum} - c) % (maximum + 1)); };
  const seedforest::detail::NeighborWalk neighbors(f, imNeighborhood8);
  std::vector<int> cost(f->npixels);
  std::vector<int> label(f->npixels);
  LiteralLevels result = {std::vector<int>(roots->n + 1), std::vector<int>(roots->n + 1)};
  for (int i = 0; i < roots->n; ++i) {
    const int l = roots->label[i];
    if (result.area[l] > 0)
      continue; // done
    cost[roots->pixel[i]] = roots->value[i];
    label[roots->pixel[i]] = l;
    insertQueue(&queue, &nodes, bucket(roots->value[i]), roots->pixel[i]);
    while (isEmpty(&queue) == 0) {
      const int p = removeQueue(&queue, &nodes, queue.current);
      if (result.area[l] >= threshold)
        continue;
      ++result.area[l];
      result.level[l] = cost[p];
      neighbors.each(p, [&](int q, int) {
        if (label[q] != l) {
          cost[q] = ifInfiniteCostInverted;
          nodes.bucket[q] = -1;
        }
        const int c = ifPathCostMin(cost[p], value[q]);
        if (nodes.bucket[q] == -2 || c <= cost[q])
          return;
        cost[q] = c;
        label[q] = l;
        insertQueue(&queue, &nodes, bucket(c), q); // moves it when it waits
      });
    }
  }
  releaseQueue(&queue, &nodes);
  return result;
}
