// Every way of making roots from an image.
#pragma once

#include "seedforest/roots.hpp"

namespace seedforest {

/// The pixels of the image's frame, values 0: all with one label, or each with its place from 1 in
/// the order top, bottom, left, right. See ifFrameAsRoots.
/// Throws Error: an image of one row.
Roots frameRoots(const Image &image, int label);
Roots frameRoots(const Image &image);

/// Masks of the regional extrema, 1 there and 0 elsewhere: 8-connected sets of pixels of one value
/// whose neighbours are all lower (higher). 0 is no maximum and, in type grey, 255 no minimum.
Image regionalMaxima(const Image &image);
Image regionalMinima(const Image &image);

/// A root for each pixel of an extremum, in raster order: the number of the extremum, and the
/// image's value there. `.within(lo, hi)` keeps those of some values.
Roots regionalMaximaRoots(const Image &image);
Roots regionalMinimaRoots(const Image &image);

/// Masks of the extrema that stand out by more than h grey levels, the literature's extended maxima
/// and minima: the regional maxima of the reconstruction of the image from the image less h. They
/// are found for values of any sign; a constant image is one maximum and one minimum.
/// Throws Error: a negative h, or an image whose values differ by 2^31 - 2 - h or more.
Image hMaxima(const Image &image, int h);
Image hMinima(const Image &image, int h);

/// Markers for a watershed: the maxima that stand out by more than h grey levels, after the
/// alternating filter of so many steps, which takes away what is smaller. Each is a connected set
/// of roots with the number of its maximum, from 1 in raster order; values 0.
Roots markers(const Image &image, int h, int steps = 0);

/// The cells of a micrograph: label 2 for markers on bright objects, 1 for the lines between them;
/// values 0. `steps` are those of the filter. See ifCellsRoots, which writes an image too.
/// Throws Error: an image of several bands, or more than 1000000 steps.
Roots cellRoots(const Image &image, int steps);

/// How roots on borders are labelled.
enum class BorderLabels {
  places,  ///< its place along the contour for each pixel; by the 4-adjacency
  objects, ///< the number of its object; by the 8-adjacency
};

/// The border pixels of the shapes (band 0 above 0), in raster order, values 0; see
/// ifDistTransfRoots. The image's own border is none.
Roots contourRoots(const Image &shapes, BorderLabels labels = BorderLabels::places);

/// The border pixels next to the interior, in the order of following the contours: label is the
/// place in it, from 1, and value the number of the contour; see ifSkel2Roots. In the second all
/// border pixels in raster order, numbered curve by curve, values 0; see ifSkel2RootsSplit.
Roots skeletonRoots(const Image &shapes);
Roots skeletonRootsByCurve(const Image &shapes);

} // namespace seedforest
