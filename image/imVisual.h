// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Pictures of results: a mask in a colour, the borders of a segmentation, discs. Each function
// returns a new image, which the caller releases, with maxValue 0.
//
// Ends with an error, in every function: no image, images of different size or with too few bands
// (an error is a line on standard error and status 1, or an exception: base/error.h). Where a
// picture cannot be allocated: as imCreateImage().
#pragma once

#include "image/imImage.h"

#pragma GCC visibility push(default)

/// The image in colour, with the pixels where band 0 of the mask is > 0 in the colour (r, g, b).
/// An image of neither 1 nor 3 bands: "invalid number of bands (expected 1 or 3)\n" on standard
/// error, and no picture; in a scope of ThrowingErrors that line is thrown.
[[nodiscard]] imImage *imHighlightElements(const imImage *image, const imImage *mask, int r, int g,
                                           int b);

/// The image in colour, with the borders between labels (band 0) drawn over it in (r, g, b).
/// Borders are one pixel wide: a pixel is on one when an 8-neighbour has a strictly greater label.
/// Elsewhere an image of type grey or ASCII gives its grey value, one of type colour its bands, one
/// of any other type black. A 1 x 1 image gives black.
[[nodiscard]] imImage *imShowSegm(const imImage *image, const imImage *labels, int r, int g, int b);

/// White discs on black (type grey): around each pixel of value v > 0 in band 0, the pixels at a
/// squared distance of at most v. Time grows with the sum of the discs' heights, not of their
/// areas.
[[nodiscard]] imImage *imPaintCircles(const imImage *radii);

#pragma GCC visibility pop
