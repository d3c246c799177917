// What parameterises a transform: how a path's cost grows by an arc's weight, and what an arc
// weighs. All are pure functions. Transforms know the built-in ones by their addresses, and inline
// what they do.
#pragma once

#include "image/imImage.h"

#include <limits>

/// The cost of what no path reaches, in minimising and in maximising transforms.
inline constexpr int ifInfiniteCost = std::numeric_limits<int>::max();
inline constexpr int ifInfiniteCostInverted = std::numeric_limits<int>::min();

/// The cost of a path extended by an arc: of the path so far, and the arc's weight.
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

/// The cost unchanged along arcs that weigh no more than it; others are closed (ifInfiniteCost).
int ifPathCostMaxLocal(int cost, int weight);

/// The cost unchanged along arcs that weigh no less than it; others are closed
/// (ifInfiniteCostInverted).
int ifPathCostMinLocal(int cost, int weight);

/// The destination's value in band 0.
int ifWatershedMetric(const imImage *image, int p, int q);

/// The integer part of the root mean square difference of the bands, the mean an integer division;
/// saturating. An image without bands ends the process with status 1 after a line.
int ifEuclideanDistance(const imImage *image, int p, int q);

/// The largest absolute difference of the bands, saturating; -1 for an image without bands.
int ifMaxDistance(const imImage *image, int p, int q);

/// The chamfer metric of 12 for pixels in one row or column and 17 for others; reads only the
/// width.
int ifChanferDistance(const imImage *image, int p, int q);
