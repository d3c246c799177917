// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// All functions that make roots from an image.
#pragma once

#include "seedforest/roots.hpp"

#pragma GCC visibility push(default)

namespace seedforest {

/// The pixels of the image's frame, values 0: all with one label, or numbered from 1 in the order
/// top, bottom, left, right. See ifFrameAsRoots.
/// Throws Error: an image of one row.
Roots frameRoots(const Image &image, int label);
Roots frameRoots(const Image &image);

/// Masks of the regional extrema, 1 there and 0 elsewhere: 8-connected sets of pixels of one value
/// whose neighbours are all lower (higher). 0 is no maximum and, in type grey, 255 no minimum.
Image regionalMaxima(const Image &image);
Image regionalMinima(const Image &image);

/// A root for each pixel of an extremum, in raster order: its label is the number of the extremum,
/// its value the image's value there. `.within(lo, hi)` selects a range of values.
Roots regionalMaximaRoots(const Image &image);
Roots regionalMinimaRoots(const Image &image);

/// Masks of the extrema that stand out by more than h grey levels (extended maxima and minima): the
/// regional maxima of the reconstruction of the image from the image minus h, and the dual. Values
/// may have any sign; a constant image is one maximum and one minimum.
/// Throws Error: a negative h, or an image whose values differ by 2^31 - 2 - h or more.
Image hMaxima(const Image &image, int h);
Image hMinima(const Image &image, int h);

/// Markers for a watershed: the maxima that stand out by more than h grey levels after an
/// alternating filter of `steps` steps, which removes small details. Each marker is a connected set
/// of roots with the number of its maximum, from 1 in raster order; values 0.
Roots markers(const Image &image, int h, int steps = 0);

/// The cells of a micrograph: label 2 for markers on bright objects, 1 for the lines between them;
/// values 0. `steps` are those of the filter. See ifCellsRoots; this function does not write its
/// image.
/// Throws Error: an image of several bands, or more than 1000000 steps.
Roots cellRoots(const Image &image, int steps);

/// The labels of roots on borders.
enum class BorderLabels {
  places,  ///< the pixel's position along the contour; borders by the 4-adjacency
  objects, ///< the number of the pixel's object; borders by the 8-adjacency
};

/// The border pixels of the shapes (band 0 above 0), in raster order, values 0; see
/// ifDistTransfRoots. The edge of the image is not a border.
Roots contourRoots(const Image &shapes, BorderLabels labels = BorderLabels::places);

/// skeletonRoots(): the border pixels next to the interior, in the order of following the contours:
/// label is the position in that order, from 1, and value the number of the contour; see
/// ifSkel2Roots. skeletonRootsByCurve(): all border pixels in raster order, numbered curve by
/// curve, values 0; see ifSkel2RootsSplit.
Roots skeletonRoots(const Image &shapes);
Roots skeletonRootsByCurve(const Image &shapes);

} // namespace seedforest

#pragma GCC visibility pop
