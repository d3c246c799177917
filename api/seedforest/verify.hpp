// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A check that a forest consists of best paths.
#pragma once

#include "seedforest/forest.hpp"

#include <optional>
#include <string>

#pragma GCC visibility push(default)

namespace seedforest {

/// What is wrong with a forest: at which pixel, and in a sentence.
struct Violation {
  int pixel;
  std::string sentence;
};

namespace detail {
std::optional<Violation> verifyForest(const Forest &forest, const Image &image, const Roots &roots,
                                      ifPathCostFn cost, ifArcWeightFn weight,
                                      const ForestOptions &options);
}

/// Proves that a forest consists of best paths. It checks that each path starts at a root with the
/// root's label and value, that its cost grows along neighbours as `cost` says, and that no arc and
/// no root offers any pixel a better cost. For path costs that never get better along a path, no
/// better forest exists then. The arguments are those of the call of forest().
///   result  empty where all holds; else the first violation in raster order, of the paths before
///           the offers
/// Takes time linear in the number of arcs. Does not check which of several equal paths won.
/// Throws Error: images of different size, a root outside the image.
template <class Cost, class Weight>
std::optional<Violation> verify(const Forest &forest, const Image &image, const Roots &roots,
                                Cost &&cost, Weight &&weight, const ForestOptions &options = {}) {
  return detail::withFunctions(cost, weight, [&](ifPathCostFn c, ifArcWeightFn w) {
    return detail::verifyForest(forest, image, roots, c, w, options);
  });
}

/// The same for a forest of watershed().
std::optional<Violation> verify(const Forest &forest, const Image &image, const Roots &roots,
                                const ForestOptions &options = {});

} // namespace seedforest

#pragma GCC visibility pop
