// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Graphs that a person can write down and read.
#pragma once

#include "graph/graph.h"
#include "support.h"

#include <algorithm>
#include <numeric>

struct Edge {
  int a;
  int b;
  int weight;
};

struct Arc {
  int target;
  int weight;
  bool operator==(const Arc &) const = default;
};
using Lists = std::vector<std::vector<Arc>>;

/// A graph with the vertices 0 .. n, and the edges inserted in order. Its label image is the row
/// 0 .. n.
inline ifGraphPtr makeGraph(int n, const std::vector<Edge> &edges, int dataSize = 0) {
  std::vector<int> labels(n + 1);
  std::iota(labels.begin(), labels.end(), 0);
  ifGraphPtr graph(createGraph(makeImage({labels}).get(), dataSize));
  for (const Edge &edge : edges)
    insertEdge(graph.get(), edge.a, edge.b, edge.weight);
  return graph;
}

/// The same, with vertices that carry these integers.
inline ifGraphPtr withData(const Matrix &data, const std::vector<Edge> &edges) {
  ifGraphPtr graph = makeGraph(static_cast<int>(data.size()) - 1, edges, data[0].size());
  for (std::size_t v = 0; v < data.size(); ++v)
    std::copy(data[v].begin(), data[v].end(), graph->vertices[v].data);
  return graph;
}

/// The integers of all vertices.
inline Matrix dataOf(const ifGraphPtr &graph) {
  Matrix rows;
  for (int v = 0; v < graph->nVertices; ++v)
    rows.emplace_back(graph->vertices[v].data, graph->vertices[v].data + graph->dataSize);
  return rows;
}

/// The lists of all vertices, from the heads.
inline Lists listsOf(const ifGraph *graph) {
  Lists lists;
  for (int v = 0; v < graph->nVertices; ++v) {
    std::vector<Arc> &list = lists.emplace_back();
    for (const ifEdge *edge = graph->vertices[v].edges; edge != nullptr; edge = edge->next)
      list.push_back({edge->target, edge->weight});
    EXPECT_EQ(graph->vertices[v].nEdges, static_cast<int>(list.size()));
  }
  return lists;
}
