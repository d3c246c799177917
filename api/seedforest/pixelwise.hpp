// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Operations on each pixel by itself; see imPixelwise.h. Bounds are inclusive. Results that are one
// band, made from band 0, are of type ascii; others have the bands and the type of the first image.
#pragma once

#include "seedforest/image.hpp"

#include <vector>

#pragma GCC visibility push(default)

namespace seedforest {

/// threshold(): 255 where lo <= value <= hi, else 0. bandPass(): the value there, else 0. One band.
Image threshold(const Image &image, int lo, int hi);
Image bandPass(const Image &image, int lo, int hi);

/// In type grey 255 minus the value, else the largest value (or maxValue, where that is larger)
/// minus the value. One band; its maxValue is its largest value.
Image negative(const Image &image);

/// Shapes, 255 inside and 0 outside, from band 0. The complement; the difference, where a is above
/// 0 and b is 0; the union, where a or b is above 0. Difference and union have as many bands as a,
/// of which only band 0 is used.
Image complement(const Image &shape);
Image shapeDifference(const Image &a, const Image &b);
Image shapeUnion(const Image &a, const Image &b);

/// The image where the mask is above 0, `fill` elsewhere.
Image masked(const Image &image, const Image &mask, int fill = 0);

/// The image with `width` rows and columns of 0 added on each side, or with as many removed.
/// Throws Error: a negative width, or no pixel left.
Image addBorder(const Image &image, int width);
Image removeBorder(const Image &image, int width);

/// The larger (smaller) of two images.
Image upperEnvelope(const Image &a, const Image &b);
Image lowerEnvelope(const Image &a, const Image &b);

/// Values plus k, and values minus those of another image; at least 0. add() in type grey: at most
/// 255.
Image add(const Image &image, int k);
Image subtract(const Image &a, const Image &b);

/// Entry v is the number of pixels inside the mask (above 0) whose value in band 0 is v, for v from
/// 0 to the largest. Counts are exact up to 2^24.
/// Throws Error: a negative value under the mask.
std::vector<float> histogram(const Image &image, const Image &mask);

} // namespace seedforest

#pragma GCC visibility pop
