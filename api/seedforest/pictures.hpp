// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Pictures of results, of type color unless said otherwise. paintRoots() is in roots.hpp.
#pragma once

#include "seedforest/image.hpp"

#pragma GCC visibility push(default)

namespace seedforest {

/// A colour, each component 0 .. 255.
struct Color {
  int red;
  int green;
  int blue;
};

/// The image with the borders between labels drawn over it, one pixel wide; see imShowSegm. Images
/// of other types than grey, ascii and color give black.
Image overlay(const Image &image, const Image &labels, const Color &color = {255, 0, 0});

/// The image with the pixels where the mask is above 0 in a colour.
/// Throws Error: an image of neither 1 nor 3 bands.
Image highlight(const Image &image, const Image &mask, const Color &color = {255, 0, 0});

/// The image with every pixel in the average of its region, band by band; of the image's type.
/// Labels are 0 .. maxValue.
Image averageColors(const Image &image, const Image &labels);

/// White discs on black, of type grey: around each pixel above 0, the pixels at a squared distance
/// of at most its value. From a skeleton's squared distances it restores the shape.
Image paintCircles(const Image &squaredRadii);

} // namespace seedforest

#pragma GCC visibility pop
