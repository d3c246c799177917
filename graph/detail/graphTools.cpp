// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "graph/detail/graphTools.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "base/require.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdlib>

namespace seedforest::detail {

bool tryMakeData(ifVertex &vertex, int dataSize, BlockArena &arena) {
  if (dataSize == 0)
    return true;
  const auto count = static_cast<std::size_t>(dataSize);
  if (count > BlockArena::largest / sizeof(int)) {
    vertex.data = static_cast<int *>(tryAllocateZeroed(count, sizeof(int)));
    return vertex.data != nullptr;
  }
  vertex.data = static_cast<int *>(arena.tryAllocate(count * sizeof(int)));
  if (vertex.data != nullptr)
    std::fill_n(vertex.data, count, 0);
  return vertex.data != nullptr;
}

ifGraphPtr tryMakeRegionGraph(const imImage *labelImage, int least, int dataSize) {
  ifGraphPtr graph =
      tryMakeGraph("createGraph",
                   std::max<std::int64_t>(std::int64_t{labelImage->maxValue} + 1, least), dataSize);
  if (graph == nullptr)
    return nullptr;
  graph->labelImage = imCopyImage(labelImage);
  return graph->labelImage == nullptr ? nullptr : std::move(graph);
}

ifGraphPtr tryMakeGraph(const char *operation, std::int64_t nVertices, int dataSize) {
  ifGraphPtr graph(static_cast<ifGraph *>(tryAllocateZeroed(1, sizeof(ifGraph))));
  const bool possible = nVertices >= 0 && nVertices <= maxInt && dataSize >= 0;
  bool made = graph != nullptr && possible;
  if (made) {
    graph->vertices = static_cast<ifVertex *>(
        tryAllocateZeroed(static_cast<std::size_t>(nVertices), sizeof(ifVertex)));
    made = graph->vertices != nullptr;
    graph->nVertices = static_cast<int>(nVertices);
    graph->dataSize = dataSize;
  }
  BlockArena arena;
  for (int v = 0; made && dataSize != 0 && v < nVertices; ++v)
    made = tryMakeData(graph->vertices[v], dataSize, arena);
  if (made)
    return graph;
  fail(possible ? About::memory : About::call, "in %s: could not allocate memory\n", operation);
  return nullptr;
}

ifGraphPtr tryMakeAlike(const ifGraph *graph, int dataSize) {
  const int n = graph->nVertices;
  return graph->labelImage == nullptr ? tryMakeGraph("createGraph", n, dataSize)
                                      : tryMakeRegionGraph(graph->labelImage, n, dataSize);
}

ifGraphPtr requireMade(ifGraph *graph) {
  if (graph == nullptr)
    endAfterFailure();
  return ifGraphPtr(graph);
}

ifGraphPtr copyOf(const char *operation, ifGraph *graph, int dataSize) {
  ifGraphPtr copy = requireMade(tryMakeAlike(graph, dataSize).release());
  copyEdges(operation, graph, copy.get());
  return copy;
}

void copyEdges(const char *operation, ifGraph *from, ifGraph *to) {
  // The last vertex, plus 1, that was found to have an edge to each target.
  const Array<int> seen = makeZeroedArray<int>(static_cast<std::size_t>(from->nVertices));
  BlockArena arena;
  for (int v = 0; v < from->nVertices; ++v) {
    ifVertex &list = from->vertices[v];
    list.cursor = nullptr; // as at the end of a walk
    for (const ifEdge *edge = list.edges; edge != nullptr; edge = edge->next) {
      requireVertex(operation, from, edge->target);
      if (seen[edge->target] == v + 1)
        continue;
      seen[edge->target] = v + 1;
      prependEdge(&to->vertices[v], edge->target, edge->weight, arena);
    }
  }
}

void requireGraph(const char *operation, const ifGraph *graph) {
  requireGiven(operation, "graph", graph);
}

void vertexMissing(const char *operation, const ifGraph *graph, int v) {
  requireGraph(operation, graph);
  fatal("%s: vertex %d is outside the graph\n", operation, v);
}

void requireEdges(const char *operation, const ifGraph *graph) {
  requireGraph(operation, graph);
  for (int v = 0; v < graph->nVertices; ++v)
    for (const ifEdge *edge = graph->vertices[v].edges; edge != nullptr; edge = edge->next)
      requireVertex(operation, graph, edge->target);
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
