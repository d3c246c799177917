// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Merging the regions of a mosaic: away with small ones, and together what looks alike.
//
// A region is known by the smallest of the vertices that it consists of; this number decides ties.
// Vertex 0 is no region: it neither merges nor is merged with. A label that no pixel has is a
// region of 0 pixels. Regions are neighbours where an edge leads from one to the other, in the
// lists of either. Edges weigh what the function says of the graph given, whatever weights stand in
// the lists.
//
// The result is the graph of merged regions, as by ifColapseGraph(), numbered from 1 in the order
// of the numbers that they are known by, and 0: new, and the caller's to release. Nothing is
// printed.
//
// Ends with an error, in every operation: no graph, no label image or no weight, labels or edges
// that lead outside the graph's vertices, memory that cannot be allocated (an error is a line on
// standard error and status 1, or an exception: base/error.h).
#pragma once

#include "ift/regions/ifRegionGraph.h"

#pragma GCC visibility push(default)

/// Merges each region of fewer than `area` pixels with the neighbour to which it has the lightest
/// edge, weighed from the small region's vertex to the neighbour's; of equal ones with the
/// neighbour of the smallest number. The smallest region comes first, of equal ones that of the
/// smallest number; areas grow as regions merge. In the end a small region is left only where it
/// has no neighbour. An area of 1 or less leaves all regions that have pixels.
/// Algorithm: a heap of the small regions and a union-find. A region that comes up is the smallest,
/// so merging doubles its area at least: each edge is looked at once for each doubling.
[[nodiscard]] ifGraph *ifEliminateSmallRegions(ifGraph *graph, int area, ifGraphWeightFn weight);

/// Merges regions across every edge that weighs no more than the threshold, from the vertex in
/// whose list it stands to its target: single linkage (Sneath, "The application of computers to
/// taxonomy", 1957), in linear time but for the union-find.
[[nodiscard]] ifGraph *eliminateSimilarRegions(ifGraph *graph, int threshold,
                                               ifGraphWeightFn weight);

/// Region growing by mean colour: merges neighbours, the most alike first, until no edge weighs the
/// threshold or less.
///   image   at least one band, of the label image's size; the averages of its bands, as by
///           ifComputeAverageColors(), are the features, and follow the regions as they merge
///   weight  is asked about a graph of dataSize image->nbands in which the vertex of a region's
///           number has its averages, with the smaller number first; ifGraphEuclideanDistance is
///           the usual one
/// The edges take turns. At the beginning of a turn all are weighed; they come up from the lightest
/// to those of the threshold. Of equally light ones that with the smaller of the smaller numbers at
/// its ends comes first, then that with the smaller of the larger numbers. An edge that comes up is
/// weighed again, as its regions may have changed: if it has become heavier it waits for its new
/// place, if not its regions merge. There are turns until one merges nothing; they are few.
/// Algorithm: stepwise optimization (Beaulieu and Goldberg, "Hierarchy in picture segmentation: a
/// stepwise optimization approach", 1989) with lazy evaluation of weights (Minoux, "Accelerated
/// greedy algorithms for maximizing submodular set functions", 1978). Weighing all edges of a
/// region each time that it changes would take a time that grows with the number of regions to the
/// power 1.5 where one takes in all others.
/// Ends with an error, too: an image of another size or without bands.
[[nodiscard]] ifGraph *ifMergeSimilarColors(ifGraph *graph, const imImage *image, int threshold,
                                            ifGraphWeightFn weight);

#pragma GCC visibility pop
