// Image foresting transforms: every pixel gets the best path from some seed.
//
// A forest image is a work image of the caller's, of the input's size and with at least three
// bands; a transform writes its last three:
//
//   band nbands - 3   the label of the seed whose path won, 0 where none arrived
//   band nbands - 2   the cost of that path; the infinite cost where none arrived
//   band nbands - 1   the pixel before on that path; the pixel itself for seeds and unreached
//   pixels
//
// Algorithm: Dijkstra's, on buckets in a circle. The bucket of a cost is the remainder of its
// division by the number of buckets, folded into range; costs beyond the bound are served in
// remainder order.
//
// Ties: pixels of one bucket are served first in, first out, seeds in the order of their list and
// neighbours in the order of the adjacency. A pixel keeps the first of several best paths. A seed
// that still waits can be conquered by a strictly better path. A pixel listed twice among the seeds
// takes the later cost and label, and the later place.
//
// Errors, after a line on standard error, with status 1: a negative bound, images of different
// size, a forest image with too few bands, a seed outside the image, memory that cannot be had
// ("Could not allocate queue (Q) in initQueue\n" for buckets, "(A)" for per-pixel storage).
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifRoots.h"
#include "image/imNeighborhood.h"

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
