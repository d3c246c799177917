// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The level to which an area opening lowers each regional maximum. Internal; the operations are in
// ifConnected.h.
//
// The level of a maximum is defined by a flood that starts at the first of its pixels and always
// takes the waiting pixel whose path has the highest minimum. It stops at `area` pixels; the
// minimum of the path to the last of them is the level. That is the highest threshold at which the
// maximum's component has `area` pixels or, in a smaller image, the lowest value of all.
//
// For values of at least 0, one pass over the pixels finds all levels in near linear time: for values
// of up to 15 bits the depth-first flood of areaFlood.h, for others a pass by falling value with a
// union-find of the components (Wilkinson and Roerdink, "Fast morphological attribute operations
// using Tarjan's union-find algorithm", 2000). Negative values have no bucket
// of their own in the flood's queue, whose buckets are for costs of 0 .. maxCost, and are served in
// remainder order, which is no order of values: in the row -3 2 -4 with area 2, three buckets serve
// -4 before -3, and the level is -4. Then each maximum is flooded by itself, in time proportional to
// the number of maxima times the area.
#pragma once

#include "base/buffer.h"
#include "ift/core/ifRoots.h"

namespace seedforest::detail {

struct AreaLevel {
  int value;
  bool reached; ///< the flood took `area` pixels
};

/// The levels of the labels 1 .. count, at their indices.
///   maxima   the regional maxima, numbered by their first pixels: the roots in raster order
///   maxCost  at least 0, and at least the largest value of band 0
///   area     in pixels; 0 or less: all levels are 0, and reached
/// Ends with an error: memory that cannot be allocated; for a queue, with the line of initQueue().
Array<AreaLevel> findAreaLevels(const imImage *image, const ifRoots *maxima, int count, int maxCost,
                                int area);

} // namespace seedforest::detail
