// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/ifRegionMerging.h"

#include "base/buffer.h"
#include "base/findRoot.h"
#include "base/report.h"
#include "base/require.h"
#include "graph/detail/edgeInserter.h"
#include "graph/detail/graphTools.h"
#include "ift/regions/detail/regionWalks.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <queue>
#include <utility>

using namespace seedforest::detail;

namespace {

template <class T>
using MinHeap = std::priority_queue<T, Vector<T>, std::greater<>>;

// Disjoint sets of vertices, each represented by its smallest one.
class Regions {
public:
  explicit Regions(int nVertices)
      : nVertices_(nVertices), parent_(makeArray<int>(static_cast<std::size_t>(nVertices))) {
    std::iota(parent_.get(), parent_.get() + nVertices, 0);
  }

  int of(int v) {
    int *parent = parent_.get();
    return findRoot(
        v, [parent](int i) { return parent[i]; }, [parent](int i, int root) { parent[i] = root; });
  }

  // Merges two regions and returns the smaller one, which stays.
  int merge(int a, int b) {
    const auto [smaller, larger] = std::minmax(a, b);
    parent_[larger] = smaller;
    return smaller;
  }

  ifGraphPtr toGraph(const char *operation, const ifGraph *graph) {
    const Array<int> number = makeZeroedArray<int>(static_cast<std::size_t>(nVertices_));
    int last = 0;
    for (int v = 1; v < nVertices_; ++v)
      number[v] = of(v) == v ? ++last : number[of(v)];
    return collapse(operation, graph, number.get());
  }

private:
  int nVertices_;
  Array<int> parent_;
};

// Regions with their edges to others, which go over to the region that stays: the vertices of a
// graph of their own.
class BorderedRegions : public Regions {
public:
  BorderedRegions(const char *operation, const ifGraph *graph)
      : Regions(graph->nVertices),
        graph_(requireMade(tryMakeGraph("createGraph", graph->nVertices, 0).release())) {
    EdgeInserter edges(operation, graph_.get());
    forEachEdge(operation, graph, [&](int v, const ifEdge &edge) {
      if (edge.target != 0 && edge.target != v)
        edges.insert(v, edge.target, 0);
    });
  }

  ifEdge *&edgesOf(int region) { return graph_->vertices[region].edges; }

  // Calls visit(neighbour, edge) for each edge that leads out of a region. Those that lead to the
  // region itself by now go away.
  template <class Visit>
  void forEachEdgeOf(int region, Visit visit) {
    for (ifEdge **link = &edgesOf(region); *link != nullptr;) {
      ifEdge *edge = *link;
      const int neighbor = of(edge->target);
      if (neighbor != region) {
        visit(neighbor, *edge);
        link = &edge->next;
      } else {
        *link = edge->next;
        BlockReleaser().release(edge);
      }
    }
  }

  // As that of the sets. The time grows with the number of edges of the first region.
  int merge(int a, int b) {
    ifEdge **end = &edgesOf(a);
    while (*end != nullptr)
      end = &(*end)->next;
    *end = std::exchange(edgesOf(b), nullptr);
    ifEdge *all = std::exchange(edgesOf(a), nullptr);
    const int merged = Regions::merge(a, b);
    edgesOf(merged) = all;
    return merged;
  }

private:
  ifGraphPtr graph_;
};

// The number of pixels that each vertex of a graph has.
Array<int> areasOf(const ifGraph *graph) {
  Array<int> area = makeZeroedArray<int>(static_cast<std::size_t>(graph->nVertices));
  const imImage *labels = graph->labelImage;
  for (int p = 0; p < labels->npixels; ++p)
    ++area[labels->band[0][p]];
  return area;
}

// The neighbour at the lightest edge, or 0. Clears away the edges that do not count any more.
int lightestNeighbor(BorderedRegions &regions, int region) {
  std::pair<int, int> best = {0, 0}; // weight, neighbour
  regions.forEachEdgeOf(region, [&](int neighbor, const ifEdge &edge) {
    const std::pair<int, int> offer = {edge.weight, neighbor};
    if (best.second == 0 || offer < best)
      best = offer;
  });
  return best.second;
}

// The same for a region of 0 pixels. As it merges with others of 0 pixels it stays the smallest
// region, and nothing else changes: so it takes them in here, one after the other, as a spanning
// tree grows. Scanning all its edges for each would take a time that grows with their square.
int lightestNeighborOfEmpty(BorderedRegions &regions, const int *areaOf, int region) {
  MinHeap<std::pair<int, int>> border; // weight, neighbour
  for (int next = region;;) {
    regions.forEachEdgeOf(
        next, [&](int neighbor, const ifEdge &edge) { border.emplace(edge.weight, neighbor); });
    if (next != region)
      regions.merge(next, region);
    while (!border.empty() && regions.of(border.top().second) == region)
      border.pop();
    if (border.empty())
      return 0;
    next = border.top().second;
    if (areaOf[next] != 0)
      return next;
  }
}

// Region growing by mean colour: see the header.
class ColorMerging {
public:
  ColorMerging(const char *operation, const ifGraph *graph, const imImage *image, int threshold,
               ifGraphWeightFn weight)
      : nVertices_(graph->nVertices), nbands_(image->nbands), threshold_(threshold), weigh_(weight),
        regions_(nVertices_), area_(areasOf(graph)),
        sum_(makeZeroedArray<std::int64_t>(static_cast<std::size_t>(nVertices_) *
                                           static_cast<std::size_t>(nbands_))),
        averages_(requireMade(tryMakeGraph("createGraph", nVertices_, nbands_).release())) {
    const imImage *labels = graph->labelImage;
    for (int b = 0; b < nbands_; ++b)
      for (int p = 0; p < labels->npixels; ++p)
        sumsOf(labels->band[0][p])[b] += image->band[b][p];
    for (int v = 0; v < nVertices_; ++v)
      updateAverages(v);
    forEachEdge(operation, graph, [&](int v, const ifEdge &edge) {
      if (edge.target != 0)
        borders_.push_back({0, v, edge.target});
    });
  }

