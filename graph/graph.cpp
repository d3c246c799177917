// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "graph/graph.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "base/require.h"
#include "graph/detail/graphTools.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

using namespace seedforest::detail;

namespace {

void requireList(const char *operation, const ifVertex *list) {
  requireGiven(operation, "list", list);
}

void releaseEdges(const ifVertex &list, BlockReleaser &releaser) {
  for (ifEdge *edge = list.edges; edge != nullptr;) {
    ifEdge *next = edge->next;
    releaser.release(edge);
    edge = next;
  }
}

// The link that holds the edge to a target, or the empty one at the end of the list.
ifEdge **findLink(ifVertex *list, int target) {
  ifEdge **link = &list->edges;
  while (*link != nullptr && (*link)->target != target)
    link = &(*link)->next;
  return link;
}

} // namespace

ifGraph *createGraph(const imImage *labelImage, int dataSize) {
  requireBands("createGraph", labelImage, 0);
  return tryMakeRegionGraph(labelImage, 0, dataSize).release();
}

ifGraph *allocateGraph(int n, int dataSize) {
  return tryMakeGraph("allocateGraph", std::int64_t{n} + 1, dataSize).release();
}

ifGraph *copyBaseGraph(ifGraph *graph, int dataSize) {
  requireGraph("copyBaseGraph", graph);
  ifGraphPtr copy = tryMakeAlike(graph, dataSize);
  if (copy != nullptr)
    copyEdges("copyBaseGraph", graph, copy.get());
  return copy.release();
}

void destroyGraph(ifGraph **graph) {
  if (graph == nullptr || *graph == nullptr)
    return;
  constexpr int ahead = 16;
  BlockReleaser edges;
  BlockReleaser data;
  const ifVertex *vertices = (*graph)->vertices;
  const int n = vertices == nullptr ? 0 : (*graph)->nVertices;
  for (int v = 0; v < n; ++v) {
    if (n - v > ahead)
      prefetchAt(vertices[v + ahead].edges);
    releaseEdges(vertices[v], edges);
    data.release(vertices[v].data);
  }
  std::free((*graph)->vertices);
  imReleaseImage(&(*graph)->labelImage);
  std::free(*graph);
  *graph = nullptr;
}

void setLabelImage(ifGraph *graph, imImage *image) {
  requireGraph("setLabelImage", graph);
  if (graph->labelImage == image)
    return;
  imReleaseImage(&graph->labelImage);
  graph->labelImage = image;
}

void insertEdge(ifGraph *graph, int a, int b, int weight) {
  requireVertex("insertEdge", graph, a);
  requireVertex("insertEdge", graph, b);
  listInsertEdge(&graph->vertices[a], b, weight);
  listInsertEdge(&graph->vertices[b], a, weight);
}

void removeEdge(ifGraph *graph, int a, int b) {
  requireVertex("removeEdge", graph, a);
  requireVertex("removeEdge", graph, b);
  listRemoveEdge(&graph->vertices[a], b);
  listRemoveEdge(&graph->vertices[b], a);
}

void insertDirectedEdge(ifGraph *graph, int a, int b, int weight) {
  requireVertex("insertDirectedEdge", graph, a);
  requireVertex("insertDirectedEdge", graph, b);
  listInsertEdge(&graph->vertices[a], b, weight);
}

void removeDirectedEdge(ifGraph *graph, int a, int b) {
  requireVertex("removeDirectedEdge", graph, a);
  listRemoveEdge(&graph->vertices[a], b);
}

ifVertex *createList(int dataSize) {
  if (dataSize < 0)
    fatal("createList: %d is no number of integers\n", dataSize);
  Array<ifVertex> list = makeZeroedArray<ifVertex>(1);
  BlockArena arena;
  if (!tryMakeData(*list.get(), dataSize, arena))
    outOfMemory();
  return list.release();
}

ifEdge *listInsertEdge(ifVertex *list, int target, int weight) {
  requireList("listInsertEdge", list);
  const ifEdge *present = *findLink(list, target);
  if (present != nullptr)
    return present->next;
  BlockArena arena;
  return prependEdge(list, target, weight, arena);
}

void listRemoveEdge(ifVertex *list, int target) {
  requireList("listRemoveEdge", list);
  ifEdge **link = findLink(list, target);
  ifEdge *edge = *link;
  if (edge == nullptr)
    return;
  --list->nEdges;
  *link = edge->next;
  if (list->cursor == edge)
    list->cursor = edge->next;
  BlockReleaser().release(edge);
}

void listDestroy(ifVertex *list) {
  requireList("listDestroy", list);
  BlockReleaser blocks;
  releaseEdges(*list, blocks);
  blocks.release(list->data);
  *list = {list->mark, 0, nullptr, nullptr, nullptr};
}

ifEdge *listGetAndWalk(ifVertex *list) {
  requireList("listGetAndWalk", list);
  ifEdge *edge = list->cursor;
  if (edge != nullptr)
    list->cursor = edge->next;
  return edge;
}

int graphPrint(ifGraph *graph) {
  requireGraph("graphPrint", graph);
  progress("Graph has %d vertices\n", graph->nVertices);
  for (int v = 0; v < graph->nVertices; ++v) {
    ifVertex &vertex = graph->vertices[v];
    progress("[%d (", v);
    for (int i = 0; vertex.data != nullptr && i < graph->dataSize; ++i)
      progress("%4d ", vertex.data[i]);
    progress(graph->dataSize > 0 ? "\b)]: " : ")]: ");
    vertex.cursor = vertex.edges;
    while (const ifEdge *edge = listGetAndWalk(&vertex))
      progress("%d(%d) ", edge->target, edge->weight);
    progress("\n");
  }
  return graph->nVertices;
}
