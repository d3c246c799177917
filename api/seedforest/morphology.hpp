// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Grey-scale morphology with discs, band by band. A disc is named by its squared radius: 1 is the
// cross of 5 pixels, 2 the 3 x 3 square; see imMorph.h. Results have the type and bands of the
// image.
#pragma once

#include "seedforest/image.hpp"

#pragma GCC visibility push(default)

namespace seedforest {

/// The largest (smallest) value in the disc around each pixel.
Image dilate(const Image &image, int squaredRadius);
Image erode(const Image &image, int squaredRadius);

/// Opening removes bright details that do not hold the disc, closing such dark details.
Image open(const Image &image, int squaredRadius);
Image close(const Image &image, int squaredRadius);

/// The first operation in each step of an alternating filter.
enum class First { open, close };

/// Alternating sequential filter: step i = 1 .. steps opens and closes with the squared radius i;
/// steps <= 0 changes nothing. maxValue becomes the largest value.
Image alternatingFilter(const Image &image, int steps, First first = First::open);

/// Morphological gradient: the largest minus the smallest value among each pixel and its 8
/// neighbours, in the band where this difference is largest; one band of type ascii.
Image gradient(const Image &image);

} // namespace seedforest

#pragma GCC visibility pop
