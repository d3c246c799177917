// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Label differences along contours whose positions are the labels of roots; see
// ifLabelDifferences().
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imImage.h"

#include <limits>

namespace seedforest::detail {

/// The difference at a pixel next to one of a higher contour: more than all others.
inline constexpr int nextToHigher = std::numeric_limits<int>::max();

/// The signed differences of ifLabelDifferences(), for contours that were numbered one after the
/// other: root i has the position i + 1, and its value is the number of its contour. `positions` has
/// one for each pixel of the output, or 0 for none, which is on no contour. Writes the differences,
/// nextToHigher among them, and returns the largest of the others plus 1.
int differencesAlongContours(const int *positions, const ifRoots2 &roots, imImage *output);

} // namespace seedforest::detail
