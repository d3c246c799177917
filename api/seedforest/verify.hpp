// The proof that a forest is right.
#pragma once

#include "seedforest/forest.hpp"

#include <optional>
#include <string>

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

/// Whether a forest is one of best paths: each path leads from a root, with the root's label and a
/// cost that starts at its value and grows as `cost` says along neighbours; and no arc, and no
/// root, offers any pixel a better one. Nothing then could be better, for costs that never get
/// better along a path. The arguments are those that forest() was called with.
///   result  none where all holds; else the first violation, in raster order: of all paths, then of
///           all offers
/// Takes a time that is linear in the number of arcs. Which of several equal paths won is not
/// asked.
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
