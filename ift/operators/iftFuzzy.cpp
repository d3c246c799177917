// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/iftFuzzy.h"

#include "base/arith.h"
#include "base/inline.h"
#include "base/report.h"
#include "base/require.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/ifCost.h"
#include "ift/operators/detail/fuzzyObjects.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imIO.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

// The costs of links for one object. They depend only on the distance of the average from the mean,
// and are constant from some distance on, so that a short table holds all of them.
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

  int operator()(int p, int q, int) const {
    const std::int64_t average = (std::int64_t{value_[p]} + value_[q]) / 2;
    return cost_[std::min(std::abs(average - mean_), last_)];
  }

  SEEDFOREST_INLINE void prefetch(const NeighborWalk &neighbors, int p) const {
    neighbors.prefetch(value_, p);
  }

private:
  // The square of this distance is at least 32 times sigma. From there on the cost is constant:
  // exp(-32) * 255 truncates to 0, and exp(32) * 255 saturates.
  static std::int64_t lastDistance(int sigma) {
    return static_cast<std::int64_t>(std::sqrt(32.0 * std::abs(static_cast<double>(sigma)))) + 1;
  }

  const int *value_;
  std::int64_t mean_;
  std::int64_t last_;
  Array<int> cost_;
};

// What links cost as they stand in an arc-weight image.
class GivenLinkCost {
public:
  explicit GivenLinkCost(const imImage *weights) : band_(weights->band) {}
  int operator()(int p, int, int k) const { return band_[k][p]; }
  SEEDFOREST_INLINE void prefetch(const NeighborWalk &neighbors, int p) const {
    for (int k = 0; k < neighbors.size(); ++k)
      prefetchAt(band_[k] + p);
  }

private:
  int *const *band_;
};

struct ConnectednessEntry {
  int pixel;
};

// The transform of one object. A path never gets better as it grows, so neighbours that cost no
// more than the pixel itself need no offer. Each bucket holds a single cost, so an entry is
// outdated exactly when its pixel's cost is not that of the bucket.
template <class LinkCost>
class ConnectednessTransform {
public:
  ConnectednessTransform(const NeighborWalk &neighbors, const LinkCost &linkCost, int *cost)
      : neighbors_(neighbors), linkCost_(linkCost), cost_(cost) {}

  using Entry = ConnectednessEntry;
  Entry entry(int q, int, int) const { return {q}; }
  bool isCurrent(Entry entry, int bucket) const { return cost_[entry.pixel] == bucket; }
  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int p = entry.pixel;
    const int settled = cost_[p];
    neighbors_.each(p, [&, settled](int q, int k) SEEDFOREST_INLINE {
      if (cost_[q] > settled)
        offer(q, k, std::max(settled, linkCost_(p, q, k)));
    });
  }
  bool improves(int cost, int q) const { return cost < cost_[q]; }
  void conquer(int, int q, int, int cost) { cost_[q] = cost; }
  int bucket(int cost, int) const { return cost; }
  SEEDFOREST_INLINE void prefetch(int p) const {
    neighbors_.prefetch(cost_, p);
    linkCost_.prefetch(neighbors_, p);
  }

private:
  const NeighborWalk &neighbors_;
  const LinkCost &linkCost_;
  int *cost_;
};

// Seeds cost 0 and links at most 255, so paths cost 0 .. 255.
constexpr int nPathCosts = 256;

void check(const char *operation, const imImage *image, const imImage *labelOut,
           const imImage *costOut, imNeighborhoodFn adjacency, const ifRoots *seeds, int nObjects) {
  requireBands(operation, image, 0);
  requireBands(operation, labelOut, 1);
  requireBands(operation, costOut, 1);
  requireSameSize(operation, image, labelOut);
  requireSameSize(operation, image, costOut);
  requireGiven(operation, "adjacency", adjacency);
  requireGiven(operation, "roots record", seeds);
  for (int i = 0; i < seeds->n; ++i)
    if (seeds->label[i] >= 1 && seeds->label[i] <= nObjects)
      requirePixel(operation, image, seeds->pixel[i]);
}

using Queue = BucketQueue<ConnectednessEntry>;

// The queue is empty before and after.
template <class LinkCost>
void connect(const NeighborWalk &neighbors, const ifRoots *seeds, int object,
             const LinkCost &linkCost, Queue &queue, imImage *costs) {
  int *cost = costs->band[0];
  std::fill_n(cost, costs->npixels, ifInfiniteCost);
  for (int i = 0; i < seeds->n; ++i)
    if (const int p = seeds->pixel[i]; seeds->label[i] == object && cost[p] != 0) {
      cost[p] = 0;
      queue.append(0, {p});
    }
  ConnectednessTransform<LinkCost> transform(neighbors, linkCost, cost);
  propagate(transform, queue);
}

// What objects compete for, and with what they start.
struct Competition {
  imImage *labelOut;
  imImage *costOut;
  const NeighborWalk &neighbors;
  const ifRoots *seeds;
  int nObjects;
  std::int64_t nbuckets; // one for each cost of a path
};

