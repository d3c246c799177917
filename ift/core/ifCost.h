// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The functions that parameterise a transform: the cost of a path extended by an arc, and the
// weight of an arc. All are pure functions. Transforms recognise some of them by their addresses
// and then run a faster form with the same result (iftForest.h).
#pragma once

#include "image/imImage.h"

#include <limits>

#pragma GCC visibility push(default)

/// The cost of a pixel that no path reaches, in minimising and in maximising transforms.
inline constexpr int ifInfiniteCost = std::numeric_limits<int>::max();
inline constexpr int ifInfiniteCostInverted = std::numeric_limits<int>::min();

/// The cost of a path extended by an arc, from the cost of the path so far and the arc's weight.
using ifPathCostFn = int (*)(int cost, int weight);

/// The weight of the arc from pixel p to pixel q of an image. p and q must be pixels of it: a
/// transform calls this for every arc, so they are not checked.
using ifArcWeightFn = int (*)(const imImage *image, int p, int q);

/// The larger of the two.
int ifPathCostMax(int cost, int weight);

/// The smaller of the two.
int ifPathCostMin(int cost, int weight);

/// The sum, which wraps around in 32 bits.
int ifPathCostSum(int cost, int weight);

/// The cost, unchanged, for weights of at most the cost; else the arc is closed (ifInfiniteCost).
int ifPathCostMaxLocal(int cost, int weight);

/// The cost, unchanged, for weights of at least the cost; else the arc is closed
/// (ifInfiniteCostInverted).
int ifPathCostMinLocal(int cost, int weight);

/// The destination's value in band 0.
int ifWatershedMetric(const imImage *image, int p, int q);

/// The integer part of the root mean square difference of the bands, the mean an integer division;
/// saturating.
/// Ends with an error: no image, an image without bands (base/error.h).
int ifEuclideanDistance(const imImage *image, int p, int q);

/// The largest absolute difference of the bands, saturating; -1 for an image without bands.
/// Ends with an error: no image.
int ifMaxDistance(const imImage *image, int p, int q);

/// The chamfer metric: 12 for pixels in one row or column, 17 for others; reads only the image's
/// width.
/// Ends with an error: no image.
int ifChanferDistance(const imImage *image, int p, int q);

#pragma GCC visibility pop
