// The two directions of a transform, for operators that choose one at run time.
#pragma once

#include "base/extremum.h"
#include "ift/core/ifCost.h"

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

} // namespace seedforest::detail
