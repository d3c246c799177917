// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Connected filters of band 0, which do not move borders: they lower or raise flat zones only as a
// whole (ifConnected.h); and relative fuzzy connectedness.
#pragma once

#include "seedforest/adjacency.hpp"
#include "seedforest/roots.hpp"

#include <span>

#pragma GCC visibility push(default)

namespace seedforest {

/// The filtered image, of the type of the first argument unless said otherwise, and the label of
/// the root that reached each pixel, 0 where none did.
struct Filtered {
  Image image;
  Image labels;
};

/// Reconstruction of the image by dilation from a marker image, which counts as its minimum with
/// the image. The value of a path is the smallest of the marker at its start and the image along
/// it; each pixel gets the largest value of all paths. The dual is by erosion, with largest and
/// smallest exchanged. Labels are 1 everywhere.
Filtered reconstruct(const Image &image, const Image &marker);
Filtered reconstructDual(const Image &image, const Image &marker);

/// The same from roots, which start at their values. Without roots every pixel is -2^31
/// (2^31 - 1).
Filtered reconstruct(const Image &image, const Roots &roots);
Filtered reconstructDual(const Image &image, const Roots &roots);

/// The same, along paths on which the image is nowhere below (above) their starting value; pixels
/// that no path reaches keep the image's value.
Filtered reconstructLocally(const Image &image, const Roots &roots);
Filtered reconstructDualLocally(const Image &image, const Roots &roots);

/// Area opening (closing): lowers each bright peak (raises each dark basin) of fewer than `area`
/// pixels to the highest (lowest) level at which it is not smaller. Labels number the maxima.
Filtered areaOpen(const Image &image, int area);
Filtered areaClose(const Image &image, int area);

/// Levelling towards a marker image; see ifLevel2.
Image level(const Image &image, const Image &marker);

/// Levelling from roots of label 1, which grow from below, and 2, which grow from above, each with
/// its value as the starting cost, in an image that starts as the marker; see ifLevel. The image is
/// of type ascii.
/// Throws Error: another label.
Filtered level(const Image &image, const Image &marker, const Roots &roots);

/// An object of fuzzy connectedness: its mean grey level and the spread around it.
struct FuzzyObject {
  int mean;
  int sigma;
};

/// For each pixel, the object to which it is connected best (from 1, in the order of the list; 0
/// for none), and the cost of the weakest link on the way, 0 to 255 (2^31 - 1 for none).
struct Connectedness {
  Image labels;
  Image costs;
};

/// Relative fuzzy connectedness of band 0. Roots of label o belong to object o; roots of other
/// labels are ignored. See iftFuzzy; this function does not write its debug images.
/// Throws Error: a sigma of 0.
Connectedness fuzzyConnectedness(const Image &image, const Roots &roots,
                                 std::span<const FuzzyObject> objects,
                                 const Adjacency &adjacency = Adjacency::eight());

/// The same with the costs of all links given: of object o in links[o - 1], a band for each
/// displacement of the adjacency, as ifFuzzyEdgesWeight makes them. See iftFuzzyEdges.
/// Throws Error: no links at all, images of different size or with too few bands.
Connectedness fuzzyConnectedness(std::span<const Image> links, const Roots &roots,
                                 const Adjacency &adjacency = Adjacency::eight());

} // namespace seedforest

#pragma GCC visibility pop
