// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/verify.hpp"

#include "base/buffer.h"
#include "detail/forestTools.h"
#include "image/detail/neighborWalk.h"

#include <string>

namespace seedforest {

using namespace detail;

namespace {

using Found = std::optional<Violation>;

class Proof {
public:
  Proof(const Forest &forest, const imImage *image, const ifRoots &roots, ifPathCostFn cost,
        ifArcWeightFn weight, imNeighborhoodFn adjacency, Best best)
      : bands_({&forest.labels, &forest.costs, &forest.predecessors}), image_(image), roots_(roots),
        extend_(cost), weigh_(weight), neighbors_(image, adjacency), best_(best),
        rootAt_(makeArray<int>(image->npixels)), state_(makeZeroedArray<char>(image->npixels)) {
    requireSameSize("verify", bands_.get(), image);
    const imImage *record = bands_.get();
    label_ = record->band[0];
    cost_ = record->band[1];
    predecessor_ = record->band[2];
    std::fill_n(rootAt_.get(), image->npixels, none);
    for (int i = 0; i < roots.n; ++i) {
      requirePixel("a root", image, roots.pixel[i]);
      rootAt_[roots.pixel[i]] = i; // the last one of a pixel counts
    }
  }

  Found find() {
    for (int p = 0; p < image_->npixels; ++p)
      if (Found found = wrongStep(p))
        return found;
    for (int p = 0; p < image_->npixels; ++p)
      if (endsInCircle(p))
        return Violation{p, name(p) + " has a path that leads in a circle"};
    for (int p = 0; p < image_->npixels; ++p)
      if (Found found = betterOffer(p))
        return found;
    return std::nullopt;
  }

private:
  static constexpr int none = -1;

  bool isBetter(int a, int b) const { return best_ == Best::least ? a < b : a > b; }
  bool isReached(int p) const { return cost_[p] != infiniteCost(best_); }

  std::string name(int p) const {
    return "pixel (" + std::to_string(p % image_->ncols) + ", " +
           std::to_string(p / image_->ncols) + ")";
  }

  // Whether a pixel's cost and label do not follow from its predecessor or, at a start, from a
  // root.
  Found wrongStep(int p) const {
    const int from = predecessor_[p];
    if (from < 0 || from >= image_->npixels)
      return Violation{p, name(p) + " has a predecessor outside the image"};
    if (from == p)
      return wrongStart(p);
    const bool adjacent = neighbors_.any(from % image_->ncols, from / image_->ncols,
                                         [p](int q, int) { return q == p; });
    if (!adjacent)
      return Violation{p, name(p) + " follows " + name(from) + ", which is no neighbour"};
    if (!isReached(from))
      return Violation{p, name(p) + " follows " + name(from) + ", which no path reaches"};
    return compare(p, label_[from], extend_(cost_[from], weigh_(image_, from, p)),
                   "where its path gives ");
  }

  Found wrongStart(int p) const {
    const int i = rootAt_[p];
    if (i != none)
      return compare(p, roots_.label[i], roots_.value[i], "where its root gives ");
    return compare(p, 0, infiniteCost(best_), "where no path starts, which gives ");
  }

  Found compare(int p, int label, int cost, const char *why) const {
    if (label_[p] != label)
      return Violation{p, name(p) + " has label " + std::to_string(label_[p]) + " " + why +
                              std::to_string(label)};
    if (cost_[p] != cost)
      return Violation{p, name(p) + " has cost " + std::to_string(cost_[p]) + " " + why +
                              std::to_string(cost)};
    return std::nullopt;
  }

  // Follows a path to a pixel whose path is known to end, or that is its own predecessor. A second
  // pass marks the pixels on the way.
  bool endsInCircle(int p) {
    enum : char { unseen, onTheWay, ends };
    int q = p;
    for (; state_[q] == unseen && predecessor_[q] != q; q = predecessor_[q])
      state_[q] = onTheWay;
    if (state_[q] == onTheWay)
      return true;
    state_[q] = ends;
    for (; state_[p] == onTheWay; p = predecessor_[p])
      state_[p] = ends;
    return false;
  }

  Found betterOffer(int p) const {
    const int i = rootAt_[p];
    if (i != none && isBetter(roots_.value[i], cost_[p]))
      return Violation{p, name(p) + " has cost " + std::to_string(cost_[p]) +
                              ", and its root offers " + std::to_string(roots_.value[i])};
    if (!isReached(p))
      return std::nullopt;
    Found found;
    neighbors_.any(p % image_->ncols, p / image_->ncols, [&](int q, int) {
      const int offer = extend_(cost_[p], weigh_(image_, p, q));
      if (!isBetter(offer, cost_[q]))
        return false;
      found = Violation{q, name(q) + " has cost " + std::to_string(cost_[q]) + ", and " + name(p) +
                               " offers " + std::to_string(offer)};
      return true;
    });
    return found;
  }

  Bands<3> bands_;
  const imImage *image_;
  const ifRoots &roots_;
  ifPathCostFn extend_;
  ifArcWeightFn weigh_;
  NeighborWalk neighbors_;
  Best best_;
  Array<int> rootAt_;
  Array<char> state_;
  const int *label_;
  const int *cost_;
  const int *predecessor_;
};

Found proved(const Forest &forest, const Image &image, const ifRoots &roots, ifPathCostFn cost,
             ifArcWeightFn weight, const ForestOptions &options) {
  const imImage *record = recordOf(image);
  if (weight == arcWeight::watershed)
    requireBands("verify", record, 1);
  return withinMask(image, roots, cost, weight, options,
                    [&](const ifRoots &inside, ifPathCostFn c, ifArcWeightFn w) {
                      return withNeighborhood(options.adjacency, [&](imNeighborhoodFn adjacency) {
                        return Proof(forest, record, inside, c, w, adjacency, options.best).find();
                      });
                    });
}

} // namespace

namespace detail {

Found verifyForest(const Forest &forest, const Image &image, const Roots &roots, ifPathCostFn cost,
                   ifArcWeightFn weight, const ForestOptions &options) {
  return quietly([&] { return proved(forest, image, *roots.get(), cost, weight, options); });
}

} // namespace detail

Found verify(const Forest &forest, const Image &image, const Roots &roots,
             const ForestOptions &options) {
  return quietly([&] {
    const FloodRoots start(image, roots);
    ForestOptions least = options;
    least.best = Best::least;
    return proved(forest, image, start.get(), pathCost::max, arcWeight::watershed, least);
  });
}

} // namespace seedforest
