// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Grey-level reconstruction (Vincent, "Morphological grayscale reconstruction in image analysis",
// 1993), on which regional extrema and connected filters are built.
#pragma once

#include "ift/core/detail/direction.h"
#include "ift/core/ifRoots.h"

namespace seedforest::detail {

/// The forest image (labels, costs, predecessors) of the reconstruction of band 0 of f from roots:
/// the transform in this direction, with imNeighborhood8 and ifWatershedMetric. The costs are the
/// reconstruction.
///   bound    the largest cost expected
///   isLocal  use the local path cost; pixels that no path reaches take f's value
imImagePtr reconstruct(const Direction &direction, const imImage *f, int bound,
                       const ifRoots *roots, bool isLocal = false);

/// Returns the bound; ends with an error that names the operation where it is negative.
int requireBound(const char *operation, int bound);

} // namespace seedforest::detail
