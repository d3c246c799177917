#include "ift/core/iftEuclidean.h"

#include "base/arith.h"
#include "ift/core/detail/iftEuclideanLoop.h"
#include "ift/core/detail/iftPropagate.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace seedforest::detail {

namespace {

// What waits: a pixel with its offsets to its root, which nothing else needs to keep. They fit, as
// their squares fit 31 bits.
struct EuclideanEntry {
  int pixel;
  int arrival; // the displacement by which it was reached
  std::uint16_t x;
  std::uint16_t y;

  int cost() const { return static_cast<int>(unsigned{x} * x + unsigned{y} * y); }
};

struct EuclideanArcs : WalkedArcs {
  OnwardWalk onward = OnwardWalk(*neighbors);

  template <class Offer>
  void visit(EuclideanEntry entry, Offer offer) const {
    onward.each(entry.pixel, entry.arrival, offer);
  }
  int weight(int, int, int k) const { return k; } // what an arc adds depends on its displacement
};

class EuclideanRule {
public:
  explicit EuclideanRule(const EuclideanProblem &problem)
      : neighbors_(problem.neighbors), cost_(problem.cost), pred_(problem.pred),
        nbuckets_(static_cast<std::uint64_t>(problem.nbuckets)) {
    findSteps(problem.neighbors);
  }

  int costOf(int p) const { return cost_[p]; }

  template <class Arcs>
  [[gnu::always_inline]] void prefetch(const Arcs &arcs, int p) const {
    arcs.prefetch(cost_, p);
    prefetchAt(pred_ + p);
  }

  // The path is final.
  void finish(EuclideanEntry entry) {
    if (entry.arrival != OnwardWalk::start)
      pred_[entry.pixel] = entry.pixel - neighbors_.offset(entry.arrival);
    for (std::size_t i = 0; i < nsteps_; ++i)
      steps_[i].stepFrom(entry);
    const auto cost = static_cast<unsigned>(entry.cost());
    if (cost - turn_ >= nbuckets_)
      turn_ = cost - cost % nbuckets_;
    outran_ |= longest_.x * entry.x + longest_.y * entry.y >= longestSafe_;
  }

  int extend(int, int k) const { return steps_[stepOf_[k]].cost; }

  // As long as no step is longer than the circle of buckets, pixels are taken in the order of their
  // costs and none that was taken can be improved: there is no need to ask. Roots never can.
  bool improves(int cost, int q) const { return cost < cost_[q] && (!outran_ || pred_[q] == q); }
  void conquer(int, int q, int, int cost) { cost_[q] = cost; }
  EuclideanEntry entry(int q, int k) const {
    const Step &step = steps_[stepOf_[k]];
    return {q, k, step.x, step.y};
  }

  // The remainder, without a division for costs of this turn of the circle and the next.
  int bucket(int cost, int) const {
    const std::uint64_t ahead = static_cast<unsigned>(cost) - turn_;
    if (ahead < nbuckets_)
      return static_cast<int>(ahead);
    if (ahead < 2 * nbuckets_)
      return static_cast<int>(ahead - nbuckets_);
    return static_cast<int>(static_cast<unsigned>(cost) % nbuckets_);
  }

private:
  // Displacements that differ in signs only add the same to the offsets, so what they offer is
  // computed once for all, when a pixel is taken.
  struct Step {
    unsigned dx; // without signs
    unsigned dy;
    int cost; // what a step from the pixel taken last would come to
    std::uint16_t x;
    std::uint16_t y;

    void stepFrom(EuclideanEntry entry) {
      const std::uint64_t far = std::uint64_t{entry.x} + dx;
      const std::uint64_t down = std::uint64_t{entry.y} + dy;
      cost = static_cast<int>(std::min(far * far + down * down, std::uint64_t{maxInt}));
      x = static_cast<std::uint16_t>(far);
      y = static_cast<std::uint16_t>(down);
    }
    auto key() const { return std::pair(dx, dy); }
  };

  void findSteps(const NeighborWalk &neighbors) {
    const auto n = static_cast<std::size_t>(neighbors.size());
    const auto distance = [](int d) { return static_cast<unsigned>(std::abs(std::int64_t{d})); };
    const auto stepBy = [&](std::size_t k) {
      const int i = static_cast<int>(k);
      return Step{distance(neighbors.dx(i)), distance(neighbors.dy(i)), 0, 0, 0};
    };
    const auto precedes = [](const Step &a, const Step &b) { return a.key() < b.key(); };
    steps_ = makeArray<Step>(n);
    for (std::size_t k = 0; k < n; ++k)
      steps_[k] = stepBy(k);
    Step *end = steps_.get() + n;
    std::sort(steps_.get(), end, precedes);
    end = std::unique(steps_.get(), end,
                      [](const Step &a, const Step &b) { return a.key() == b.key(); });
    nsteps_ = static_cast<std::size_t>(end - steps_.get());
    for (std::size_t i = 0; i < nsteps_; ++i)
      longest_ = {std::max<std::uint64_t>(longest_.x, steps_[i].dx),
                  std::max<std::uint64_t>(longest_.y, steps_[i].dy)};
    // The longest step from offsets x and y adds 2 * (longest_.x * x + longest_.y * y) + squares.
    const std::uint64_t squares = longest_.x * longest_.x + longest_.y * longest_.y;
    longestSafe_ = squares < nbuckets_ ? (nbuckets_ - squares + 1) / 2 : 0;
    stepOf_ = makeArray<int>(n);
    for (std::size_t k = 0; k < n; ++k)
      stepOf_[k] =
          static_cast<int>(std::lower_bound(steps_.get(), end, stepBy(k), precedes) - steps_.get());
  }

