// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The two directions of a transform: for operations that choose one at run time, and as types for
// loops that are compiled for each.
#pragma once

#include "base/extremum.h"
#include "ift/core/ifCost.h"

#include <cstdint>

namespace seedforest::detail {

/// What a transform does in one direction: which of two costs it prefers, and the path costs that
/// then make it a reconstruction.
struct Direction {
  Extremum best;
  int unreached;              ///< the cost of a pixel at which no path arrives
  ifPathCostFn pathCost;      ///< the worst of the starting cost and all values on the way
  ifPathCostFn localPathCost; ///< the same, for paths on which no value is worse than their start
};

/// Maximising, as a reconstruction by dilation; it finds regional maxima.
inline constexpr Direction byDilation = {Extremum::largest, ifInfiniteCostInverted, ifPathCostMin,
                                         ifPathCostMinLocal};

/// Minimising, as a reconstruction by erosion; it finds regional minima.
inline constexpr Direction byErosion = {Extremum::smallest, ifInfiniteCost, ifPathCostMax,
                                        ifPathCostMaxLocal};

/// The same as types, with the strict test, and the key by which a cost finds its bucket when costs
/// are expected up to maxCost.
struct Minimising {
  static constexpr const Direction &direction = byErosion;
  static constexpr bool isBetter(int a, int b) { return a < b; }
  static std::int64_t key(int cost, int) { return cost; }
};
struct Maximising {
  static constexpr const Direction &direction = byDilation;
  static constexpr bool isBetter(int a, int b) { return a > b; }
  static std::int64_t key(int cost, int maxCost) { return std::int64_t{maxCost} - cost; }
};

} // namespace seedforest::detail
