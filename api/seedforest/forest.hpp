// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Image foresting transforms: every pixel gets the best path from some root. See iftForest.h for
// the algorithm and its ties.
#pragma once

#include "ift/core/ifCost.h"
#include "seedforest/adjacency.hpp"
#include "seedforest/detail/through.hpp"
#include "seedforest/roots.hpp"

#include <optional>
#include <vector>

#pragma GCC visibility push(default)

namespace seedforest {

/// The best paths of all pixels, as images of type ascii.
struct Forest {
  /// The label of the root whose path won, 0 where no path arrived. maxValue is the largest label
  /// of the roots.
  Image labels;

  /// The cost of that path. Where no path arrived it is infinite: 2^31 - 1, or -2^31 for
  /// Best::greatest.
  Image costs;

  /// The pixel before on that path; the pixel itself at roots and where no path arrived.
  Image predecessors;

  /// path(): the pixels from this one to the root of its path, both included. root(): the last of
  /// them.
  /// Throws Error: a pixel outside the image, or predecessors that lead out of it or in a circle.
  std::vector<int> path(int pixel) const;
  int root(int pixel) const;
};

/// Path costs by name; see ifCost.h. Any function of (cost, weight) may be used instead.
namespace pathCost {
inline constexpr ifPathCostFn max = ifPathCostMax;
inline constexpr ifPathCostFn min = ifPathCostMin;
inline constexpr ifPathCostFn sum = ifPathCostSum;
inline constexpr ifPathCostFn maxLocal = ifPathCostMaxLocal;
inline constexpr ifPathCostFn minLocal = ifPathCostMinLocal;
} // namespace pathCost

/// Arc weights by name; see ifCost.h. Any function of the pixels (p, q) at an arc's ends, or of
/// (const imImage *, p, q), may be used instead.
namespace arcWeight {
inline constexpr ifArcWeightFn watershed = ifWatershedMetric;
inline constexpr ifArcWeightFn euclidean = ifEuclideanDistance;
inline constexpr ifArcWeightFn largestDifference = ifMaxDistance;
inline constexpr ifArcWeightFn chamfer = ifChanferDistance;
} // namespace arcWeight

/// Which costs are the best.
enum class Best { least, greatest };

struct ForestOptions {
  Adjacency adjacency = Adjacency::eight();
  Best best = Best::least;

  /// The largest cost that occurs or, where weights add up and roots start at 0, the largest
  /// weight. The default is the largest of the image's values, its maxValue and 17 (a chamfer
  /// step), which is enough for the named weights on values of at least 0; for other weights it is
  /// at least 65535. Larger costs are served in remainder order, and their paths may not be the
  /// best.
  std::optional<int> maxCost = std::nullopt;

