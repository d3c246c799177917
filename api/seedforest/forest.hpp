// Image foresting transforms: every pixel gets the best path from some root. See iftForest.h for
// the algorithm and its ties.
#pragma once

#include "ift/core/ifCost.h"
#include "seedforest/adjacency.hpp"
#include "seedforest/detail/through.hpp"
#include "seedforest/roots.hpp"

#include <optional>
#include <vector>

namespace seedforest {

/// The best paths of all pixels, as images of type ascii.
struct Forest {
  /// Of the root whose path won, 0 where none arrived. maxValue is the largest label of the roots.
  Image labels;

  /// Of that path; infinite, which is 2^31 - 1, or -2^31 where the greatest is best, where none
  /// did.
  Image costs;

  /// The pixel before on that path; the pixel itself at roots, and where none did.
  Image predecessors;

  /// The pixels from a pixel to the root of its path, both included; and the root's pixel alone.
  /// Throws Error: a pixel outside the image, or predecessors that lead out of it or in a circle.
  std::vector<int> path(int pixel) const;
  int root(int pixel) const;
};

/// How costs grow along paths, by name; see ifCost.h. Any function of (cost, weight) may stand for
/// one.
namespace pathCost {
inline constexpr ifPathCostFn max = ifPathCostMax;
inline constexpr ifPathCostFn min = ifPathCostMin;
inline constexpr ifPathCostFn sum = ifPathCostSum;
inline constexpr ifPathCostFn maxLocal = ifPathCostMaxLocal;
inline constexpr ifPathCostFn minLocal = ifPathCostMinLocal;
} // namespace pathCost

/// What arcs weigh, by name; see ifCost.h. Any function of the pixels (p, q) at an arc's ends may
/// stand for one, or of (const imImage *, p, q).
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
  /// weight. By default the largest of the image's values, its maxValue and 17 (a chamfer's step),
  /// which is enough for the weights with a name on values of at least 0; and at least 65535 for
  /// other weights. Costs beyond are served in remainder order, so that paths may not be the best.
  std::optional<int> maxCost = std::nullopt;

  /// Roots count where its band 0 is above 0, and paths lead where it is not 0 only.
  const Image *mask = nullptr;
};

namespace detail {

Forest growForest(const Image &image, const Roots &roots, ifPathCostFn cost, ifArcWeightFn weight,
                  const ForestOptions &options);
Forest growScaledForest(const Image &image, const Roots &roots, ifPathCostFn cost,
                        ifArcWeightFn weight, const ForestOptions &options);

/// use(cost and weight as the library's functions).
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
///   cost, weight  names from above, functions, or anything that can be called like them. The named
///                 ones and plain functions are passed to the library as they are. A lambda that
///                 captures is called through a pointer that its thread has for it, which costs a
///                 load or two for each arc: 0 to 2 % more instructions of a transform than a plain
///                 function, counted on an image of 512 x 512. It may throw.
/// Throws Error: a root outside the image, a negative maxCost.
template <class Cost, class Weight>
Forest forest(const Image &image, const Roots &roots, Cost &&cost, Weight &&weight,
              const ForestOptions &options = {}) {
  return detail::withFunctions(cost, weight, [&](ifPathCostFn c, ifArcWeightFn w) {
    return detail::growForest(image, roots, c, w, options);
  });
}

/// The same with weights of 0 .. 1000 multiplied by 49, in a queue for costs up to 49999; neither
/// options.maxCost nor options.best is read. See ift and iftMask.
template <class Cost, class Weight>
Forest scaledForest(const Image &image, const Roots &roots, Cost &&cost, Weight &&weight,
                    const ForestOptions &options = {}) {
  return detail::withFunctions(cost, weight, [&](ifPathCostFn c, ifArcWeightFn w) {
    return detail::growScaledForest(image, roots, c, w, options);
  });
}

/// The watershed of an image (band 0) from roots: each pixel goes to the root that reaches it over
/// the lowest crest. Costs are the crests' heights. Roots start at the image's value where they
/// stand, whatever their own values are, so that each keeps its pixel. Values are expected to be at
/// least 0. options.best is not read.
/// Throws Error: a root outside the image.
Forest watershed(const Image &image, const Roots &roots, const ForestOptions &options = {});

/// The weights of all arcs of an image, computed in advance: a band for each displacement of the
/// adjacency; a negative one is no arc. See ifWeightImage.h.
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
/// its label. With the 8-adjacency a pixel is rarely handed to a root that is a little farther than
/// its nearest; see iftEuclideanDT. The image gives the size; the roots' values are not read.
Forest distanceTransform(const Image &image, const Roots &roots,
                         const Adjacency &adjacency = Adjacency::eight());

/// The same from every pixel outside a shape, label 1: how far the shape's pixels (band 0 above 0)
/// are from the nearest one outside. Without such a pixel all distances are infinite.
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

  /// Cuts it at the weights above a fraction of the largest: an image of labels, each the index of
  /// a pixel of its part; see ifMstThreshold. relabel() numbers them from 1.
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
