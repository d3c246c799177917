// Connected filters of band 0, which shift no border: they lower or raise flat zones as wholes. See
// ifConnected.h. And relative fuzzy connectedness.
#pragma once

#include "seedforest/adjacency.hpp"
#include "seedforest/roots.hpp"

#include <span>

namespace seedforest {

/// What a filter makes of an image, and the label of the root that reached each pixel, 0 where none
/// did. The image has the type of the first argument unless said otherwise.
struct Filtered {
  Image image;
  Image labels;
};

/// Reconstruction of the image by dilation from a marker image, of which only what lies below the
/// image counts: the largest, over all paths, of the smallest of the marker's value at the start
/// and the image along the path. The dual, by erosion, from above. Labels are 1 everywhere.
Filtered reconstruct(const Image &image, const Image &marker);
Filtered reconstructDual(const Image &image, const Image &marker);

/// The same from roots, which start at their values. Without roots every pixel is -2^31
/// (2^31 - 1).
Filtered reconstruct(const Image &image, const Roots &roots);
Filtered reconstructDual(const Image &image, const Roots &roots);

/// The same along paths on which the image is nowhere below (above) the value at which they start;
/// where none arrives, the image stays.
Filtered reconstructLocally(const Image &image, const Roots &roots);
Filtered reconstructDualLocally(const Image &image, const Roots &roots);

/// Area opening (closing): lowers each bright peak (raises each dark basin) of fewer than `area`
/// pixels to the highest (lowest) level at which it is not smaller. Labels number the maxima.
Filtered areaOpen(const Image &image, int area);
Filtered areaClose(const Image &image, int area);

/// Levelling towards a marker image; see ifLevel2.
Image level(const Image &image, const Image &marker);

/// Levelling by roots of label 1, which grow from below, and 2, from above, each from its value, in
/// an image that starts as the marker; see ifLevel. The image is of type ascii.
/// Throws Error: another label.
Filtered level(const Image &image, const Image &marker, const Roots &roots);

/// An object of fuzzy connectedness: its mean grey level and the spread around it.
struct FuzzyObject {
  int mean;
  int sigma;
};

/// The object (from 1, as they are listed) to which each pixel is connected best, 0 where none is,
/// and the cost of the weakest link between them, 0 to 255, or 2^31 - 1.
struct Connectedness {
  Image labels;
  Image costs;
};

/// Relative fuzzy connectedness of band 0. Roots of label o are those of object o, others are not
/// read. See iftFuzzy, which writes images too.
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
