// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The fast form of the spanning tree of pixels, for built-in weights of one band over values in a
// small range, and neighbours that touch. Internal; iftSpanning.cpp decides when it applies.
//
// Pixels are not taken in memory order, so the time is mostly that of the cache lines touched around
// each. All that the loop reads of a pixel is packed into one word, of 16 bits for values in a range
// of 255: its value and the weight of the lightest edge to it so far. The edge itself waits in the
// queue. Costs and predecessors follow in raster order. Against the general form that takes half the
// time.
#pragma once

#include "ift/core/ifCost.h"
#include "image/detail/neighborWalk.h"
#include "image/imImage.h"

#include <cstdint>

namespace seedforest::detail {

/// Grows the tree and returns true or, where the weight, its values or the adjacency are others,
/// returns false. `cost` and `pred` are the forest's bands.
bool growPackedTree(const imImage *image, const NeighborWalk &neighbors, ifArcWeightFn arcWeight,
                    int *cost, int *pred);

/// The number of trees that this thread has grown in this form, for tests that check its use.
inline thread_local std::int64_t packedTrees = 0;

} // namespace seedforest::detail
