// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Graphs of regions. A mosaic is a label image, its regions are the vertices of a graph, and the
// integers on the vertices are the regions' features. Label 0 is no region: walks over vertices
// start at 1, so mosaics meant for merging number their regions from 1.
//
// The graphs returned belong to the caller, who releases them with destroyGraph().
//
// Ends with an error, in every operation: no graph, no label image or too little data where these
// are read, labels or edges that lead outside the graph's vertices, a graph that cannot be
// allocated, with the line of createGraph() (an error is a line on standard error and status 1, or
// an exception: base/error.h).
#pragma once

#include "graph/graph.h"

#pragma GCC visibility push(default)

/// The weight of the edge from vertex u to vertex v of a graph.
using ifGraphWeightFn = int (*)(const ifGraph *graph, int u, int v);

/// The integer part of the root mean square difference of all features, the mean an integer
/// division; saturating.
int ifGraphEuclideanDistance(const ifGraph *graph, int u, int v);

/// The smaller of the first features.
int ifGraphMinDistance(const ifGraph *graph, int u, int v);

/// The first feature of the destination; u is not read.
int ifGraphWatershedDistance(const ifGraph *graph, int u, int v);

/// The region adjacency graph of a label image with labels 0 .. maxValue: the vertices of
/// createGraph(), without data, and an undirected edge of weight 0 between any two labels that meet
/// at 8-neighbours. Edges are inserted in the raster order of the pixels from which they are first
/// met with imNeighborhood8forward.
[[nodiscard]] ifGraph *ifMosaicToGraph(const imImage *labels);

/// The morphological gradient: a copy of the graph by copyBaseGraph() with one integer on each
/// vertex. A feature's gradient is its largest value minus its smallest over the vertex and its
/// neighbours; the integer is the largest gradient of all features, saturating. It is 0 for vertex
/// 0 and without features.
[[nodiscard]] ifGraph *ifMorphoGradGraph(ifGraph *graph);

/// The graph of merged regions: the first integer on each vertex is the number of the region that
/// it becomes part of. The label image holds the new numbers, type ASCII, maxValue the largest of
/// them; there are vertices up to the largest number that occurs on a vertex, without data. Edges
/// get weight 0 and keep their direction; those inside a region vanish.
[[nodiscard]] ifGraph *ifColapseGraph(ifGraph *graph);

#pragma GCC visibility pop
