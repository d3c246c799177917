// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image foresting transform on a graph: every vertex gets the best path from some root. On a
// region graph, regions grow from marked regions.
#pragma once

#include "ift/core/ifCost.h"
#include "ift/core/ifRoots.h"
#include "ift/regions/ifRegionGraph.h"

#pragma GCC visibility push(default)

/// Minimises pathCost over all paths from the roots along the graph's edges, as iftNonNormalized()
/// does on the pixels of an image, with the same algorithm and the same ties: vertices of one
/// bucket are served first in, first out, roots in the order of their list and neighbours in that
/// of the vertex's list from its head; an equal cost never conquers. A vertex that is listed twice
/// takes the later cost and label, and the later place.
///   graph     its lists may hold edges of one direction; vertex 0 is like any other. It needs
///             neither data nor a label image, unless the weight reads them
///   weight    of the edge from a vertex to its neighbour; the weights in the lists are not read
///   pathCost  the cost of a path extended by an edge
///   maxCost   the largest cost expected: there are maxCost + 1 buckets, and costs beyond are
///             served in remainder order
///   roots     vertex (in `pixel`), label and initial cost (value) of each
///   result    a copy of the graph by copyBaseGraph(), edges with the weights in the lists, and
///             three integers on each vertex: the label of the root whose path won, 0 where none
///             arrived; the cost of that path, ifInfiniteCost where none did; the vertex before on
///             it, the vertex itself at roots and where none arrived. The caller releases it
/// Prints nothing. Ends with an error (a line on standard error and status 1, or an exception:
/// base/error.h): a negative bound, something missing, an edge or a root outside the graph, memory
/// that cannot be had ("Could not allocate queue (Q) in initQueue\n" for buckets, "(A)" for storage
/// by vertex).
[[nodiscard]] ifGraph *iftGraph(ifGraph *graph, ifGraphWeightFn weight, ifPathCostFn pathCost,
                                int maxCost, const ifRoots *roots);

#pragma GCC visibility pop
