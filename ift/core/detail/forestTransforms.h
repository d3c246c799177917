// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The transforms of iftForest.h and of spanning trees, composed of three parts: the arcs of an
// image and their weights; the rule that says when a pixel is conquered and what it gains; and
// Marked, which turns a rule into a transform for the loop of iftPropagate.h.
#pragma once

#include "base/arith.h"
#include "base/inline.h"
#include "base/report.h"
#include "base/require.h"
#include "ift/core/detail/direction.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/ifCost.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

namespace seedforest::detail {

/// The arcs of an adjacency, weighed by a function of the pixels at their ends.
template <class Weight>
struct AdjacencyArcs {
  NeighborWalk neighbors;
  Weight weigh;

  template <class Visit>
  void each(int p, Visit visit) const {
    neighbors.each(p, visit);
  }
  int weight(int p, int q, int) const { return weigh(p, q); }

  /// What weight() will read around p, as far as it is known.
  SEEDFOREST_INLINE void prefetch(int p) const {
    if constexpr (requires { weigh.image; })
      if (weigh.image->nbands > 0)
        neighbors.prefetch(weigh.image->band[0], p);
  }
};

/// A weight function that the caller passed, for one image. Most such functions read its band 0.
struct CalledWeight {
  const imImage *image;
  ifArcWeightFn function;
  int operator()(int p, int q) const { return function(image, p, q); }
};
using FunctionArcs = AdjacencyArcs<CalledWeight>;

/// Ends with an error: no adjacency, no weight function, an image without a band that it reads.
inline FunctionArcs functionArcs(const char *operation, const imImage *image,
                                 imNeighborhoodFn adjacency, ifArcWeightFn arcWeight) {
  requireGiven(operation, "adjacency", adjacency);
  requireGiven(operation, "arc weight", arcWeight);
  if (arcWeight == ifWatershedMetric)
    requireBands(operation, image, 1);
  return {NeighborWalk(image, adjacency), {image, arcWeight}};
}

/// The arcs of an arc-weight image: band k holds the weights of the arcs by displacement k; a
/// negative weight means no arc.
struct WeightImageArcs {
  NeighborWalk neighbors;
  const int *const *band;

  template <class Visit>
  void each(int p, Visit visit) const {
    neighbors.each(p, [&](int q, int k) {
      if (band[k][p] >= 0)
        visit(q, k);
    });
  }
  int weight(int p, int, int k) const { return band[k][p]; }
  SEEDFOREST_INLINE void prefetch(int p) const {
    for (int k = 0; k < neighbors.size(); ++k)
      prefetchAt(band[k] + p);
  }
};

/// Ends with an error: an arc-weight image of another size than the image, or without its
/// adjacency.
inline WeightImageArcs weightImageArcs(const char *operation, const imImage *image,
                                       const imImage *weights) {
  requireBands(operation, weights, 0);
  requireSameSize(operation, image, weights);
  if (weights->adj == nullptr || weights->nAdj < 0 || weights->nAdj > weights->nbands)
    fatal("%s: the arc-weight image has no adjacency\n", operation);
  return {NeighborWalk(weights, weights->nAdj, weights->adj), weights->band};
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

  template <class Visit>
  void each(int p, Visit visit) const {
    Arcs::each(p, [&](int q, int k) {
      if (mask[q] != 0)
        visit(q, k);
    });
  }
  SEEDFOREST_INLINE void prefetch(int p) const {
    Arcs::prefetch(p);
    Arcs::neighbors.prefetch(mask, p);
  }
};

/// The bucket of a cost among those for costs up to maxCost.
template <class Towards>
int bucketOf(int cost, int maxCost) {
  return circularBucket(Towards::key(cost, maxCost), std::int64_t{maxCost} + 1);
}

/// What a pixel of a forest image gains: a label, a cost and a predecessor. The queue has buckets
/// for costs up to maxCost.
struct ForestBands {
  int *label;
  int *cost;
  int *pred;
  int maxCost;

  int costOf(int p) const { return cost[p]; }
  SEEDFOREST_INLINE void prefetch(int p) const {
    if (label != nullptr) // spanning trees have none
      prefetchAt(label + p);
  }
  void conquer(int p, int q, int, int offered) {
    cost[q] = offered;
    label[q] = label[p];
    pred[q] = p;
  }
};

/// The forest transforms: one path cost, one direction.
template <class Towards, class Arcs, class PathCost = ifPathCostFn>
struct ForestTransform : ForestBands {
  Arcs arcs;
  PathCost pathCost;

