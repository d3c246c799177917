// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/ifRegionGraph.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/multiversion.h"
#include "base/report.h"
#include "graph/detail/edgeInserter.h"
#include "graph/detail/graphTools.h"
#include "ift/core/detail/costs.h"
#include "ift/core/ifCost.h"
#include "ift/regions/detail/regionWalks.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/detail/rowWindow.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

using namespace seedforest::detail;

namespace {

// The features of a vertex, of which there is at least one.
const int *featuresOf(const char *operation, const ifGraph *graph, int v) {
  requireVertex(operation, graph, v);
  if (graph->dataSize < 1 || graph->vertices[v].data == nullptr)
    fatal("%s: vertex %d has no data\n", operation, v);
  return graph->vertices[v].data;
}

// Marks the pixels of a row where two labels may meet for the first time: those with a forward
// neighbour of another label, unless the neighbours compared here show that the walk has seen the
// two labels meet before, as nearly everywhere along a border. Without a branch.
SEEDFOREST_MULTIVERSION void markMeetings(const RowWindow &window, int ncols, int *mark) {
  forEachColumn(ncols, [=](int left, int x, int right) {
    const auto differ = [](int a, int b) { return static_cast<int>(a != b); };
    const int p = window.row[x];
    const int west = window.row[left];
    const int north = window.above[x];
    const int northEast = window.above[right];
    const int east = window.row[right];
    const int south = window.below[x];
    const int southEast = window.below[right];
    const int southWest = window.below[left];
    const int inEast = differ(p, east) & differ(north, p) & differ(north, east) &
                       differ(northEast, p) & differ(northEast, east);
    const int inSouth =
        differ(p, south) & differ(west, p) & differ(west, south) & differ(east, south);
    const int inSouthEast =
        differ(p, southEast) & differ(east, southEast) & differ(south, southEast);
    const int inSouthWest =
        differ(p, southWest) & differ(south, southWest) & differ(west, p) & differ(west, southWest);
    mark[x] = inEast | inSouth | inSouthEast | inSouthWest;
  });
}

// Marks on the pixels of a row. Most pixels have none, and blocks without a mark are skipped.
class Marks {
public:
  explicit Marks(int ncols)
      : n_((ncols - 1) / block + 1), mark_(makeZeroedArray<int>(std::size_t{block} * n_)) {}

  int *data() { return mark_.get(); }

  template <class Visit>
  void forEach(Visit visit) const {
    const int *mark = mark_.get();
    for (int i = 0; i < n_; ++i, mark += block) {
      int any = 0;
      for (int k = 0; k < block; ++k)
        any |= mark[k];
      for (int k = 0; any != 0 && k < block; ++k)
        if (mark[k] != 0)
          visit(i * block + k);
    }
  }

private:
  static constexpr int block = 16;
  int n_;
  Array<int> mark_;
};

// How far feature j varies over a vertex and its neighbours.
int spread(const char *operation, const ifGraph *graph, int v, int j) {
  int lo = graph->vertices[v].data[j];
  int hi = lo;
  forEachEdgeOf(operation, graph, v, [&](const ifEdge &edge) {
    const int value = graph->vertices[edge.target].data[j];
    lo = std::min(lo, value);
    hi = std::max(hi, value);
  });
  return saturate(std::int64_t{hi} - lo);
}

} // namespace

int ifGraphEuclideanDistance(const ifGraph *graph, int u, int v) {
  const int *a = featuresOf("ifGraphEuclideanDistance", graph, u);
  const int *b = featuresOf("ifGraphEuclideanDistance", graph, v);
  std::uint64_t sum = 0;
  for (int i = 0; i < graph->dataSize; ++i)
    sum = addSaturating(sum, squaredDifference(a[i], b[i]));
  return rootOfMean(sum, graph->dataSize);
}

int ifGraphMinDistance(const ifGraph *graph, int u, int v) {
  return std::min(featuresOf("ifGraphMinDistance", graph, u)[0],
                  featuresOf("ifGraphMinDistance", graph, v)[0]);
}

int ifGraphWatershedDistance(const ifGraph *graph, int, int v) {
  return featuresOf("ifGraphWatershedDistance", graph, v)[0];
}

ifGraph *ifMosaicToGraph(const imImage *labels) {
  requireBands("ifMosaicToGraph", labels, 1);
  ifGraphPtr graph = requireMade(createGraph(labels, 0));
  requireRegions("ifMosaicToGraph", graph.get());
  EdgeInserter edges("ifMosaicToGraph", graph.get());
  const NeighborWalk neighbors(labels, imNeighborhood8forward);
  const int *label = labels->band[0];
  const auto meet = [&](int x, int y) {
    const int a = label[x + labels->row[y]];
    neighbors.any(x, y, [&](int q, int) {
      if (a != label[q])
        edges.insert(a, label[q], 0);
      return false;
    });
  };
  Marks marks(labels->ncols);
  for (int y = 0; y < labels->nrows; ++y) {
    markMeetings(RowWindow(labels, 0, y), labels->ncols, marks.data());
    // At the upper and the left edge the window repeats pixels in place of neighbours outside the
    // image, which could be taken for earlier meetings: there every pixel is marked.
    std::fill_n(marks.data(), y == 0 ? labels->ncols : 1, 1);
    marks.forEach([&](int x) { meet(x, y); });
  }
  return graph.release();
}

ifGraph *ifMorphoGradGraph(ifGraph *graph) {
  requireGraph("ifMorphoGradGraph", graph);
  requireData("ifMorphoGradGraph", graph, graph->dataSize);
  ifGraphPtr gradient = copyOf("ifMorphoGradGraph", graph, 1);
  for (int v = 1; v < graph->nVertices; ++v)
    for (int j = 0; j < graph->dataSize; ++j) {
      int &largest = gradient->vertices[v].data[0];
      largest = std::max(largest, spread("ifMorphoGradGraph", graph, v, j));
    }
  return gradient.release();
}

ifGraph *ifColapseGraph(ifGraph *graph) {
  requireData("ifColapseGraph", graph, 1);
  requireRegions("ifColapseGraph", graph);
  const int n = graph->nVertices;
  const Array<int> region = makeArray<int>(static_cast<std::size_t>(n));
  std::transform(graph->vertices, graph->vertices + n, region.get(),
                 [](const ifVertex &vertex) { return vertex.data[0]; });
  return collapse("ifColapseGraph", graph, region.get()).release();
}

namespace seedforest::detail {

void mapLabels(const imImage *labels, const int *map, imImage *output) {
  std::transform(labels->band[0], labels->band[0] + labels->npixels, output->band[0],
                 [map](int label) { return map[label]; });
}

ifGraphPtr collapse(const char *operation, const ifGraph *graph, const int *region) {
  const int n = graph->nVertices;
  const std::int64_t last = n == 0 ? 0 : *std::max_element(region, region + n);
  imImagePtr labels =
      createImage(1, imTypeAscii, graph->labelImage->ncols, graph->labelImage->nrows);
  mapLabels(graph->labelImage, region, labels.get());
  labels->maxValue = largestValue(labels.get(), 0);
  ifGraphPtr merged =
      requireMade(tryMakeGraph("createGraph", std::max<std::int64_t>(last, 0) + 1, 0).release());
  setLabelImage(merged.get(), labels.release());
  EdgeInserter edges(operation, merged.get());
  forEachEdge(operation, graph, [&](int v, const ifEdge &edge) {
    if (region[v] != region[edge.target])
      edges.insertDirected(region[v], region[edge.target], 0);
  });
  return merged;
}

} // namespace seedforest::detail
