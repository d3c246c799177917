// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Helpers for costs and weights.
#pragma once

#include "ift/core/ifCost.h"

#include <cstdint>

namespace seedforest::detail {

/// The integer part of the square root of sum / count, an integer division; saturating. A distance
/// over `count` >= 1 features whose squared differences have this sum.
int rootOfMean(std::uint64_t sum, int count);

/// The bound of costs for paths through band 0 of an image: the image's maxValue, or the largest
/// value where pixels exceed it.
int costBound(const imImage *image);

} // namespace seedforest::detail
