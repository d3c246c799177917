// Checks of graphs, and graphs that an operation cannot go on without.
#pragma once

#include "graph/graph.h"

#include <cstdint>

namespace seedforest::detail {

/// A graph of nVertices vertices without a label image or, after the line of `operation`, none.
ifGraphPtr tryMakeGraph(const char *operation, std::int64_t nVertices, int dataSize);

/// Gives a vertex that has none its integers; false where they cannot be had.
bool tryMakeData(ifVertex &vertex, int dataSize);

/// A graph with `least` vertices or as many as the labels need, and a copy of the label image.
ifGraphPtr tryMakeRegionGraph(const imImage *labelImage, int least, int dataSize);

/// What copyBaseGraph() makes before it copies the edges.
ifGraphPtr tryMakeAlike(const ifGraph *graph, int dataSize);

/// Takes over a graph that an operation cannot go on without: ends with an error where it could not
/// be made, which has been said.
ifGraphPtr requireMade(ifGraph *graph);

/// copyBaseGraph() for an operation that cannot go on without the copy.
ifGraphPtr copyOf(const char *operation, ifGraph *graph, int dataSize);

/// Puts an edge at the head of a list, whatever the list holds.
ifEdge *prependEdge(ifVertex *list, int target, int weight);

/// Gives a graph without edges, of no fewer vertices, the edges of another, as copyBaseGraph()
/// does.
void copyEdges(const char *operation, ifGraph *from, ifGraph *to);

/// End with an error that names the operation, unless the graph is there, v is one of its vertices,
/// all edges lead to vertices, every vertex has at least `count` integers of data, or the label
/// image is there and all its labels are vertices.
void requireGraph(const char *operation, const ifGraph *graph);
void requireVertex(const char *operation, const ifGraph *graph, int v);
void requireEdges(const char *operation, const ifGraph *graph);
void requireData(const char *operation, const ifGraph *graph, int count);
void requireRegions(const char *operation, const ifGraph *graph);

} // namespace seedforest::detail