  /// Roots are used only where band 0 of the mask is above 0; paths lead only to pixels where it is
  /// not 0.
  const Image *mask = nullptr;
};

namespace detail {

Forest growForest(const Image &image, const Roots &roots, ifPathCostFn cost, ifArcWeightFn weight,
                  const ForestOptions &options);
Forest growScaledForest(const Image &image, const Roots &roots, ifPathCostFn cost,
                        ifArcWeightFn weight, const ForestOptions &options);

/// Calls use(cost, weight) with the two as plain functions.
template <class Cost, class Weight, class Use>
decltype(auto) withFunctions(Cost &cost, Weight &weight, Use use) {
  return withFunction<ifPathCostFn>(cost, [&](ifPathCostFn costFunction) -> decltype(auto) {
    return withFunction<ifArcWeightFn>(weight, [&](ifArcWeightFn weightFunction) -> decltype(auto) {
      return use(costFunction, weightFunction);
    });
  });
}

} // namespace detail

/// The forest of the paths of best cost from the roots, each of which starts at its value.
///   cost, weight  names from above, functions, or other callables. Named ones and plain functions
///                 are passed to the library as they are. A lambda that captures is called through
///                 a thread-local pointer, which takes a load or two for each arc: 0 to 2 % more
///                 instructions for a transform than with a plain function, counted on an image of
///                 512 x 512. It may throw.
/// Throws Error: a root outside the image, a negative maxCost.
template <class Cost, class Weight>
Forest forest(const Image &image, const Roots &roots, Cost &&cost, Weight &&weight,
              const ForestOptions &options = {}) {
  return detail::withFunctions(cost, weight, [&](ifPathCostFn c, ifArcWeightFn w) {
    return detail::growForest(image, roots, c, w, options);
  });
}

/// The same with weights of 0 .. 1000 multiplied by 49, in a queue for costs up to 49999;
/// options.maxCost and options.best are not read. See ift and iftMask.
template <class Cost, class Weight>
Forest scaledForest(const Image &image, const Roots &roots, Cost &&cost, Weight &&weight,
                    const ForestOptions &options = {}) {
  return detail::withFunctions(cost, weight, [&](ifPathCostFn c, ifArcWeightFn w) {
    return detail::growScaledForest(image, roots, c, w, options);
  });
}

/// The watershed of an image (band 0) from roots: each pixel goes to the root that reaches it over
/// the lowest crest. Costs are the crests' heights. Roots start at the image's value at their
/// pixel, so that each keeps its pixel; their own values and options.best are not read. Values are
/// expected to be at least 0.
/// Throws Error: a root outside the image.
Forest watershed(const Image &image, const Roots &roots, const ForestOptions &options = {});

/// The weights of all arcs of an image, computed in advance: a band for each displacement of the
/// adjacency; a negative weight means no arc. See ifWeightImage.h.
struct ArcWeights {
  Image image;
};
ArcWeights euclideanWeights(const Image &image, const Adjacency &adjacency = Adjacency::eight());
ArcWeights gaussianWeights(const Image &image, const Adjacency &adjacency = Adjacency::eight());
ArcWeights stepWeights(const Image &image, const Adjacency &adjacency = Adjacency::eight());
ArcWeights watershedWeights(const Image &image, const Adjacency &adjacency = Adjacency::eight());

/// Forests of least costs on arc weights. The second multiplies weights as scaledForest() does,
/// within a mask (iftMaskWF).
Forest forest(const ArcWeights &weights, const Roots &roots, ifPathCostFn cost, int maxCost = 1000);
Forest scaledForest(const ArcWeights &weights, const Roots &roots, ifPathCostFn cost,
                    const Image &mask);

/// The Euclidean distance transform: costs are the squared distances to the nearest root, labels
/// its label. With the 8-adjacency some pixels, rarely, are given to a root that is a little
/// farther than their nearest; see iftEuclideanDT. The image gives the size; the roots' values are
/// not read.
Forest distanceTransform(const Image &image, const Roots &roots,
                         const Adjacency &adjacency = Adjacency::eight());

/// The same with a root of label 1 at every pixel outside a shape: the squared distance of the
/// shape's pixels (band 0 above 0) to the nearest pixel outside. Infinite for all where the shape
/// fills the image.
Forest distanceTransform(const Image &shape);

/// Of each pixel the nearest root, 0 and infinite where there is none.
struct NearestRoots {
  Image labels;           ///< the root's label; maxValue as of a Forest
  Image squaredDistances; ///< to the root; infinite is 2^31 - 1
  Image pixels;           ///< the root's pixel; the pixel itself where there is none
};

/// The exact Euclidean distance transform: of roots equally near the first in the list wins; see
/// ifExactDistance. Faster than distanceTransform(), without paths.
NearestRoots exactDistanceTransform(const Image &image, const Roots &roots);

/// The minimum spanning tree of an image's pixels from pixel 0, for weights of 0 .. 1000: 49 times
/// each pixel's weight to its predecessor, and the predecessor; see iftPrim.
struct SpanningTree {
  Image costs;
  Image predecessors;

  /// Cuts the tree at the weights above a fraction of the largest: an image of labels, each the
  /// index of a pixel of its part; see ifMstThreshold. relabel() numbers them from 1.
  Image cut(double fraction) const;
};

namespace detail {
SpanningTree growSpanningTree(const Image &image, ifArcWeightFn weight, const Adjacency &adjacency);
}

template <class Weight>
SpanningTree spanningTree(const Image &image, Weight &&weight,
                          const Adjacency &adjacency = Adjacency::eight()) {
  return detail::withFunction<ifArcWeightFn>(weight, [&](ifArcWeightFn function) {
    return detail::growSpanningTree(image, function, adjacency);
  });
}

} // namespace seedforest

#pragma GCC visibility pop
