// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The fast form of the spanning tree of pixels, for built-in weights of one band over values in a
// small range. Internal; iftSpanning.cpp decides when it applies.
//
// As in ift/core/detail/iftPacked.h, all that the loop reads of a pixel is packed into one word, here
// its value, the lightest edge to the tree so far and the displacement of that edge. Costs and
// predecessors follow from the words in raster order. Against the general form that takes half the
// time.
#pragma once

#include "ift/core/ifCost.h"
#include "image/detail/neighborWalk.h"
#include "image/imImage.h"

#include <cstdint>

namespace seedforest::detail {

/// Grows the tree and returns true or, where the weight is not built in, reads another band than the
/// first, or does not fit a word, returns false. `cost` and `pred` are the forest's bands.
bool growPackedTree(const imImage *image, const NeighborWalk &neighbors, ifArcWeightFn arcWeight,
                    int *cost, int *pred);

/// The number of trees that this thread has grown in this form, for tests that check its use.
inline thread_local std::int64_t packedTrees = 0;

} // namespace seedforest::detail
