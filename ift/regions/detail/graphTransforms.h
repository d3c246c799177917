// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the transforms on the vertices of a graph share, for the wrapper Marked of
// ift/core/detail/forestTransforms.h and the loop behind it.
#pragma once

#include "graph/graph.h"
#include "ift/core/ifCost.h"
#include "ift/regions/detail/regionWalks.h"
#include "ift/regions/ifRegionGraph.h"

namespace seedforest::detail {

/// A weight function that the caller passed, for one graph.
struct CalledGraphWeight {
  const ifGraph *graph;
  ifGraphWeightFn function;
  int operator()(int u, int v) const { return function(graph, u, v); }
};

/// The arcs of a graph, in the order of its lists.
template <class Weight>
struct GraphArcs {
  const char *operation;
  const ifGraph *graph;
  Weight weigh;

  template <class Visit>
  void each(int u, Visit visit) const {
    forEachEdgeOf(operation, graph, u, [&](const ifEdge &edge) { visit(edge.target, 0); });
  }
  int weight(int u, int v, int) const { return weigh(u, v); }
};

/// A vertex's integers in a forest of vertices; the label is the number of the tree, where those
/// are numbered.
enum ForestData { forestLabel, forestCost, forestPredecessor, forestDataSize };

/// What a vertex of a graph gains: a label, a cost and a predecessor, kept by the vertices of a
/// graph that becomes the result.
struct VertexForest {
  GraphArcs<CalledGraphWeight> arcs;
  ifVertex *vertices; // of the result

  void set(int v, int label, int cost, int predecessor) {
    int *data = vertices[v].data;
    data[forestLabel] = label;
    data[forestCost] = cost;
    data[forestPredecessor] = predecessor;
  }

  /// Makes all n vertices unreached.
  void clear(int n) {
    for (int v = 0; v < n; ++v)
      set(v, 0, ifInfiniteCost, v);
  }
  int costOf(int v) const { return vertices[v].data[forestCost]; }
  bool improves(int offered, int v) const { return offered < costOf(v); }
  void conquer(int u, int v, int, int offered) {
    set(v, vertices[u].data[forestLabel], offered, u);
  }
};

} // namespace seedforest::detail
