// The Euclidean propagation as one would write it down, on the public queue, with each pixel's
// offsets in arrays: what the library's forms have to equal.
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifQueue.h"
#include "image/detail/neighborWalk.h"
#include "support.h"

#include <cstdlib>

struct LiteralEuclid {
  Matrix cost, pred;
  Matrix root; // the index of the root that won each pixel, -1 where no path arrives
};

inline LiteralEuclid literalEuclid(const imImage *image, imNeighborhoodFn adjacency, int nbuckets,
                                   const int *rootPixel, int nroots) {
  const seedforest::detail::NeighborWalk neighbors(image, adjacency);
  const Matrix none(image->nrows, std::vector<int>(image->ncols, -1));
  LiteralEuclid result = {none, none, none};
  const auto at = [image](Matrix &band, int p) -> int & {
    return band[p / image->ncols][p % image->ncols];
  };
  for (int p = 0; p < image->npixels; ++p) {
    at(result.cost, p) = ifInfiniteCost;
    at(result.pred, p) = p;
  }
  ifQueue queue;
  ifQueueNodes nodes;
  initQueue(&queue, nbuckets, &nodes, image->npixels);
  std::vector<int> x(image->npixels), y(image->npixels);
  for (int i = 0; i < nroots; ++i) {
    at(result.cost, rootPixel[i]) = 0;
    at(result.root, rootPixel[i]) = i;
    insertQueue(&queue, &nodes, 0, rootPixel[i]);
  }
  while (isEmpty(&queue) == 0) {
    const int p = removeQueue(&queue, &nodes, queue.current);
    neighbors.each(p, [&](int q, int k) {
      const int nx = x[p] + std::abs(neighbors.dx(k));
      const int ny = y[p] + std::abs(neighbors.dy(k));
      const int cost = nx * nx + ny * ny;
      if (nodes.bucket[q] == -2 || cost >= at(result.cost, q))
        return;
      x[q] = nx;
      y[q] = ny;
      at(result.cost, q) = cost;
      at(result.pred, q) = p;
      at(result.root, q) = at(result.root, p);
      insertQueue(&queue, &nodes, cost % nbuckets, q); // moves it when it waits
    });
  }
  releaseQueue(&queue, &nodes);
  return result;
}
