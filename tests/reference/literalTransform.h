// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A forest transform as one would write it down, on the public queue with its linked lists: what
// the loop of the library has to equal, given the same arcs, costs and conquests.
#pragma once

#include "ift/core/ifQueue.h"
#include "ift/core/ifRoots.h"

#include <algorithm>
#include <numeric>

/// Fills the transform's label and pred for `npixels` pixels, and its cost from what it is at first.
template <class Base>
void literalTransform(Base base, int nbuckets, int npixels, const ifRoots &seeds) {
  ifQueue queue;
  ifQueueNodes nodes;
  initQueue(&queue, nbuckets, &nodes, npixels);
  std::fill_n(base.label, npixels, 0);
  std::iota(base.pred, base.pred + npixels, 0);
  for (int i = 0; i < seeds.n; ++i) {
    const int p = seeds.pixel[i];
    base.cost[p] = seeds.value[i];
    base.label[p] = seeds.label[i];
    insertQueue(&queue, &nodes, base.bucket(base.cost[p], p), p);
  }
  while (isEmpty(&queue) == 0) {
    const int p = removeQueue(&queue, &nodes, queue.current);
    if constexpr (requires { base.settle(p); })
      base.settle(p);
    base.arcs.each(p, [&](int q, int k) {
      if (nodes.bucket[q] == -2)
        return;
      const int cost = base.extend(p, q, k);
      if (!base.improves(cost, q))
        return;
      base.conquer(p, q, k, cost);
      insertQueue(&queue, &nodes, base.bucket(cost, q), q); // moves it when it waits
    });
  }
  releaseQueue(&queue, &nodes);
}
