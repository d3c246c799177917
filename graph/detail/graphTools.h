// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Checks of graphs, and new graphs whose failure to be created is an error.
#pragma once

#include "base/report.h"
#include "graph/detail/blockArena.h"
#include "graph/graph.h"

#include <cstdint>
#include <new>

namespace seedforest::detail {

/// A graph of nVertices vertices without a label image or, after a line that names `operation`,
/// null.
ifGraphPtr tryMakeGraph(const char *operation, std::int64_t nVertices, int dataSize);

/// Allocates the integers of a vertex; false where that fails.
bool tryMakeData(ifVertex &vertex, int dataSize, BlockArena &arena);

/// A graph with a copy of the label image and as many vertices as its labels need, at least
/// `least`.
ifGraphPtr tryMakeRegionGraph(const imImage *labelImage, int least, int dataSize);

/// The graph that copyBaseGraph() makes, without the edges.
ifGraphPtr tryMakeAlike(const ifGraph *graph, int dataSize);

/// Takes over a graph; where it is null, ends with an error whose line has been printed already.
ifGraphPtr requireMade(ifGraph *graph);

/// copyBaseGraph(), ending with an error where the copy cannot be made.
ifGraphPtr copyOf(const char *operation, ifGraph *graph, int dataSize);

/// Puts an edge at the head of a list, whatever the list holds.
inline ifEdge *prependEdge(ifVertex *list, int target, int weight, BlockArena &arena) {
  void *block = arena.tryAllocate(sizeof(ifEdge));
  if (block == nullptr)
    outOfMemory();
  list->edges = new (block) ifEdge{target, weight, list->edges};
  ++list->nEdges;
  return list->edges;
}

/// Gives a graph without edges, of no fewer vertices, the edges of another, as copyBaseGraph()
/// does.
void copyEdges(const char *operation, ifGraph *from, ifGraph *to);

/// End with an error that names the operation, unless the graph is there, all edges lead to
/// vertices, every vertex has at least `count` integers of data, or the label image is there and all
/// its labels are vertices.
void requireGraph(const char *operation, const ifGraph *graph);
void requireEdges(const char *operation, const ifGraph *graph);
void requireData(const char *operation, const ifGraph *graph, int count);
void requireRegions(const char *operation, const ifGraph *graph);

/// The same, unless the graph is there and v is one of its vertices. Inline, since walks over graphs
/// ask for every edge.
[[noreturn]] void vertexMissing(const char *operation, const ifGraph *graph, int v);
inline void requireVertex(const char *operation, const ifGraph *graph, int v) {
  if (graph == nullptr || v < 0 || v >= graph->nVertices) [[unlikely]]
    vertexMissing(operation, graph, v);
}

} // namespace seedforest::detail
