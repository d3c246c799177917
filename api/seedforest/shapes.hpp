// Shapes: connected components, contours, skeletons, and shapes that touch. Pixels above 0 in band
// 0 belong to a shape.
#pragma once

#include "seedforest/roots.hpp"

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
/// that touch are not separated, and the image's own border is none.
Image innerBorder(const Image &labels);

/// Numbers the pixels of thin curves along their course; see labelContours. The last pixel of a
/// curve takes a number two above the one before, so the largest is labels.maxValue(); count is
/// that of pixels.
Components contours(const Image &curves);

/// How far apart along their contour the values of neighbouring pixels lie; see ifLabelDifferences.
Image contourDifferences(const Image &values, const Image &labels, bool absolute = false);

/// Which skeleton of a shape.
enum class Side { inside = 1, outside = 2, both = 0 };

/// A skeleton: each pixel of it with its squared distance to the border, 0 elsewhere; and the
/// largest scale that leaves one, -99999 for a shape without interior.
struct Skeleton {
  Image squaredDistances;
  int largestScale;
};

/// Multiscale skeleton: the pixels whose neighbours' nearest border pixels lie at least `scale`
/// apart along the contour; the larger the scale, the fewer branches. See ifSkel.
/// Throws Error: an image of several bands.
Skeleton skeleton(const Image &shape, int scale, Side side = Side::inside);

/// The shape that a skeleton's squared distances make: 1 wherever some pixel of value d > 0 lies at a
/// squared distance of at most d. See iftSkelReconstr.
Image shapeOf(const Image &squaredDistances);

/// The shortest 8-connected path within a mask (band 0 above 0) as roots in its order: label is the
/// place, from 1, value the squared straight distance from where it begins. Empty where there is
/// none. See ifEuclideanShortestPath. Throws Error: a pixel outside the image.
Roots shortestPath(const Image &mask, int from, int to);

/// Separates shapes that touch: labels from 1, a different one for each part, 0 outside. A part is
/// what grows around a maximum, by more than h pixels, of the (not squared) distance to the nearest
/// pixel outside the shape: the watershed of the distance's negative within the shape. Necks that
/// are narrower than what they join by h pixels or less, counted from the middle, do not separate.
/// Every component has a part of its own at least. Pixels beyond the image are not outside; a shape
/// that fills the image is one part.
/// Throws Error: a negative h, or one of about 2^30 or more.
Components splitTouching(const Image &shape, int h = 0);

} // namespace seedforest
