#include "ift/operators/iftFuzzy.h"

#include "base/arith.h"
#include "base/report.h"
#include "ift/core/detail/iftPropagate.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imIO.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

// What links cost an object. It depends on the distance of the average from the mean alone, and
// from some distance on no more at all: a short table has it.
class LinkCost {
public:
  LinkCost(const imImage *image, int mean, int sigma)
      : value_(image->band[0]), mean_(mean), last_(lastDistance(sigma)),
        cost_(makeArray<int>(static_cast<std::size_t>(last_) + 1)) {
    for (std::int64_t d = 0; d <= last_; ++d) {
      const std::int64_t quotient = -(d * d) / sigma;
      const auto exponent = static_cast<double>(quotient);
      cost_[d] = 255 - truncate(std::exp(exponent) * 255.0);
    }
  }

  int operator()(int p, int q) const {
    const std::int64_t average = (std::int64_t{value_[p]} + value_[q]) / 2;
    return cost_[std::min(std::abs(average - mean_), last_)];
  }

private:
  // The square of this distance is 32 times sigma or more. There the cost has settled: exp(-32) is
  // nothing, and exp(32) is beyond an int.
  static std::int64_t lastDistance(int sigma) {
    return static_cast<std::int64_t>(std::sqrt(32.0 * std::abs(static_cast<double>(sigma)))) + 1;
  }

  const int *value_;
  std::int64_t mean_;
  std::int64_t last_;
  Array<int> cost_;
};

// The links of a pixel that can be of use: a path never gets better as it grows, so those to
// neighbours that have been reached as well cannot.
struct Links : WalkedArcs {
  const LinkCost *linkCost;
  const int *cost;

  template <class Offer>
  void visit(PlainEntries::Entry entry, Offer offer) const {
    const int reached = cost[entry.pixel];
    neighbors->each(entry.pixel, [&](int q, int k) {
      if (cost[q] > reached)
        offer(q, k);
    });
  }
  int weight(int p, int q, int) const { return (*linkCost)(p, q); }
};

struct ConnectednessRule {
  const int *value;
  int *cost;

  int costOf(int p) const { return cost[p]; }
  template <class Arcs>
  [[gnu::always_inline]] void prefetch(const Arcs &arcs, int p) const {
    arcs.prefetch(cost, p);
    arcs.prefetch(value, p);
  }
  void finish(PlainEntries::Entry) {}
  int extend(int p, int weight) const { return std::max(cost[p], weight); }
  bool improves(int offered, int q) const { return offered < cost[q]; }
  void conquer(int, int q, int, int offered) { cost[q] = offered; }
  int bucket(int offered, int) const { return offered; }
};

// Seeds cost 0, so that whatever a link costs, a path costs 0 .. 255.
constexpr int nPathCosts = 256;

void check(const imImage *image, const imImage *labelOut, const imImage *costOut,
           const ifRoots *seeds, const int *sigma, int nObjects) {
  constexpr const char *operation = "iftFuzzy";
  requireBands(operation, image, 1);
  requireBands(operation, labelOut, 1);
  requireBands(operation, costOut, 1);
  requireSameSize(operation, image, labelOut);
  requireSameSize(operation, image, costOut);
  for (int i = 0; i < seeds->n; ++i)
    if (seeds->label[i] >= 1 && seeds->label[i] <= nObjects)
      requirePixel(operation, image, seeds->pixel[i]);
  for (int o = 1; o <= nObjects; ++o)
    if (sigma[o] == 0)
      fatal("%s: sigma of object %d is 0\n", operation, o);
}

void writeDebugImage(imImage *costs, int object) {
  costs->maxValue = 0; // the writer finds it
  imSaveImage(object == 1 ? "tmp1.pgm" : "tmp2.pgm", costs);
}

using Queue = BucketQueue<PlainEntries::Entry>;

// The transform of one object. The queue is empty before and after.
void connect(const imImage *image, const NeighborWalk &neighbors, const ifRoots *seeds, int object,
             const LinkCost &linkCost, Queue &queue, imImage *costs) {
  int *cost = costs->band[0];
  PlainEntries entries;
  std::fill_n(cost, costs->npixels, ifInfiniteCost);
  for (int i = 0; i < seeds->n; ++i)
    if (const int p = seeds->pixel[i]; seeds->label[i] == object && cost[p] != 0) {
      cost[p] = 0;
      queue.append(0, {p});
    }
  ConnectednessRule rule = {image->band[0], cost};
  propagate(Links{{&neighbors}, &linkCost, cost}, rule, entries, queue);
}

} // namespace

void iftFuzzy(const imImage *image, imImage *labelOut, imImage *costOut, imNeighborhoodFn adjacency,
              const ifRoots *seeds, const int *mean, const int *sigma, int nObjects) {
  check(image, labelOut, costOut, seeds, sigma, nObjects);
  const NeighborWalk neighbors(image, adjacency);
  const imImagePtr costs = createLike(image, 1, imTypeAscii);
  const int *cost = costs->band[0]; // of one object after the other
  int *best = costOut->band[0];
  Queue queue(nPathCosts, image->npixels);
  std::fill_n(best, image->npixels, ifInfiniteCost);
  for (int o = 1; o <= nObjects; ++o) {
    connect(image, neighbors, seeds, o, LinkCost(image, mean[o], sigma[o]), queue, costs.get());
    if (o <= 2)
      writeDebugImage(costs.get(), o);
    for (int p = 0; p < image->npixels; ++p)
      if (cost[p] < best[p]) {
        best[p] = cost[p];
        labelOut->band[0][p] = o;
      }
  }
}

imImage *ifFuzzyEdgesWeight(const imImage *image, imNeighborhoodFn adjacency, int m, int s) {
  requireBands("ifFuzzyEdgesWeight", image, 1);
  if (s == 0)
    fatal("ifFuzzyEdgesWeight: sigma is 0\n");
  const NeighborWalk neighbors(image, adjacency);
  const LinkCost linkCost(image, m, s);
  imImage *weights = imCreateImage(neighbors.size(), imTypeWork, image->ncols, image->nrows);
  for (int p = 0; weights != nullptr && p < image->npixels; ++p)
    neighbors.each(p, [&](int q, int k) { weights->band[k][p] = linkCost(p, q); });
  return weights;
}

imImage *ifTestFuzzy(const imImage *image, int m, int s) {
  requireBands("ifTestFuzzy", image, 1);
  if (s == 0)
    fatal("ifTestFuzzy: sigma is 0\n");
  const NeighborWalk neighbors(image, imNeighborhood4);
  const LinkCost linkCost(image, m, s);
  imImage *average = imCreateImage(1, imTypeAscii, image->ncols, image->nrows);
  for (int p = 0; average != nullptr && p < image->npixels; ++p) {
    std::int64_t sum = 0;
    neighbors.each(p, [&](int q, int) { sum += linkCost(p, q); });
    average->band[0][p] = static_cast<int>(sum >> 2);
  }
  return average;
}
