// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The Euclidean propagation as one would write it down, on the public queue, with each pixel's
// offsets in arrays: what the library's forms have to equal.
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifQueue.h"
#include "image/detail/neighborWalk.h"
#include "support.h"

#include <cstdlib>
#include <numeric>

/// The squared distances, the predecessors and, in a band for each of `atRoots`, what the n roots
/// hand down.
inline imImagePtr literalEuclid(const imImage *image, imNeighborhoodFn adjacency, int nbuckets,
                                int n, const int *rootPixel,
                                const std::vector<const int *> &atRoots) {
  const seedforest::detail::NeighborWalk neighbors(image, adjacency);
  imImagePtr result = blank(image->ncols, image->nrows, 2 + static_cast<int>(atRoots.size()));
  int **band = result->band;
  std::fill_n(band[0], image->npixels, ifInfiniteCost);
  std::iota(band[1], band[1] + image->npixels, 0);
  std::vector<int> x(image->npixels), y(image->npixels);
  ifQueue queue;
  ifQueueNodes nodes;
  initQueue(&queue, nbuckets, &nodes, image->npixels);
  for (int i = 0; i < n; ++i) {
    const int p = rootPixel[i];
    band[0][p] = 0;
    for (int b = 2; b < result->nbands; ++b)
      band[b][p] = atRoots[b - 2][i];
    insertQueue(&queue, &nodes, 0, p);
  }
  while (isEmpty(&queue) == 0) {
    const int p = removeQueue(&queue, &nodes, queue.current);
    neighbors.each(p, [&](int q, int k) {
      const int nx = x[p] + std::abs(neighbors.dx(k));
      const int ny = y[p] + std::abs(neighbors.dy(k));
      const int cost = nx * nx + ny * ny;
      if (nodes.bucket[q] == -2 || cost >= band[0][q])
        return;
      x[q] = nx;
      y[q] = ny;
      band[0][q] = cost;
      band[1][q] = p;
      for (int b = 2; b < result->nbands; ++b)
        band[b][q] = band[b][p];
      insertQueue(&queue, &nodes, cost % nbuckets, q); // moves it when it waits
    });
  }
  releaseQueue(&queue, &nodes);
  return result;
}
