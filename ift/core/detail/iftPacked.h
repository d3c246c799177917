// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The fast form of the forest transforms that users run most: the watershed weight with a maximum
// (minimising) or a minimum (maximising), or with their local forms, over values that fit into few
// bits. Internal; iftForest.cpp decides when it applies.
//
// A transform visits pixels in the order of their costs, not in memory order, so its time is mostly
// that of the cache lines touched around each pixel. All that the flood reads of a pixel is packed
// into one word, of 16 bits for values up to 511: its value, later its cost, and the displacement by
// which it was reached; and into one bit, whether it may be conquered. Labels, costs and predecessors
// follow afterwards, in raster order. Against words of 32 bits, with labels written during the flood,
// the words take three quarters of the time, two thirds in large images. Words of 16 bits and the bits
// lie in the forest's own bands.
#pragma once

#include "ift/core/ifRoots.h"
#include "image/detail/neighborWalk.h"

#include <cstdint>

namespace seedforest::detail {

/// Turns costs into keys, and keys into costs.
struct Mirror {
  int origin;
  int direction;
  int operator()(int v) const { return origin + direction * v; }
};

/// A maximising transform runs as the minimising one of keys = maxCost - cost.
struct PackedProblem {
  const imImage *input;
  const int *value; ///< its band 0
  const NeighborWalk &neighbors;
  const ifRoots *seeds;
  int maxCost;
  bool maximise;
  bool local; ///< a path keeps its starting cost, and arcs of a worse weight are closed
  int *label; ///< the forest's bands
  int *cost;
  int *pred;

  Mirror mirror() const { return maximise ? Mirror{maxCost, -1} : Mirror{0, 1}; }
};

/// Computes the forest and returns true or, where a value of the input's band 0 or a seed's cost is
/// outside 0 .. maxCost, or maxCost or the adjacency is too large, returns false.
bool runPacked(const PackedProblem &problem);

/// The number of forests that this thread has computed in this form, for tests that check its use.
inline thread_local std::int64_t packedRuns = 0;

} // namespace seedforest::detail