  const NeighborWalk &neighbors_;
  int *cost_;
  int *pred_;
  std::uint64_t nbuckets_;
  std::uint64_t turn_ = 0; // the multiple of nbuckets_ below the cost of the pixel taken last
  bool outran_ = false;
  struct {
    std::uint64_t x;
    std::uint64_t y;
  } longest_ = {0, 0};
  std::uint64_t longestSafe_ = 0; // for longest_.x * x + longest_.y * y
  std::size_t nsteps_ = 0;
  Array<Step> steps_;
  Array<int> stepOf_; // by displacement
};

struct EuclideanEntries {
  using Entry = EuclideanEntry;
  Entry make(const EuclideanRule &rule, int q, int k, int) const { return rule.entry(q, k); }
  bool isDone(int) const { return false; }
  void finish(Entry) {}
  // Costs improve strictly, so no pixel waits twice with one.
  bool isValid(const EuclideanRule &rule, Entry entry, int) const {
    return rule.costOf(entry.pixel) == entry.cost();
  }
  template <class Arcs>
  void prefetch(const Arcs &, int) const {}
};

// Hands down along the predecessors what the roots have. In memory order, and each pixel once: far
// cheaper than while the propagation goes all over the image.
void inherit(const EuclideanProblem &problem) {
  constexpr unsigned wordBits = 64;
  const int npixels = problem.image->npixels;
  const int *pred = problem.pred;
  const Array<std::uint64_t> settled =
      makeZeroedArray<std::uint64_t>(static_cast<std::size_t>(npixels) / wordBits + 1);
  const auto wordOf = [&](int p) -> std::uint64_t & {
    return settled[static_cast<unsigned>(p) / wordBits];
  };
  const auto bitOf = [](int p) { return std::uint64_t{1} << static_cast<unsigned>(p) % wordBits; };
  for (int p = 0; p < npixels; ++p) {
    int source = p;
    while ((wordOf(source) & bitOf(source)) == 0 && pred[source] != source)
      source = pred[source];
    for (int q = p; q != source; q = pred[q]) {
      for (const Heirloom &heirloom : problem.heirlooms)
        heirloom.band[q] = heirloom.band[source];
      wordOf(q) |= bitOf(q);
    }
    wordOf(source) |= bitOf(source);
  }
}

} // namespace

void propagateEuclidean(const EuclideanProblem &problem) {
  const int npixels = problem.image->npixels;
  for (int i = 0; i < problem.nroots; ++i)
    requirePixel(problem.operation, problem.image, problem.rootPixel[i]);
  EuclideanRule rule(problem);
  EuclideanEntries entries;
  BucketQueue<EuclideanEntry> queue(problem.nbuckets, npixels);
  std::fill_n(problem.cost, npixels, ifInfiniteCost);
  for (const Heirloom &heirloom : problem.heirlooms)
    std::fill_n(heirloom.band, npixels, 0);
  forEachSeed(problem.rootPixel, problem.nroots, problem.pred, [&](int i, int p) {
    problem.cost[p] = 0;
    for (const Heirloom &heirloom : problem.heirlooms)
      heirloom.band[p] = heirloom.atRoots[i];
    queue.append(0, {p, OnwardWalk::start, 0, 0});
  });
  std::iota(problem.pred, problem.pred + npixels, 0);
  propagate(EuclideanArcs{{&problem.neighbors}}, rule, entries, queue);
  inherit(problem);
}

} // namespace seedforest::detail

using namespace seedforest::detail;

void iftEuclideanDT(const imImage *image, imImage *result, imNeighborhoodFn adjacency,
                    const ifRoots *roots) {
  const char *operation = "iftEuclideanDT";
  requireBands(operation, image, 0);
  requireBands(operation, result, 3);
  requireSameSize(operation, image, result);
  int **bands = result->band + result->nbands - 3;
  const std::int64_t nbuckets = 2 * (std::int64_t{image->ncols} + image->nrows) + 2;
  propagateEuclidean({operation,
                      image,
                      NeighborWalk(image, adjacency),
                      nbuckets,
                      roots->pixel,
                      roots->n,
                      bands[1],
                      bands[2],
                      {{bands[0], roots->label}}});
}
