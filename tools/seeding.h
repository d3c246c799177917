// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Seeds by methods that the tool does not have.
#pragma once

#include "pixels.h"

#include <cstddef>

namespace seedforest::tools {

/// Roots of the parts of the shapes above the threshold, holes filled, apart at necks as in
/// splitTouching(): of each part the inner half, the pixels at least half as far from the outside
/// as its farthest one. The rest is left to the transform that starts there.
Roots splitRoots(const Image &image, const Threshold &threshold, int h);

/// Adds, with the label above all others, the pixels that are surely background: those not within
/// two pixels of any above the threshold.
/// Throws Error: the largest label is 2^31 - 1.
struct Ground {
  int label;
  std::size_t count; // of the roots added
};
Ground addGround(Roots &roots, const Image &image, const Threshold &threshold);

} // namespace seedforest::tools
