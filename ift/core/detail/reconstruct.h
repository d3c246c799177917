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

/// End with an error that names the operation, unless the bound, which is given back, is at least 0;
/// or unless the roots are there and all are pixels of the image.
int requireBound(const char *operation, int bound);
void requireRoots(const char *operation, const ifRoots *roots, const imImage *image);

} // namespace seedforest::detail
