// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/forest.hpp"

#include "base/arith.h"
#include "base/report.h"
#include "detail/forestTools.h"
#include "detail/quietly.h"
#include "ift/core/ifExactDistance.h"
#include "ift/core/ifWeightImage.h"
#include "ift/core/iftEuclidean.h"
#include "ift/core/iftForest.h"
#include "ift/regions/iftSpanning.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace seedforest {

using namespace detail;

namespace {

int largestOf(const int *values, int n, int largest) {
  for (int i = 0; i < n; ++i)
    largest = std::max(largest, values[i]);
  return largest;
}

// The largest cost that the queue has a bucket for, unless the caller gives one. It covers values
// of at least 0 and their differences; the weights of the caller's own functions are not known.
int boundOf(const Image &image, ifArcWeightFn weight, const ForestOptions &options) {
  constexpr int chamferStep = 17;
  constexpr int unknown = 65535;
  if (options.maxCost.has_value())
    return *options.maxCost;
  int bound = std::max(image.maxValue(), chamferStep);
  for (int b = 0; b < image.nbands(); ++b)
    bound = largestOf(image.get()->band[b], image.npixels(), bound);
  const auto named = {arcWeight::watershed, arcWeight::euclidean, arcWeight::largestDifference,
                      arcWeight::chamfer};
  return std::ranges::find(named, weight) == named.end() ? std::max(bound, unknown) : bound;
}

// The forest that transform(record) writes into the three bands of a record.
template <class Transform>
Forest grown(const Image &image, const Roots &roots, Transform transform) {
  Forest forest = {like(image), like(image), like(image)};
  Bands<3> bands({&forest.labels, &forest.costs, &forest.predecessors});
  transform(bands.get());
  const ifRoots *list = roots.get();
  forest.labels.setMaxValue(largestOf(list->label, list->n, 0));
  return forest;
}

// A transform without scaled weights, from `start`: the roots, perhaps with other values.
Forest grow(const Image &image, const Roots &roots, const ifRoots &start, ifPathCostFn cost,
            ifArcWeightFn weight, const ForestOptions &options) {
  const auto transform = options.best == Best::least ? iftNonNormalized : iftNonNormalizedInverted;
  return grown(image, roots, [&](imImage *bands) {
    withinMask(image, start, cost, weight, options,
               [&](const ifRoots &inside, ifPathCostFn c, ifArcWeightFn w) {
                 withNeighborhood(options.adjacency, [&](imNeighborhoodFn adjacency) {
                   transform(image.get(), bands, adjacency, w, boundOf(image, weight, options), c,
                             &inside);
                 });
               });
  });
}

ArcWeights weighed(imImage *(*operation)(const imImage *image, imNeighborhoodFn adjacency),
                   const Image &image, const Adjacency &adjacency) {
  return quietly([&] {
    return withNeighborhood(adjacency, [&](imNeighborhoodFn neighbors) {
      return ArcWeights{made(operation(recordOf(image), neighbors))};
    });
  });
}

} // namespace

namespace detail {

Forest growForest(const Image &image, const Roots &roots, ifPathCostFn cost, ifArcWeightFn weight,
                  const ForestOptions &options) {
  return quietly([&] { return grow(image, roots, *roots.get(), cost, weight, options); });
}

Forest growScaledForest(const Image &image, const Roots &roots, ifPathCostFn cost,
                        ifArcWeightFn weight, const ForestOptions &options) {
  return quietly([&] {
    return grown(image, roots, [&](imImage *bands) {
      withNeighborhood(options.adjacency, [&](imNeighborhoodFn adjacency) {
        if (options.mask == nullptr)
          ift(image.get(), bands, adjacency, weight, cost, roots.get());
        else
          iftMask(image.get(), bands, recordOf(*options.mask), adjacency, weight, cost,
                  roots.get());
      });
    });
  });
}

SpanningTree growSpanningTree(const Image &image, ifArcWeightFn weight,
                              const Adjacency &adjacency) {
  return quietly([&] {
    SpanningTree tree = {like(image), like(image)};
    Bands<2> bands({&tree.costs, &tree.predecessors});
    withNeighborhood(adjacency, [&](imNeighborhoodFn neighbors) {
      iftPrim(image.get(), bands.get(), neighbors, weight);
    });
    return tree;
  });
}

} // namespace detail