// linkCostOf(o) is what links cost object o; look() as for connectFuzzy().
template <class LinkCostOf>
void compete(const Competition &competition, LinkCostOf linkCostOf,
             const std::function<void(int object, imImage *costs)> &look) {
  const imImagePtr costs = createLike(competition.costOut, 1, imTypeAscii);
  const int npixels = costs->npixels;
  const int *cost = costs->band[0]; // of one object after the other
  int *best = competition.costOut->band[0];
  Queue queue(competition.nbuckets, npixels);
  std::fill_n(best, npixels, ifInfiniteCost);
  for (int o = 1; o <= competition.nObjects; ++o) {
    connect(competition.neighbors, competition.seeds, o, linkCostOf(o), queue, costs.get());
    if (look != nullptr)
      look(o, costs.get());
    for (int p = 0; p < npixels; ++p)
      if (cost[p] < best[p]) {
        best[p] = cost[p];
        competition.labelOut->band[0][p] = o;
      }
  }
}

// The largest weight of a link, among the first n bands of the objects' images.
int largestWeight(const imImage *const *weights, int nObjects, int n) {
  int largest = 0;
  for (int o = 1; o <= nObjects; ++o)
    for (int k = 0; k < n; ++k)
      largest = std::max(largest, largestValue(weights[o], k));
  return largest;
}

} // namespace

namespace seedforest::detail {

void connectFuzzy(const char *operation, const imImage *image, imImage *labelOut, imImage *costOut,
                  imNeighborhoodFn adjacency, const ifRoots *seeds, const int *mean,
                  const int *sigma, int nObjects,
                  const std::function<void(int object, imImage *costs)> &look) {
  requireBands(operation, image, 1);
  check(operation, image, labelOut, costOut, adjacency, seeds, nObjects);
  if (nObjects >= 1) {
    requireGiven(operation, "mean", mean);
    requireGiven(operation, "sigma", sigma);
  }
  for (int o = 1; o <= nObjects; ++o)
    if (sigma[o] == 0)
      fatal("%s: sigma of object %d is 0\n", operation, o);
  const NeighborWalk neighbors(image, adjacency);
  compete(
      {labelOut, costOut, neighbors, seeds, nObjects, nPathCosts},
      [&](int o) { return LinkCost(image, mean[o], sigma[o]); }, look);
}

} // namespace seedforest::detail

void iftFuzzy(const imImage *image, imImage *labelOut, imImage *costOut, imNeighborhoodFn adjacency,
              const ifRoots *seeds, const int *mean, const int *sigma, int nObjects) {
  connectFuzzy("iftFuzzy", image, labelOut, costOut, adjacency, seeds, mean, sigma, nObjects,
               [](int object, imImage *costs) {
                 costs->maxValue = 0; // so that the writer computes it
                 if (object <= 2)
                   imSaveImage(object == 1 ? "tmp1.pgm" : "tmp2.pgm", costs);
               });
}

void iftFuzzyEdges(const imImage *image, imImage *labelOut, imImage *costOut,
                   imNeighborhoodFn adjacency, const ifRoots *seeds, const imImage *const *weights,
                   int nObjects) {
  const char *operation = "iftFuzzyEdges";
  check(operation, image, labelOut, costOut, adjacency, seeds, nObjects);
  const NeighborWalk neighbors(image, adjacency);
  if (nObjects >= 1)
    requireGiven(operation, "list of weights", weights);
  for (int o = 1; o <= nObjects; ++o) {
    requireBands(operation, weights[o], neighbors.size());
    requireSameSize(operation, image, weights[o]);
  }
  const std::int64_t largest = largestWeight(weights, nObjects, neighbors.size());
  compete(
      {labelOut, costOut, neighbors, seeds, nObjects,
       std::max<std::int64_t>(largest + 1, nPathCosts)},
      [weights](int o) { return GivenLinkCost(weights[o]); }, nullptr);
}

imImage *ifFuzzyEdgesWeight(const imImage *image, imNeighborhoodFn adjacency, int m, int s) {
  requireBands("ifFuzzyEdgesWeight", image, 1);
  requireGiven("ifFuzzyEdgesWeight", "adjacency", adjacency);
  if (s == 0)
    fatal("ifFuzzyEdgesWeight: sigma is 0\n");
  const NeighborWalk neighbors(image, adjacency);
  const LinkCost linkCost(image, m, s);
  imImage *weights = imCreateImage(neighbors.size(), imTypeWork, image->ncols, image->nrows);
  for (int p = 0; weights != nullptr && p < image->npixels; ++p)
    neighbors.each(p, [&](int q, int k) { weights->band[k][p] = linkCost(p, q, k); });
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
    neighbors.each(p, [&](int q, int k) { sum += linkCost(p, q, k); });
    average->band[0][p] = static_cast<int>(sum >> 2);
  }
  return average;
}