  int extend(int p, int q, int k) const { return pathCost(cost[p], arcs.weight(p, q, k)); }
  bool improves(int offered, int q) const { return Towards::isBetter(offered, cost[q]); }
  int bucket(int offered, int) const { return bucketOf<Towards>(offered, maxCost); }
};

/// Levelling: paths of label 1 spread by the maximum, paths of label 2 by the minimum, in one
/// queue. A pixel's cost never returns to an earlier value: once it is no less than the pixel's
/// value only label 1 improves it, once it is no more only label 2.
template <class Arcs>
struct LevelTransform : ForestBands {
  static constexpr int fromBelow = 1;
  static constexpr int fromAbove = 2;
  Arcs arcs;
  int side = 0; // the label of the pixel settled last

  void settle(int p) { side = label[p]; }
  int extend(int p, int q, int k) const {
    const int weight = arcs.weight(p, q, k);
    if (side != fromBelow && side != fromAbove)
      warn("pixel %d has invalid label (%d)!\n", p, side);
    return side == fromAbove ? std::min(cost[p], weight) : std::max(cost[p], weight);
  }
  bool improves(int offered, int q) const {
    return (side == fromBelow && offered < cost[q]) || (side == fromAbove && offered > cost[q]);
  }
  int bucket(int offered, int q) const {
    return label[q] == fromAbove ? bucketOf<Maximising>(offered, maxCost)
                                 : bucketOf<Minimising>(offered, maxCost);
  }
};

/// Spanning trees of pixels: a pixel's cost is the weight of its edge alone, and there are no
/// labels.
template <class Arcs>
struct SpanningTransform : ForestBands {
  Arcs arcs;

  int extend(int p, int q, int k) const { return arcs.weight(p, q, k); }
  bool improves(int offered, int q) const { return offered < cost[q]; }
  void conquer(int p, int q, int, int offered) {
    cost[q] = offered;
    pred[q] = p;
  }
  int bucket(int offered, int) const { return bucketOf<Minimising>(offered, maxCost); }
};

/// The queue entry of a transform in which one bucket can hold several costs: a pixel with its cost
/// when it was appended. Costs improve strictly, so a pixel has at most one entry of each cost.
struct CostedEntry {
  int pixel;
  int cost;
};

/// Turns a rule into a transform for the loop. A rule has `arcs`, costOf(p), extend(p, q, k) (the
/// cost of the path through p to q), improves(), conquer() and bucket(), and may have settle(p) and
/// prefetch(p).
/// Settled pixels are marked, because a path may get better as it grows, and a settled pixel must
/// not change.
template <class Base>
class Marked : public Base {
public:
  /// Ends with an error, with the line of initQueue(), when the marks cannot be allocated.
  Marked(Base base, int nelems)
      : Base(std::move(base)),
        settled_(static_cast<char *>(tryAllocateZeroed(static_cast<std::size_t>(nelems), 1))) {
    if (settled_ == nullptr)
      queueUnavailable('A');
  }

  using Entry = CostedEntry;
  Entry entry(int q, int, int cost) const { return {q, cost}; }
  bool isCurrent(Entry entry, int) const {
    return settled_[entry.pixel] == 0 && Base::costOf(entry.pixel) == entry.cost;
  }
  void settle(Entry entry) {
    settled_[entry.pixel] = 1;
    if constexpr (requires { Base::settle(entry.pixel); })
      Base::settle(entry.pixel);
  }
  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int p = entry.pixel;
    Base::arcs.each(p, [&](int q, int k) SEEDFOREST_INLINE {
      if (settled_[q] == 0)
        offer(q, k, Base::extend(p, q, k));
    });
  }
  /// All that will be read around p: what the arcs read and the label take a third off the time in
  /// large images.
  SEEDFOREST_INLINE void prefetch(int p) const requires requires(const Base &base) {
    base.prefetch(p);
  }
  {
    Base::arcs.neighbors.prefetch(Base::cost, p);
    Base::arcs.neighbors.prefetch(settled_.get(), p);
    Base::arcs.prefetch(p);
    Base::prefetch(p);
  }

private:
  Array<char> settled_;
};

} // namespace seedforest::detail
