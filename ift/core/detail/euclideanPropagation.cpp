// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/euclideanPropagation.h"

#include "base/arith.h"
#include "base/inline.h"
#include "base/multiversion.h"
#include "ift/core/detail/ancestry.h"
#include "ift/core/detail/euclideanTiles.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/turningQueue.h"
#include "ift/core/ifCost.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace seedforest::detail {

namespace {

// A waiting pixel with its offsets to its root, which are stored nowhere else. 16 bits are enough,
// since the sum of the squares fits 31.
struct EuclideanEntry {
  int pixel;
  int arrival; // the displacement by which it was reached
  std::uint16_t x;
  std::uint16_t y;

  int cost() const { return static_cast<int>(unsigned{x} * x + unsigned{y} * y); }
};

// The absolute values of a displacement. Displacements that differ only in sign add the same to the
// offsets, so their offer is computed once for all of them when a pixel is settled.
struct Step {
  unsigned dx;
  unsigned dy;
  int cost; // after the step from the pixel settled last: squared distance and offsets
  std::uint16_t x;
  std::uint16_t y;

  void from(EuclideanEntry entry) {
    const std::uint64_t far = std::uint64_t{entry.x} + dx;
    const std::uint64_t down = std::uint64_t{entry.y} + dy;
    cost = static_cast<int>(std::min(far * far + down * down, std::uint64_t{maxInt}));
    x = static_cast<std::uint16_t>(far);
    y = static_cast<std::uint16_t>(down);
  }
  auto key() const { return std::pair(dx, dy); }
};

Step stepBy(const NeighborWalk &neighbors, int k) {
  const auto distance = [](int d) { return static_cast<unsigned>(std::abs(std::int64_t{d})); };
  return {distance(neighbors.dx(k)), distance(neighbors.dy(k)), 0, 0, 0};
}

class EuclideanTransform {
public:
  explicit EuclideanTransform(const EuclideanProblem &problem)
      : neighbors_(problem.neighbors), onward_(problem.neighbors), cost_(problem.cost),
        pred_(problem.pred) {
    const int n = neighbors_.size();
    const auto precedes = [](const Step &a, const Step &b) { return a.key() < b.key(); };
    const auto equals = [](const Step &a, const Step &b) { return a.key() == b.key(); };
    steps_ = makeArray<Step>(static_cast<std::size_t>(n));
    for (int k = 0; k < n; ++k)
      steps_[k] = stepBy(neighbors_, k);
    Step *begin = steps_.get();
    std::sort(begin, begin + n, precedes);
    Step *end = std::unique(begin, begin + n, equals);
    nsteps_ = end - begin;
    stepOf_ = makeArray<int>(static_cast<std::size_t>(n));
    for (int k = 0; k < n; ++k)
      stepOf_[k] =
          static_cast<int>(std::lower_bound(begin, end, stepBy(neighbors_, k), precedes) - begin);
  }

  using Entry = EuclideanEntry;
  Entry entry(int q, int k, int) const {
    const Step &step = steps_[stepOf_[k]];
    return {q, k, step.x, step.y};
  }

  // Costs improve strictly, so no pixel waits twice with one.
  bool isCurrent(Entry entry, int) const { return cost_[entry.pixel] == entry.cost(); }

  void settle(Entry entry) {
    if (entry.arrival != UnsharedNeighborWalk::start)
      pred_[entry.pixel] = entry.pixel - neighbors_.offset(entry.arrival);
    for (std::ptrdiff_t i = 0; i < nsteps_; ++i)
      steps_[i].from(entry);
    isOrdered_ &= entry.cost() >= lastCost_;
    lastCost_ = entry.cost();
  }

  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    onward_.each(entry.pixel, entry.arrival,
                 [&](int q, int k) SEEDFOREST_INLINE { offer(q, k, steps_[stepOf_[k]].cost); });
  }

  // While pixels are settled in the order of their costs, a settled pixel cannot be improved, and
  // comparing costs is enough. The order is lost when a step is longer than the circle of buckets;
  // from then on pixels that have a predecessor, and are settled, are left out. Roots have cost 0.
  bool improves(int cost, int q) const { return cost < cost_[q] && (isOrdered_ || pred_[q] == q); }
  void conquer(int, int q, int, int cost) { cost_[q] = cost; }
  int bucket(int cost, int) const { return cost; } // the queue knows how often to go round
  SEEDFOREST_INLINE void prefetch(int p) const {
    neighbors_.prefetch(cost_, p);
    prefetchAt(pred_ + p);
  }

private:
  const NeighborWalk &neighbors_;
  UnsharedNeighborWalk onward_;
  int *cost_;
  int *pred_;
  bool isOrdered_ = true;
  int lastCost_ = 0;
  std::ptrdiff_t nsteps_ = 0;
  Array<Step> steps_;
  Array<int> stepOf_; // by displacement
};

// A function of its own: inlined, the loop takes a tenth more instructions.
[[gnu::noinline]] void run(EuclideanTransform &transform, TurningQueue<EuclideanEntry> &queue) {
  propagate(transform, queue);
}

// Any relation of neighbours.
void propagateAnywhere(EuclideanProblem problem) {
  const int npixels = problem.image->npixels;
  Array<int> scratch;
  if (problem.pred == nullptr) {
    scratch = makeArray<int>(static_cast<std::size_t>(npixels));
    problem.pred = scratch.get();
  }
  {
    EuclideanTransform transform(problem);
    TurningQueue<EuclideanEntry> queue(problem.nbuckets, npixels);
    std::fill_n(problem.cost, npixels, ifInfiniteCost);
    for (const int p : problem.rootPixels)
      problem.cost[p] = 0;
    const auto reaches = [&](int p) { // a pixel that is no root
      const int y = p / problem.image->ncols;
      return problem.neighbors.any(p - y * problem.image->ncols, y,
                                   [&](int q, int) { return problem.cost[q] != 0; });
    };
    // A root among roots improves none: where all of the ground is roots, most are.
    forEachSeed(problem.rootPixels, problem.pred, [&](int, int p) {
      if (reaches(p))
        queue.append(0, {p, UnsharedNeighborWalk::start, 0, 0});
    });
    std::iota(problem.pred, problem.pred + npixels, 0);
    run(transform, queue);
  }
  Ancestry<false> ancestry(problem);
  for (int y = problem.image->nrows - 1; y >= 0; --y)
    ancestry.addRow(y, problem.pred + problem.image->row[y]);
  ancestry.handDown();
}

} // namespace

SEEDFOREST_MULTIVERSION void takeFromRoots(const int *complement, const int *atRoots, int n,
                                           int *values) {
  for (int p = 0; p < n; ++p) {
    const int root = complement[p];
    const int value = atRoots[root == noRoot ? 0 : ~root];
    values[p] = root == noRoot ? 0 : value;
  }
}

void propagateEuclidean(const EuclideanProblem &problem) {
  for (const int p : problem.rootPixels)
    requirePixel(problem.operation, problem.image, p);
  if (!propagateInTiles(problem))
    propagateAnywhere(problem);
}

} // namespace seedforest::detail
