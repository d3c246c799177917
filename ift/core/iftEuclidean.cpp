#include "ift/core/iftEuclidean.h"

#include "base/arith.h"
#include "ift/core/iftPropagate.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace seedforest::detail {

namespace {

// All that the loop reads around a pixel, in one word, so that each neighbour costs one line of
// memory: the offsets to its root, and the displacement by which it was reached. Squared distances
// follow from offsets, predecessors from displacements. Offsets fit, as their squares fit 31 bits.
struct Reach {
  std::uint16_t x;
  std::uint16_t y;
  std::uint32_t arc : 31;
  std::uint32_t done : 1;
};
constexpr std::uint32_t noArc = (1u << 31) - 1;

// Farther than any distance that counts.
constexpr std::uint16_t farAway = 46341;
constexpr std::uint32_t tooFar = std::uint32_t{farAway} * farAway;
static_assert(tooFar > static_cast<std::uint32_t>(maxInt));

struct EuclideanArcs {
  const NeighborWalk &neighbors;

  template <class Offer>
  void visit(int p, Offer offer) const {
    neighbors.each(p, offer);
  }
  int weight(int, int, int k) const { return k; } // what an arc adds depends on its displacement
  template <class T>
  [[gnu::always_inline]] void prefetch(const T *band, int p) const {
    neighbors.prefetch(band, p);
  }
};

class EuclideanRule {
public:
  EuclideanRule(const EuclideanProblem &problem, Reach *reach)
      : reach_(reach), neighbors_(problem.neighbors), heirlooms_(problem.heirlooms),
        nbuckets_(problem.nbuckets) {}

  std::uint32_t costOf(int p) const {
    return std::uint32_t{reach_[p].x} * reach_[p].x + std::uint32_t{reach_[p].y} * reach_[p].y;
  }

  template <class Arcs>
  [[gnu::always_inline]] void prefetch(const Arcs &arcs, int p) const {
    arcs.prefetch(reach_, p);
    for (const int *band : heirlooms_)
      arcs.prefetch(band, p);
  }

  // The path to p is final, and so is what its predecessor was given.
  void finish(int p) {
    const Reach reach = reach_[p];
    x_ = reach.x;
    y_ = reach.y;
    const std::uint32_t cost = costOf(p);
    if (cost - turn_ >= nbuckets_)
      turn_ = cost - cost % nbuckets_;
    if (reach.arc != noArc)
      for (int *band : heirlooms_)
        band[p] = band[p - neighbors_.offset(static_cast<int>(reach.arc))];
  }

  std::uint32_t extend(int, int k) const {
    const std::uint64_t x = offsetX(k);
    const std::uint64_t y = offsetY(k);
    const std::uint64_t d = x * x + y * y;
    return d > std::uint64_t{maxInt} ? tooFar : static_cast<std::uint32_t>(d);
  }
  bool improves(std::uint32_t cost, int q) const { return cost < costOf(q); }
  void conquer(int, int q, int k, std::uint32_t) {
    reach_[q] = {static_cast<std::uint16_t>(offsetX(k)), static_cast<std::uint16_t>(offsetY(k)),
                 static_cast<std::uint32_t>(k), 0};
  }

  // The remainder, without a division for costs of this turn of the circle and the next.
  int bucket(std::uint32_t cost, int) const {
    const std::uint64_t ahead = std::uint64_t{cost} - turn_;
    if (ahead < nbuckets_)
      return static_cast<int>(ahead);
    if (ahead < 2 * nbuckets_)
      return static_cast<int>(ahead - nbuckets_);
    return static_cast<int>(cost % nbuckets_);
  }

private:
  // To the root of the pixel taken last, from its neighbour by displacement k.
  std::uint64_t offsetX(int k) const { return x_ + distance(neighbors_.dx(k)); }
  std::uint64_t offsetY(int k) const { return y_ + distance(neighbors_.dy(k)); }
  static std::uint64_t distance(int d) {
    return static_cast<std::uint64_t>(std::abs(std::int64_t{d}));
  }

  Reach *reach_;
  const NeighborWalk &neighbors_;
  std::initializer_list<int *> heirlooms_;
  std::uint64_t nbuckets_;
  std::uint64_t turn_ = 0; // the multiple of nbuckets_ below the cost of the pixel taken last
  std::uint64_t x_ = 0;
  std::uint64_t y_ = 0;
};

// As MarkedEntries, with the marks among what is read anyway.
struct ReachEntries {
  Reach *reach;

  struct Entry {
    int pixel;
    std::uint32_t cost;
  };
  Entry make(int p, std::uint32_t cost) const { return {p, cost}; }
  bool isDone(int q) const { return reach[q].done != 0; }
  void finish(int p) { reach[p].done = 1; }
  bool isValid(const EuclideanRule &rule, Entry entry, int) const {
    return !isDone(entry.pixel) && rule.costOf(entry.pixel) == entry.cost;
  }
  template <class Arcs>
  void prefetch(const Arcs &, int) const {}
};

} // namespace

void propagateEuclidean(const EuclideanProblem &problem) {
  const int npixels = problem.image->npixels;
  const Array<Reach> reach = makeArray<Reach>(static_cast<std::size_t>(npixels));
  std::fill_n(reach.get(), npixels, Reach{farAway, 0, noArc, 0});
  EuclideanRule rule(problem, reach.get());
  ReachEntries entries = {reach.get()};
  BucketQueue<ReachEntries::Entry> queue(problem.nbuckets, npixels);
  forEachSeed(problem.rootPixel, problem.nroots, problem.pred, [&](int, int p) {
    reach[p] = {0, 0, noArc, 0};
    queue.append(0, entries.make(p, 0));
  });
  propagate(EuclideanArcs{problem.neighbors}, rule, entries, queue);
  for (int p = 0; p < npixels; ++p) {
    const auto k = reach[p].arc;
    problem.pred[p] = k == noArc ? p : p - problem.neighbors.offset(static_cast<int>(k));
    problem.cost[p] = static_cast<int>(std::min(rule.costOf(p), std::uint32_t{maxInt}));
  }
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
  std::fill_n(bands[0], image->npixels, 0);
  for (int i = 0; i < roots->n; ++i) {
    requirePixel(operation, image, roots->pixel[i]);
    bands[0][roots->pixel[i]] = roots->label[i];
  }
  const std::int64_t nbuckets = 2 * (std::int64_t{image->ncols} + image->nrows) + 2;
  propagateEuclidean({image,
                      NeighborWalk(image, adjacency),
                      nbuckets,
                      roots->pixel,
                      roots->n,
                      bands[1],
                      bands[2],
                      {bands[0]}});
}
