// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Walks over region graphs and their label images.
#pragma once

#include "graph/detail/graphTools.h"

namespace seedforest::detail {

/// Writes map[label] for each pixel of a label image into band 0 of an image of its size, which may
/// be the label image itself.
void mapLabels(const imImage *labels, const int *map, imImage *output);

/// ifColapseGraph() of a graph whose label image has been checked, by the numbers of the regions
/// that its vertices become part of.
ifGraphPtr collapse(const char *operation, const ifGraph *graph, const int *region);

/// Calls visit(edge) for each edge of vertex v, from the head of its list.
template <class Visit>
void forEachEdgeOf(const char *operation, const ifGraph *graph, int v, Visit visit) {
  for (const ifEdge *edge = graph->vertices[v].edges; edge != nullptr; edge = edge->next) {
    requireVertex(operation, graph, edge->target);
    visit(*edge);
  }
}

/// Calls visit(v, edge) for each edge of each vertex v from 1.
template <class Visit>
void forEachEdge(const char *operation, const ifGraph *graph, Visit visit) {
  for (int v = 1; v < graph->nVertices; ++v)
    forEachEdgeOf(operation, graph, v, [&](const ifEdge &edge) { visit(v, edge); });
}

} // namespace seedforest::detail
