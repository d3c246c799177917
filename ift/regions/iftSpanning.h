// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Minimum spanning trees of pixels and of regions, and the partitions that result from cutting
// them. Region numbers, ownership and errors of graphs are as in ift/regions/ifRegionGraph.h.
//
// Trees are grown by Prim's algorithm ("Shortest connection networks and some generalizations",
// 1957) on a bucket queue: the pixel or vertex with the lightest edge to the tree comes next, and
// of equal ones the one that has waited longest. Its edges are offered to its neighbours, in their
// order, and replace strictly heavier ones. The bucket of a weight is its remainder, folded into
// range, so weights beyond the buckets are served in remainder order.
//
// Cuts join sets edge by edge with a union-find by rank, from vertex 1 upward, each list from its
// head; the representative of a set, and with it the order of numbers, follows from this order. A
// forest of several trees can be cut too: a tree without a cut edge is one part.
#pragma once

#include "ift/core/ifCost.h"
#include "ift/regions/ifRegionGraph.h"
#include "image/imNeighborhood.h"

#pragma GCC visibility push(default)

/// The minimum spanning tree of an image's pixels, from pixel 0.
///   image      handed to arcWeight; gives the size
///   forest     out: at least two bands of that size; the last two get each pixel's weight to its
///              predecessor, multiplied by 49 (saturating; 0 at pixel 0, ifInfiniteCost where the
///              tree does not reach), and the predecessor (else the pixel itself)
///   adjacency  called once
///   arcWeight  expected in 0 .. 1000: there are 50000 buckets
/// Ends with an error: images of different size, too few bands, memory that cannot be allocated
/// ("Could not allocate queue (Q) in initQueue\n", "(A)").
void iftPrim(const imImage *image, imImage *forest, imNeighborhoodFn adjacency,
             ifArcWeightFn arcWeight);

/// The same on an arc-weight image (ifWeightImage.h), which holds its adjacency; a negative weight
/// means no arc.
void iftPrimWF(const imImage *image, imImage *forest, const imImage *weights);

/// The minimum spanning tree of the vertices that are connected with vertex 1; vertex 0 is like any
/// other.
///   graph   at least one integer on each vertex
///   weight  of an edge, expected in 0 .. 1000: there are 1001 buckets
///   result  the vertices and the label image of the graph, with three integers on each vertex: the
///           tree's number (1, or 0 where it does not reach), the weight to the predecessor
///           (ifInfiniteCost; at vertex 1 the first integer of the graph's), and the predecessor
///           (else the vertex itself). An edge goes in, with its weight, when its vertex is taken
/// A graph of fewer than two vertices gives a tree without edges.
[[nodiscard]] ifGraph *iftPrimGraph(ifGraph *graph, ifGraphWeightFn weight);

/// Cuts a spanning forest of pixels at the weights above a fraction of the largest one.
///   forest    the last two bands: each pixel's weight to its predecessor, and the predecessor, the
///             pixel itself at a root. An unreached pixel's infinite weight counts like any other
///   output    out: band 0, each pixel's label, the index of a pixel that represents its part;
///             maxValue becomes the largest
///   fraction  of the largest weight, at least 0; rounded, half to even, to the highest weight that
///             stays
/// Ends with an error: an image without the bands or of another size, a predecessor outside the
/// image.
void ifMstThreshold(const imImage *forest, imImage *output, double fraction);

/// Cuts a tree of regions at the weights above `fraction` times 1000, truncated.
///   tree      three integers on each vertex, of which the second is the weight to the predecessor
///             and the third the predecessor, the vertex itself at a root; a label image
///   result    the vertices of the tree, without data, and the edges that stay; its label image
///             holds the parts, renumbered by ifCorrectLabels(), label 0 included
/// Prints "threshold is %d\n" on standard output.
/// Ends with an error, before that: a predecessor of an edge that stays which is no vertex.
[[nodiscard]] ifGraph *ifThresholdGraph(ifGraph *tree, double fraction);

/// Cuts a tree of regions at the weights above the threshold.
///   tree      edge lists with weights, and a label image
///   result    a vertex for each part, numbered from 1 in the order of their representatives,
///             without data, an edge of weight 0 for each one cut, and the label image of the
///             parts, type ASCII, maxValue their number; label 0 stays 0
/// Prints "there will be %d regions\n" on standard output: the number of edges cut, plus 1. A
/// forest of several trees has more parts than that.
[[nodiscard]] ifGraph *ifThresholdMST(ifGraph *tree, int threshold);

/// The same with n parts: cuts the n - 1 heaviest edges, or all; of equal ones those that a walk
/// from vertex 1 meets first, each at its smaller end. The graph has the vertices 0 .. n, and
/// maxValue is n, or the number of parts where there are more. Leaves the tree's cursors at the
/// ends of the lists. Prints nothing.
[[nodiscard]] ifGraph *ifThresholdMST_nRegions(ifGraph *tree, int n);

#pragma GCC visibility pop
