// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Shortest paths within a mask.
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// The shortest 8-connected path through the pixels above 0 (band 0), where a step along a row or a
/// column is 1 long and a diagonal one the square root of 2. Lengths are counts of both kinds of
/// steps, and are compared exactly.
///   from, to  the pixels where it begins and ends; they may be the same
/// Of several shortest paths the one whose steps, from `from` on, come first in the order of
/// imNeighborhood8, compared step by step.
/// Returns a new set, which the caller owns (ifRootsPtr releases it): a root for each pixel of the
/// path, in its order; the label is the pixel's place, from 1, the value its squared straight
/// distance from `from`, at most 2^31 - 1. An empty set where there is no path, as where `from` or
/// `to` is not in the mask.
/// Prints nothing. Algorithm: an image foresting transform from `to`, with buckets as wide as the
/// shortest step, within which no path can improve another (E. A. Dinic, 1978), then a walk down the
/// lengths; linear in the pixels, and in those nearer to `to` than `from` is.
/// Ends with an error: no mask, a pixel outside it, memory that cannot be allocated.
[[nodiscard]] ifRoots *ifEuclideanShortestPath(const imImage *mask, int from, int to);

#pragma GCC visibility pop
