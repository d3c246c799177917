#include "graph/graph.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

using namespace seedforest::detail;

namespace {

void requireList(const char *operation, const ifVertex *list) {
  if (list == nullptr)
    fatal("%s: there is no list\n", operation);
}

// The link that holds the edge to a target, or the empty one at the end of the list.
ifEdge **findLink(ifVertex *list, int target) {
  ifEdge **link = &list->edges;
  while (*link != nullptr && (*link)->target != target)
    link = &(*link)->next;
  return link;
}

// The integers of a vertex, none where there are to be none; false where they cannot be had.
bool tryMakeData(ifVertex &vertex, int dataSize) {
  if (dataSize > 0)
    vertex.data =
        static_cast<int *>(tryAllocateZeroed(static_cast<std::size_t>(dataSize), sizeof(int)));
  return dataSize == 0 || vertex.data != nullptr;
}

// A graph with `least` vertices or as many as the labels need, and a copy of the label image.
ifGraphPtr tryMakeRegionGraph(const imImage *labelImage, int least, int dataSize) {
  ifGraphPtr graph =
      tryMakeGraph("createGraph",
                   std::max<std::int64_t>(std::int64_t{labelImage->maxValue} + 1, least), dataSize);
  if (graph == nullptr)
    return nullptr;
  graph->labelImage = imCopyImage(labelImage);
  return graph->labelImage == nullptr ? nullptr : std::move(graph);
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
  if (copy == nullptr)
    return nullptr;
  copyEdges("copyBaseGraph", graph, copy.get());
  return copy.release();
}

void destroyGraph(ifGraph **graph) {
  if (graph == nullptr || *graph == nullptr)
    return;
  for (int v = 0; (*graph)->vertices != nullptr && v < (*graph)->nVertices; ++v) {
    ifVertex &vertex = (*graph)->vertices[v];
    if (vertex.edges != nullptr || vertex.data != nullptr) // untouched pages stay so
      listDestroy(&vertex);
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
  auto *list = static_cast<ifVertex *>(allocateZeroed(1, sizeof(ifVertex)));
  if (!tryMakeData(*list, dataSize))
    outOfMemory();
  return list;
}

ifEdge *listInsertEdge(ifVertex *list, int target, int weight) {
  requireList("listInsertEdge", list);
  const ifEdge *present = *findLink(list, target);
  return present != nullptr ? present->next : prependEdge(list, target, weight);
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
  std::free(edge);
}

void listDestroy(ifVertex *list) {
  requireList("listDestroy", list);
  while (ifEdge *edge = list->edges) {
    list->edges = edge->next;
    std::free(edge);
  }
  std::free(list->data);
  list->data = nullptr;
  list->cursor = nullptr;
  list->nEdges = 0;
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

namespace seedforest::detail {

ifGraphPtr tryMakeGraph(const char *operation, std::int64_t nVertices, int dataSize) {
  ifGraphPtr graph(static_cast<ifGraph *>(tryAllocateZeroed(1, sizeof(ifGraph))));
  bool made = graph != nullptr && nVertices >= 0 && nVertices <= maxInt;
  if (made) {
    graph->vertices = static_cast<ifVertex *>(
        tryAllocateZeroed(static_cast<std::size_t>(nVertices), sizeof(ifVertex)));
    made = graph->vertices != nullptr;
    graph->nVertices = static_cast<int>(nVertices);
    graph->dataSize = dataSize;
  }
  for (int v = 0; made && dataSize != 0 && v < nVertices; ++v)
    made = tryMakeData(graph->vertices[v], dataSize);
  if (made)
    return graph;
  complain("in %s: could not allocate memory\n", operation);
  return nullptr;
}

ifGraphPtr tryMakeAlike(const ifGraph *graph, int dataSize) {
  const int n = graph->nVertices;
  return graph->labelImage == nullptr ? tryMakeGraph("createGraph", n, dataSize)
                                      : tryMakeRegionGraph(graph->labelImage, n, dataSize);
}

ifGraphPtr requireMade(ifGraph *graph) {
  if (graph == nullptr)
    std::exit(EXIT_FAILURE);
  return ifGraphPtr(graph);
}

ifEdge *prependEdge(ifVertex *list, int target, int weight) {
  auto *edge = static_cast<ifEdge *>(std::malloc(sizeof(ifEdge)));
  if (edge == nullptr)
    outOfMemory();
  *edge = {target, weight, list->edges};
  list->edges = edge;
  ++list->nEdges;
  return edge;
}

void copyEdges(const char *operation, ifGraph *from, ifGraph *to) {
  // The last vertex, plus 1, that was found to have an edge to each target.
  const Array<int> seen = makeZeroedArray<int>(static_cast<std::size_t>(from->nVertices));
  for (int v = 0; v < from->nVertices; ++v) {
    ifVertex &list = from->vertices[v];
    list.cursor = list.edges;
    while (const ifEdge *edge = listGetAndWalk(&list)) {
      requireVertex(operation, from, edge->target);
      if (seen[edge->target] == v + 1)
        continue;
      seen[edge->target] = v + 1;
      prependEdge(&to->vertices[v], edge->target, edge->weight);
    }
  }
}

void requireGraph(const char *operation, const ifGraph *graph) {
  if (graph == nullptr)
    fatal("%s: there is no graph\n", operation);
}

void requireVertex(const char *operation, const ifGraph *graph, int v) {
  requireGraph(operation, graph);
  if (v < 0 || v >= graph->nVertices)
    fatal("%s: vertex %d is outside the graph\n", operation, v);
}

void requireData(const char *operation, const ifGraph *graph, int count) {
  requireGraph(operation, graph);
  bool present = graph->dataSize >= count;
  for (int v = 0; present && count > 0 && v < graph->nVertices; ++v)
    present = graph->vertices[v].data != nullptr;
  if (!present)
    fatal("%s: vertices without data, where %d integers are needed\n", operation, count);
}

void requireRegions(const char *operation, const ifGraph *graph) {
  requireGraph(operation, graph);
  requireBands(operation, graph->labelImage, 1);
  const imImage *labels = graph->labelImage;
  if (!allWithin(labels->band[0], labels->npixels, 0, graph->nVertices - 1))
    fatal("%s: labels outside the graph's vertices\n", operation);
}

} // namespace seedforest::detail
