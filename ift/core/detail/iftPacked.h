// The fast form of the forest transforms that users run most: the watershed weight with a maximum
// (minimising) or a minimum (maximising), or with their local forms, over values that fit into few
// bits. Internal; iftForest.cpp decides when it applies.
//
// A transform visits pixels in the order of their costs, which is no order in memory: its cost is
// the cache lines touched around each pixel. So all that the loop reads and writes there is packed
// into one word per pixel, and the bands of the forest are filled in afterwards, in order, but for
// the labels, which need the order of the transform.
#pragma once

#include "ift/core/ifRoots.h"
#include "image/detail/neighborWalk.h"

#include <cstdint>

namespace seedforest::detail {

/// A maximising transform runs as the minimising one of keys = maxCost - cost.
struct PackedProblem {
  const imImage *input;
  const NeighborWalk &neighbors;
  const ifRoots *seeds;
  int maxCost;
  bool maximise;
  bool local; ///< a path keeps its first cost, and arcs that weigh worse are closed
  int *label; ///< the forest's bands
  int *cost;
  int *pred;
};

/// Computes the forest and returns true or, where a value of the input's band 0 or a seed's cost is
/// outside 0 .. maxCost, or maxCost or the adjacency is too large, returns false.
bool runPacked(const PackedProblem &problem);

/// How many forests this thread has computed so: a test notices when the fast form is lost.
inline thread_local std::int64_t packedRuns = 0;

} // namespace seedforest::detail
