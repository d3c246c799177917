// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Grey-level reconstruction from a marker image where only the values are wanted, no labels, and so
// no order of ties: hybrid reconstruction (Vincent, "Morphological grayscale reconstruction in image
// analysis", 1993). A sweep in raster order and one backward reach most pixels; the others are
// flooded from those that still improve a neighbour, in the order of their values, so that each
// pixel is settled once.
#pragma once

#include "ift/core/detail/direction.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// The reconstruction of band 0 of f from band 0 of a marker, which has no values better than f's,
/// 8-connected: a new image of one band and f's type. Null where a value is not 0 .. maxInt - 1, or
/// there is no band.
imImagePtr reconstructValues(const Direction &direction, const imImage *f, const imImage *marker);

} // namespace seedforest::detail
