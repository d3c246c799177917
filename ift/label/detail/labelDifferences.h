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
/// other: root i has the position i + 1, and its value is the number of its contour. The image's
/// pixels are the positions, or 0 for none, which is on no contour; the differences take their place,
/// nextToHigher among them. Returns the largest of the others plus 1.
int differencesAlongContours(const ifRoots2 &roots, imImage *image);

} // namespace seedforest::detail
