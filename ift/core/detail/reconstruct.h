// Grey-level reconstruction, on which regional extrema and connected filters are built.
#pragma once

#include "ift/core/detail/direction.h"
#include "ift/core/ifRoots.h"

namespace seedforest::detail {

/// The forest image (labels, costs, predecessors) of the reconstruction of band 0 of f from roots:
/// the transform in this direction, with imNeighborhood8 and ifWatershedMetric. The costs are the
/// reconstruction.
///   bound    the largest cost expected
///   isLocal  paths by the local path cost; pixels that none of them reaches take f's value
imImagePtr reconstruct(const Direction &direction, const imImage *f, int bound,
                       const ifRoots *roots, bool isLocal = false);

/// Gives the bound back; ends with an error that names the operation unless it is at least 0.
int requireBound(const char *operation, int bound);

} // namespace seedforest::detail
