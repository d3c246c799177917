// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What is measured of regions.
#pragma once

#include "seedforest/seedforest.hpp"

#include <cstdint>
#include <vector>

namespace seedforest::tools {

/// The values of a band in a region.
struct BandMeasures {
  int least;
  int largest;
  double mean;
  double deviation; // standard deviation of these pixels, the root of the mean squared difference
};

struct Measures {
  int label;
  std::int64_t area; // in pixels
  double x;          // centroid, in pixel centres: (0, 0) is the first pixel
  double y;
  int left; // the columns and rows with pixels, both ends included
  int top;
  int right;
  int bottom;
  double perimeter;
  double diameter; // of the disc of the same area
  bool touchesFrame;
  std::vector<BandMeasures> bands;
};

/// The measures of the labels above 0, by label; those of bands where an image is given.
///
/// The perimeter is by the Cauchy-Crofton formula in four directions: pi / 8 times the number of
/// steps between a pixel of the region and one that is not, or is outside the image, along rows,
/// columns and, divided by the root of 2, both diagonals. It is right on average over all
/// directions of a border, for discs within a few percent, and 5 % short for upright squares.
/// (G. Lehmann and D. Legland, "Efficient N-dimensional surface estimation using Crofton formula
/// and run-length encoding", 2012.)
std::vector<Measures> measuresOf(const Image &labels, const Image *image);

} // namespace seedforest::tools
