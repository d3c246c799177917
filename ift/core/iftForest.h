// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Image foresting transforms: every pixel gets the best path from some seed. With the values of the
// pixels for weights and the largest of them for a path's cost, that is the watershed from markers.
//
// A forest image is a work image of the caller's, of the input's size and with at least three
// bands; a transform writes its last three:
//
//   band nbands - 3   the label of the seed whose path won, 0 where none arrived
//   band nbands - 2   the cost of that path; the infinite cost where none arrived
//   band nbands - 1   the pixel before on that path; at seeds and unreached pixels, the pixel
//                     itself
//
// Algorithm: Dijkstra's ("A note on two problems in connexion with graphs", 1959), from several
// sources, on Dial's circle of buckets ("Algorithm 360: shortest-path forest with topological
// ordering", 1969). The bucket of a cost is the remainder of its division by the number of buckets,
// folded into range; costs beyond the bound are served in remainder order. Time is linear in the
// number of arcs and in the range of the costs; memory, beside the images, a few words for each
// pixel and two for each bucket.
//
// Ties: pixels of one bucket are served first in, first out, seeds in the order of their list and
// neighbours in the order of the adjacency. A pixel keeps the first of several best paths. A seed
// that still waits can be conquered by a strictly better path. A pixel listed twice among the seeds
// takes the later cost and label, and the later place.
//
// Weights come from a function and an adjacency, or from an arc-weight image (ifWeightImage.h),
// which holds its adjacency: band k at p is the weight of the arc by displacement k, a negative
// weight means no arc, and the input gives the size only. iftNonNormalized() with ifWatershedMetric
// and ifPathCostMax or ifPathCostMaxLocal (iftNonNormalizedInverted(): ifPathCostMin,
// ifPathCostMinLocal), for values and seeds within 0 .. maxCost, runs in a faster form; the result
// is the same.
//
// The transforms of fixed size (ift, iftMask, iftMaskWF) have buckets for costs up to 49999 and
// multiply weights, which are expected in 0 .. 1000, by 49 (saturating) before they pass them to
// the path cost; the seeds' costs are not multiplied.
//
// Ends with an error (a line on standard error and status 1, or an exception: base/error.h): a
// negative bound, a null argument, images of different size, a forest image with too few bands, an
// arc-weight image without its adjacency, a seed outside the image, memory that cannot be allocated
// ("Could not allocate queue (Q) in initQueue\n" for buckets, "(A)" for per-pixel storage).
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifRoots.h"
#include "image/imNeighborhood.h"

#pragma GCC visibility push(default)

/// Minimises pathCost over all paths from the seeds.
///   input      handed to arcWeight; gives the size
///   output     the forest image; its other bands are left alone
///   adjacency  called once
///   maxCost    the largest cost expected: there are maxCost + 1 buckets
///   seeds      pixel, label and initial cost (value) of each
void iftNonNormalized(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                      ifArcWeightFn arcWeight, int maxCost, ifPathCostFn pathCost,
                      const ifRoots *seeds);

/// The same, maximising: the infinite cost is the smallest int, and the largest cost is served
/// first.
void iftNonNormalizedInverted(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                              ifArcWeightFn arcWeight, int maxCost, ifPathCostFn pathCost,
                              const ifRoots *seeds);

/// iftNonNormalized of fixed size.
void ift(const imImage *input, imImage *output, imNeighborhoodFn adjacency, ifArcWeightFn arcWeight,
         ifPathCostFn pathCost, const ifRoots *seeds);

/// iftNonNormalized on an arc-weight image, with buckets for costs up to 1000.
void iftWF(const imImage *input, imImage *output, const imImage *weights, ifPathCostFn pathCost,
           const ifRoots *seeds);

/// iftNonNormalized on an arc-weight image, with buckets for costs up to maxCost.
void iftNonNormalizedWF(const imImage *input, imImage *output, const imImage *weights, int maxCost,
                        ifPathCostFn pathCost, const ifRoots *seeds);

/// ift within a mask: a seed is used only where band 0 of the mask is above 0, and a path is
/// extended only to pixels where it is not 0. A negative value thus excludes seeds but not paths.
void iftMask(const imImage *input, imImage *output, const imImage *mask, imNeighborhoodFn adjacency,
             ifArcWeightFn arcWeight, ifPathCostFn pathCost, const ifRoots *seeds);

/// iftMask on an arc-weight image.
void iftMaskWF(const imImage *input, imImage *output, const imImage *mask, const imImage *weights,
               ifPathCostFn pathCost, const ifRoots *seeds);

/// Levelling: the cost band starts as band 0 of the marker and moves towards band 0 of the input.
/// From seeds of label 1 the maximum of the cost and the values on the way spreads to pixels of
/// higher cost, from seeds of label 2 the minimum to pixels of lower cost. Both wait in one queue
/// with buckets for keys up to the marker's maxValue: the cost for label 1, maxValue - cost for
/// label 2. A seed's value replaces the marker's. A pixel of another label offers nothing, but
/// prints "pixel %d has invalid label (%d)!\n" on standard error for each neighbour that has not
/// been settled yet.
void iftNonNormalizedLevel(const imImage *input, const imImage *marker, imImage *output,
                           imNeighborhoodFn adjacency, const ifRoots *seeds);

#pragma GCC visibility pop
