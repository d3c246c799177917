// The policies of the forest transforms: see iftPropagate.h for what a policy has to say. Internal;
// iftForest.cpp puts them together.
#pragma once

#include "base/arith.h"
#include "base/report.h"
#include "ift/core/detail/iftPropagate.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

#include <utility>

namespace seedforest::detail {

/// The arcs of an adjacency, still to be weighed.
struct NeighborArcs {
  NeighborWalk neighbors;

  template <class Entry, class Offer>
  void visit(const Entry &entry, Offer offer) const {
    neighbors.each(entry.pixel, offer);
  }
  template <class T>
  [[gnu::always_inline]] void prefetch(const T *band, int p) const {
    neighbors.prefetch(band, p);
  }
};

/// The arcs of an adjacency, weighed by a function of the pixels at their ends.
template <class Weight>
struct AdjacencyArcs : NeighborArcs {
  Weight weigh;

  int weight(int p, int q, int) const { return weigh(p, q); }
};

/// A weight function of the caller's, for one image.
struct CalledWeight {
  const imImage *image;
  ifArcWeightFn function;
  int operator()(int p, int q) const { return function(image, p, q); }
};
using FunctionArcs = AdjacencyArcs<CalledWeight>;

/// Ends the process with status 1 after a line where the function would read a band that is not
/// there.
inline FunctionArcs functionArcs(const char *operation, const imImage *image,
                                 imNeighborhoodFn adjacency, ifArcWeightFn arcWeight) {
  if (arcWeight == ifWatershedMetric)
    requireBands(operation, image, 1);
  return {{NeighborWalk(image, adjacency)}, {image, arcWeight}};
}

/// The arcs of an arc-weight image, whose band k weighs those by displacement k; a negative weight
/// is no arc.
struct WeightImageArcs : NeighborArcs {
  const int *const *band;

  template <class Entry, class Offer>
  void visit(const Entry &entry, Offer offer) const {
    const int p = entry.pixel;
    neighbors.each(p, [&](int q, int k) {
      if (band[k][p] >= 0)
        offer(q, k);
    });
  }
  int weight(int p, int, int k) const { return band[k][p]; }
};

/// Ends the process with status 1 after a line where the arc-weight image has another size than the
/// image or lacks its adjacency.
inline WeightImageArcs weightImageArcs(const char *operation, const imImage *image,
                                       const imImage *weights) {
  requireBands(operation, weights, 0);
  requireSameSize(operation, image, weights);
  if (weights->adj == nullptr || weights->nAdj < 0 || weights->nAdj > weights->nbands)
    fatal("%s: the arc-weight image has no adjacency\n", operation);
  return {{NeighborWalk(weights, weights->nAdj, weights->adj)}, weights->band};
}

/// How weights of 0 .. 1000 are spread over a queue of 50000 buckets.
inline constexpr int fixedBuckets = 50000;
inline constexpr int weightScale = (fixedBuckets - 1) / 1000;

/// Other arcs, with each weight multiplied by the scale; saturating.
template <class Arcs>
struct Scaled : Arcs {
  int weight(int p, int q, int k) const {
    return saturate(std::int64_t{weightScale} * Arcs::weight(p, q, k));
  }
};

/// Other arcs, without those to pixels where the mask is 0.
template <class Arcs>
struct Masked : Arcs {
  const int *mask;

  template <class Entry, class Offer>
  void visit(const Entry &entry, Offer offer) const {
    Arcs::visit(entry, [&](int q, int k) {
      if (mask[q] != 0)
        offer(q, k);
    });
  }
};

/// The two directions of a transform: which of two costs is better, what an unreached pixel has,
/// and the key by which a cost finds its bucket when costs are expected up to maxCost.
struct Minimising {
  static constexpr int infinite = ifInfiniteCost;
  static constexpr bool isBetter(int a, int b) { return a < b; }
  static std::int64_t key(int cost, int) { return cost; }
};
struct Maximising {
  static constexpr int infinite = ifInfiniteCostInverted;
  static constexpr bool isBetter(int a, int b) { return a > b; }
  static std::int64_t key(int cost, int maxCost) { return std::int64_t{maxCost} - cost; }
};

/// What a pixel of a forest image gains: a label, a cost and a predecessor. The queue has buckets
/// for costs up to maxCost.
struct ForestBands {
  int *label;
  int *cost;
  int *pred;
  int maxCost;

  int costOf(int p) const { return cost[p]; }
  template <class Entry>
  void finish(const Entry &) {}
  template <class Arcs>
  [[gnu::always_inline]] void prefetch(const Arcs &arcs, int p) const {
    arcs.prefetch(cost, p);
  }
  void conquer(int p, int q, int, int offered) {
    cost[q] = offered;
    label[q] = label[p];
    pred[q] = p;
  }
  template <class Direction>
  int bucketOf(int offered) const {
    return circularBucket(Direction::key(offered, maxCost), std::int64_t{maxCost} + 1);
  }
};

/// The rule of the forest transforms: one path cost, one direction.
template <class Direction, class PathCost>
struct ForestRule : ForestBands {
  PathCost pathCost;

  int extend(int p, int weight) const { return pathCost(cost[p], weight); }
  bool improves(int offered, int q) const { return Direction::isBetter(offered, cost[q]); }
  int bucket(int offered, int) const { return bucketOf<Direction>(offered); }
};

/// The rule of levelling: label 1 grows upwards by the maximum, label 2 downwards by the minimum,
/// side by side in one queue. A pixel's cost never returns to what it was: once it is no less than
/// the pixel's value only label 1 improves it, once it is no more only label 2.
struct LevelRule : ForestBands {
  static constexpr int fromBelow = 1;
  static constexpr int fromAbove = 2;
  int side = 0; // the label of the pixel taken last

  template <class Entry>
  void finish(const Entry &entry) {
    side = label[entry.pixel];
  }
  int extend(int p, int weight) const {
    if (side != fromBelow && side != fromAbove)
      warn("pixel %d has invalid label (%d)!\n", p, side);
    return side == fromAbove ? ifPathCostMin(cost[p], weight) : ifPathCostMax(cost[p], weight);
  }
  bool improves(int offered, int q) const {
    return (side == fromBelow && offered < cost[q]) || (side == fromAbove && offered > cost[q]);
  }
  int bucket(int offered, int q) const {
    return label[q] == fromAbove ? bucketOf<Maximising>(offered) : bucketOf<Minimising>(offered);
  }
};

} // namespace seedforest::detail
