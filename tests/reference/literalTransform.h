// A forest transform as one would write it down, on the public queue with its linked lists: what
// the loop of the library has to equal, given the same policies.
#pragma once

#include "ift/core/ifQueue.h"
#include "ift/core/ifRoots.h"

#include <algorithm>
#include <numeric>

/// Fills the rule's label and pred for `npixels` pixels, and its cost from what it is at first.
template <class Arcs, class Rule>
void literalTransform(const Arcs &arcs, Rule rule, int nbuckets, int npixels,
                      const ifRoots &seeds) {
  ifQueue queue;
  ifQueueNodes nodes;
  initQueue(&queue, nbuckets, &nodes, npixels);
  std::fill_n(rule.label, npixels, 0);
  std::iota(rule.pred, rule.pred + npixels, 0);
  for (int i = 0; i < seeds.n; ++i) {
    const int p = seeds.pixel[i];
    rule.cost[p] = seeds.value[i];
    rule.label[p] = seeds.label[i];
    insertQueue(&queue, &nodes, rule.bucket(rule.cost[p], p), p);
  }
  while (isEmpty(&queue) == 0) {
    const int p = removeQueue(&queue, &nodes, queue.current);
    const struct { int pixel; } entry = {p};
    rule.finish(entry);
    arcs.visit(entry, [&](int q, int k) {
      if (nodes.bucket[q] == -2)
        return;
      const int cost = rule.extend(p, arcs.weight(p, q, k));
      if (!rule.improves(cost, q))
        return;
      rule.conquer(p, q, k, cost);
      insertQueue(&queue, &nodes, rule.bucket(cost, q), q); // moves it when it waits
    });
  }
  releaseQueue(&queue, &nodes);
}