Forest watershed(const Image &image, const Roots &roots, const ForestOptions &options) {
  return quietly([&] {
    const FloodRoots start(image, roots);
    ForestOptions least = options;
    least.best = Best::least;
    return grow(image, roots, start.get(), pathCost::max, arcWeight::watershed, least);
  });
}

ArcWeights euclideanWeights(const Image &image, const Adjacency &adjacency) {
  return weighed(euclideanWF, image, adjacency);
}

ArcWeights gaussianWeights(const Image &image, const Adjacency &adjacency) {
  return weighed(gaussianWF, image, adjacency);
}

ArcWeights stepWeights(const Image &image, const Adjacency &adjacency) {
  return weighed(gaussian2WF, image, adjacency);
}

ArcWeights watershedWeights(const Image &image, const Adjacency &adjacency) {
  return weighed(watershedWF, image, adjacency);
}

Forest forest(const ArcWeights &weights, const Roots &roots, ifPathCostFn cost, int maxCost) {
  return quietly([&] {
    return grown(weights.image, roots, [&](imImage *bands) {
      const imImage *record = weights.image.get();
      iftNonNormalizedWF(record, bands, record, maxCost, cost, roots.get());
    });
  });
}

Forest scaledForest(const ArcWeights &weights, const Roots &roots, ifPathCostFn cost,
                    const Image &mask) {
  return quietly([&] {
    return grown(weights.image, roots, [&](imImage *bands) {
      const imImage *record = weights.image.get();
      iftMaskWF(record, bands, recordOf(mask), record, cost, roots.get());
    });
  });
}

Forest distanceTransform(const Image &image, const Roots &roots, const Adjacency &adjacency) {
  return quietly([&] {
    return grown(image, roots, [&](imImage *bands) {
      withNeighborhood(adjacency, [&](imNeighborhoodFn neighbors) {
        iftEuclideanDT(image.get(), bands, neighbors, roots.get());
      });
    });
  });
}

Forest distanceTransform(const Image &shape) {
  return quietly([&] {
    requireBands("distanceTransform", recordOf(shape), 1);
    Roots outside;
    const std::span<const int> values = shape.pixels();
    for (int p = 0; p < shape.npixels(); ++p)
      if (values[static_cast<std::size_t>(p)] <= 0)
        outside.push_back({p, 1});
    return distanceTransform(shape, outside);
  });
}

NearestRoots exactDistanceTransform(const Image &image, const Roots &roots) {
  return quietly([&] {
    Forest nearest = grown(
        image, roots, [&](imImage *bands) { ifExactDistance(image.get(), bands, roots.get()); });
    return NearestRoots{std::move(nearest.labels), std::move(nearest.costs),
                        std::move(nearest.predecessors)};
  });
}

Image SpanningTree::cut(double fraction) const {
  return quietly([&] {
    Bands<2> bands({&costs, &predecessors});
    Image labels = like(costs);
    ifMstThreshold(bands.get(), labels.get(), fraction);
    return labels;
  });
}

std::vector<int> Forest::path(int pixel) const {
  return quietly([&] {
    requireBands("path", recordOf(predecessors), 1);
    std::vector<int> pixels;
    const std::span<const int> before = predecessors.pixels();
    for (int p = pixel;; p = before[static_cast<std::size_t>(p)]) {
      requirePixel("path", predecessors.get(), p);
      if (!pixels.empty() && pixels.back() == p)
        return pixels;
      if (pixels.size() == before.size())
        fatal("path: the predecessors of pixel %d lead in a circle\n", pixel);
      pixels.push_back(p);
    }
  });
}

int Forest::root(int pixel) const {
  return path(pixel).back();
}

} // namespace seedforest
