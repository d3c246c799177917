// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Conversions between colour spaces; see imColor.h for the formulas and the form in which each
// space is stored. Bands 0, 1 and 2 are the components. Results have three bands: of type color for
// RGB, xyz for the rest.
//
// Throws Error, in every function: fewer than three bands.
#pragma once

#include "seedforest/image.hpp"

#pragma GCC visibility push(default)

namespace seedforest {

Image rgbToXyz(const Image &rgb);
Image xyzToRgb(const Image &xyz);
Image xyzToLab(const Image &xyz);
Image labToXyz(const Image &lab);
Image xyzToLuv(const Image &xyz);
Image luvToXyz(const Image &luv);
Image rgbToYcbcr(const Image &rgb);
Image ycbcrToRgb(const Image &ycbcr);
Image rgbToHsv(const Image &rgb);

/// Also throws Error: a pixel of saturation 0 that has a hue.
Image hsvToRgb(const Image &hsv);

Image rgbToLab(const Image &rgb);
Image labToRgb(const Image &lab);
Image rgbToLuv(const Image &rgb);
Image luvToRgb(const Image &luv);

/// Three bands of grey, from band 0.
Image greyToRgb(const Image &grey);

} // namespace seedforest

#pragma GCC visibility pop
