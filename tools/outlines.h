// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The outlines of regions as polygons.
#pragma once

#include "seedforest/seedforest.hpp"

#include <vector>

namespace seedforest::tools {

/// The corner of a pixel: (0, 0) is the image's upper left one, (ncols, nrows) the lower right one.
struct Corner {
  int x;
  int y;
  bool operator==(const Corner &) const = default;
};

/// The corners at which a closed line turns, the first one again at its end.
using Ring = std::vector<Corner>;

/// An outer ring with counter-clockwise corners (of positive area by the coordinates), and the
/// rings of its holes, clockwise.
using Polygon = std::vector<Ring>;

/// The polygons of each region: entry n holds those of number n (numbers are 0 .. maxValue, 0 is
/// none), one for each 4-connected part, in the raster order of their first pixels. Their lines run
/// along the edges of pixels. Rings may touch themselves or others in corners only where regions do.
/// Algorithm: each ring is followed once, from an upper edge that no ring has passed.
std::vector<std::vector<Polygon>> outlinesOf(const Image &numbers);

} // namespace seedforest::tools
