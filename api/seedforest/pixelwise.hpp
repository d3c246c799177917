// Operations on each pixel by itself; see imPixelwise.h. Bounds are inclusive. Results that are one
// band, made from band 0, are of type ascii; others have the bands and the type of the first image.
#pragma once

#include "seedforest/image.hpp"

#include <vector>

namespace seedforest {

/// 255 where lo <= value <= hi, else 0; and the value there, else 0. One band.
Image threshold(const Image &image, int lo, int hi);
Image bandPass(const Image &image, int lo, int hi);

/// 255 less the value in type grey, else the largest value (or maxValue, where that is larger) less
/// it. One band, which declares its largest value.
Image negative(const Image &image);

/// Shapes, 255 inside and 0 outside, from band 0: the complement of one; where a is above 0 and b
/// is 0; where one of them is above 0. One band.
Image complement(const Image &shape);
Image shapeDifference(const Image &a, const Image &b);
Image shapeUnion(const Image &a, const Image &b);

/// The image where the mask is above 0, `fill` elsewhere.
Image masked(const Image &image, const Image &mask, int fill = 0);

/// With `width` rows and columns of 0 put on each side, or so many taken from each.
/// Throws Error: a negative width, or no pixel left.
Image addBorder(const Image &image, int width);
Image removeBorder(const Image &image, int width);

/// The larger (smaller) of two images.
Image upperEnvelope(const Image &a, const Image &b);
Image lowerEnvelope(const Image &a, const Image &b);

/// Values plus k, and less those of another image; at least 0, and at most 255 after the first in
/// type grey.
Image add(const Image &image, int k);
Image subtract(const Image &a, const Image &b);

/// How many pixels of the mask (above 0) have each value of band 0, from 0 to the largest. Counts
/// are exact up to 2^24.
/// Throws Error: a negative value under the mask.
std::vector<float> histogram(const Image &image, const Image &mask);

} // namespace seedforest
