// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Shapes: connected components, contours, skeletons, and shapes that touch. Pixels above 0 in band
// 0 belong to a shape.
#pragma once

#include "seedforest/roots.hpp"

#pragma GCC visibility push(default)

namespace seedforest {

/// Labels 1 .. count, 0 for none.
struct Components {
  Image labels;
  int count;
};

/// The 8-connected components of shapes, numbered in the raster order of their first pixels.
Components components(const Image &shapes);

/// Renumbers the values of an image 1 .. count in the raster order of their first pixels, 0 and
/// negative ones like any other.
Components relabel(const Image &labels);

/// 255 on the 8-connected zones of equal value that hold a root, 0 elsewhere.
Image flatZones(const Image &image, const Roots &roots);

/// 255 on the pixels above 0 that have a pixel of 0 among their 4 neighbours, 0 elsewhere. Regions
/// that touch are not separated, and the edge of the image is not a border.
Image innerBorder(const Image &labels);

/// Numbers the pixels of thin curves along their course; see labelContours. The last pixel of each
/// curve skips numbers, so the largest number, labels.maxValue(), exceeds count, the number of
/// pixels.
Components contours(const Image &curves);

/// How far apart along their contour the values of neighbouring pixels lie; see ifLabelDifferences.
Image contourDifferences(const Image &values, const Image &labels, bool absolute = false);

/// Which skeleton of a shape.
enum class Side { inside = 1, outside = 2, both = 0 };

/// A skeleton: the squared distance to the border on its pixels, 0 elsewhere; and the largest
/// useful scale (larger ones count as this one), -99999 for a shape without interior.
struct Skeleton {
  Image squaredDistances;
  int largestScale;
};

/// Multiscale skeleton: the pixels whose nearest border pixel and that of a neighbour lie at least
/// `scale` apart along the contour; the larger the scale, the fewer branches. See ifSkel.
/// Throws Error: an image of several bands.
Skeleton skeleton(const Image &shape, int scale, Side side = Side::inside);

/// The shape that a skeleton's squared distances make: 1 wherever some pixel of value d > 0 lies at a
/// squared distance of at most d. See iftSkelReconstr.
Image shapeOf(const Image &squaredDistances);

/// The shortest 8-connected path within a mask (band 0 above 0) as roots in its order: label is the
/// place, from 1, value the squared straight distance from where it begins. Empty where there is
/// none. See ifEuclideanShortestPath. Throws Error: a pixel outside the image.
Roots shortestPath(const Image &mask, int from, int to);

/// Separates shapes that touch: labels from 1, a different one for each part, 0 outside. The parts
/// are the watershed, within the shape, of the negative of the (not squared) distance to the
/// nearest pixel outside the shape; the markers are the distance's maxima that stand out by more
/// than h pixels. So a neck separates two parts only where its half-width is more than h pixels
/// smaller than that of both parts. Every component has at least one part. Positions beyond the
/// image do not count as outside; a shape that fills the image is one part.
/// Throws Error: a negative h, or one of about 2^30 or more.
Components splitTouching(const Image &shape, int h = 0);

} // namespace seedforest

#pragma GCC visibility pop