  Regions &run() {
    Meter meter(nVertices_);
    while (takeTurn(meter)) {
    }
    return regions_;
  }

private:
  // Neighbours a < b, and what their edge weighed when it was last looked at.
  struct Border {
    int weight;
    int a;
    int b;
    auto operator<=>(const Border &) const = default;
  };

  std::int64_t *sumsOf(int v) { return sum_.get() + std::ptrdiff_t{nbands_} * v; }

  void updateAverages(int v) {
    for (int b = 0; b < nbands_; ++b)
      averages_->vertices[v].data[b] = static_cast<int>(sumsOf(v)[b] / std::max(area_[v], 1));
  }

  // The same border between the regions of now.
  Border asOfNow(const Border &border) {
    const int v = regions_.of(border.a);
    const int w = regions_.of(border.b);
    const int a = std::min(v, w);
    const int b = std::max(v, w);
    return {a == b ? 0 : weigh_(averages_.get(), a, b), a, b};
  }

  // Whether any regions have merged.
  bool takeTurn(Meter &meter) {
    for (Border &border : borders_)
      border = asOfNow(border);
    std::erase_if(borders_, [](const Border &border) { return border.a == border.b; });
    std::sort(borders_.begin(), borders_.end());
    borders_.erase(std::unique(borders_.begin(), borders_.end()), borders_.end());

    bool hasMerged = false;
    auto next = borders_.cbegin();
    MinHeap<Border> heavier; // those that wait for another place
    while (next != borders_.cend() || !heavier.empty()) {
      const bool isWaiting = next == borders_.cend() || (!heavier.empty() && heavier.top() < *next);
      const Border border = isWaiting ? heavier.top() : *next;
      if (border.weight > threshold_)
        break;
      if (isWaiting)
        heavier.pop();
      else
        ++next;
      const Border now = asOfNow(border);
      if (now.a == now.b)
        continue;
      if (now.weight > border.weight) {
        heavier.push(now);
        continue;
      }
      merge(now.a, now.b);
      meter.advance(1);
      hasMerged = true;
    }
    return hasMerged;
  }

  // Region a, the smaller, takes in region b.
  void merge(int a, int b) {
    regions_.merge(a, b);
    area_[a] += area_[b];
    for (int i = 0; i < nbands_; ++i)
      sumsOf(a)[i] += sumsOf(b)[i];
    updateAverages(a);
  }

  int nVertices_;
  int nbands_;
  int threshold_;
  ifGraphWeightFn weigh_;
  Regions regions_;
  Array<int> area_;
  Array<std::int64_t> sum_;
  ifGraphPtr averages_;
  Vector<Border> borders_;
};

} // namespace

ifGraph *ifEliminateSmallRegions(ifGraph *graph, int area, ifGraphWeightFn weight) {
  constexpr const char *operation = "ifEliminateSmallRegions";
  requireRegions(operation, graph);
  requireGiven(operation, "weight", weight);
  BorderedRegions regions(operation, graph);
  const Array<int> areaOf = areasOf(graph);
  MinHeap<std::pair<int, int>> small; // area, region
  const auto enqueue = [&](int region) {
    if (areaOf[region] < area)
      small.emplace(areaOf[region], region);
  };
  for (int v = 1; v < graph->nVertices; ++v) {
    for (ifEdge *edge = regions.edgesOf(v); edge != nullptr; edge = edge->next)
      edge->weight = weight(graph, v, edge->target);
    enqueue(v);
  }
  Meter meter(graph->nVertices);
  while (!small.empty()) {
    const auto [areaThen, region] = small.top();
    small.pop();
    if (regions.of(region) != region || areaOf[region] != areaThen)
      continue;
    const int neighbor = areaOf[region] == 0
                             ? lightestNeighborOfEmpty(regions, areaOf.get(), region)
                             : lightestNeighbor(regions, region);
    if (neighbor == 0)
      continue;
    const int sum = areaOf[region] + areaOf[neighbor];
    const int merged = regions.merge(region, neighbor);
    areaOf[merged] = sum;
    enqueue(merged);
    meter.advance(1);
  }
  return regions.toGraph(operation, graph).release();
}

ifGraph *eliminateSimilarRegions(ifGraph *graph, int threshold, ifGraphWeightFn weight) {
  constexpr const char *operation = "eliminateSimilarRegions";
  requireRegions(operation, graph);
  requireGiven(operation, "weight", weight);
  Regions regions(graph->nVertices);
  forEachEdge(operation, graph, [&](int v, const ifEdge &edge) {
    if (edge.target != 0 && weight(graph, v, edge.target) <= threshold)
      regions.merge(regions.of(v), regions.of(edge.target));
  });
  return regions.toGraph(operation, graph).release();
}

ifGraph *ifMergeSimilarColors(ifGraph *graph, const imImage *image, int threshold,
                              ifGraphWeightFn weight) {
  constexpr const char *operation = "ifMergeSimilarColors";
  requireRegions(operation, graph);
  requireBands(operation, image, 1);
  requireSameSize(operation, graph->labelImage, image);
  requireGiven(operation, "weight", weight);
  ColorMerging merging(operation, graph, image, threshold, weight);
  return merging.run().toGraph(operation, graph).release();
}
