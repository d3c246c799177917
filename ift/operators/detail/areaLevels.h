// To which level an area opening lowers each regional maximum. Internal; the operations are in
// ifConnected.h.
//
// The level of a maximum is found by a flood that starts at the first of its pixels and always
// takes the front pixel whose path has the highest minimum. It stops at `area` pixels; the minimum
// of the path to the last of them is the level. So it is the highest threshold at which the
// maximum's component has `area` pixels or, in a smaller image, the lowest value of all.
//
// The components of all thresholds come out of one pass over the pixels by falling value, with a
// union-find: near linear time, however many maxima there are. It takes values of at least 0. Where
// some are negative, the circle of the flood's buckets, one for each cost of 0 .. the largest, is
// too small for its costs, and serves them in the order of remainders: then each maximum is flooded
// by itself, in time proportional to the number of maxima times the area.
#pragma once

#include "base/buffer.h"
#include "ift/core/ifRoots.h"

namespace seedforest::detail {

struct AreaLevel {
  int value;
  bool reached; ///< the flood took as many pixels as were asked for
};

/// The levels of the labels 1 .. count, at their indices.
///   maxima   the roots of the labels, those of each label after the first of smaller ones
///   maxCost  at least the largest value of band 0, and 0
///   area     at most 0: all levels are 0, and reached
/// Ends the process with status 1, after the line of initQueue(), when a queue cannot be had.
Array<AreaLevel> findAreaLevels(const imImage *image, const ifRoots *maxima, int count, int maxCost,
                                int area);

} // namespace seedforest::detail
