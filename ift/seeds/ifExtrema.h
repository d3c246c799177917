// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Regional extrema of band 0, and roots on them.
//
// A regional maximum is an 8-connected set of pixels of one value whose every outside 8-neighbour
// is strictly lower; for a regional minimum, strictly higher. Positions outside the image are no
// neighbours, so a constant image is one minimum and one maximum.
//
// They are defined as the places where the image differs from its reconstruction from a copy
// shifted by one grey level (Vincent, "Morphological grayscale reconstruction in image analysis",
// 1993). Shifted values stay inside the grey scale, and where a value cannot be shifted there is no
// extremum: no maximum at 0 and, in an image of type grey, no minimum at 255. For values inside the
// scale (at least 0; at most 255 in type grey, below 2^31 - 1 in others) a flood of plateaus gives
// the same extrema and is used. Other images are reconstructed, and their results may hold
// differences other than 0 and 1.
//
// Each of the first two prints "in ifLabelImage\n" once on standard output, the last two twice.
// Ends with an error, in every operation: no image or no band, maxima of an image whose values and
// maxValue are all negative, memory that cannot be allocated (an error is a line on standard error
// and status 1, or an exception: base/error.h).
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// A new image of type ASCII, maxValue 1: 1 on the extrema, else 0. The caller releases it.
[[nodiscard]] imImage *ifRegionalMinima(const imImage *image);
[[nodiscard]] imImage *ifRegionalMaxima(const imImage *image);

/// A new set with a root for each pixel of an extremum, in raster order: label k for the k-th
/// extremum in raster order of first pixels, value the pixel's own. The caller owns it.
[[nodiscard]] ifRoots *ifRegionalMinimaAsRoots(const imImage *image);
[[nodiscard]] ifRoots *ifRegionalMaximaAsRoots(const imImage *image);

#pragma GCC visibility pop
