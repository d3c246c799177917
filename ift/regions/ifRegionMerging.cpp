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

// Regions with their edges to others, which go over to the region that stays, and with integers on
// each: they are the vertices of a graph of their own.
class BorderedRegions : public Regions {
public:
  BorderedRegions(const char *operation, const ifGraph *graph, int dataSize)
      : Regions(graph->nVertices),
        graph_(requireMade(tryMakeGraph("createGraph", graph->nVertices, dataSize).release())) {
    EdgeInserter edges(operation, graph_.get());
    forEachEdge(operation, graph, [&](int v, const ifEdge &edge) {
      if (edge.target != 0 && edge.target != v)
        edges.insert(v, edge.target, 0);
    });
  }

  ifGraph *graph() { return graph_.get(); }
  ifEdge *&edgesOf(int region) { return graph_->vertices[region].edges; }

  // Calls keep(neighbour, edge) for each edge that leads out of a region. Those of which it does
  // not hold go away, as do those that lead to the region itself by now.
  template <class Keep>
  void filterEdges(int region, Keep keep) {
    for (ifEdge **link = &edgesOf(region); *link != nullptr;) {
      ifEdge *edge = *link;
      const int neighbor = of(edge->target);
      if (neighbor != region && keep(neighbor, *edge)) {
        link = &edge->next;
      } else {
        *link = edge->next;
        std::free(edge);
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
  regions.filterEdges(region, [&](int neighbor, const ifEdge &edge) {
    const std::pair<int, int> offer = {edge.weight, neighbor};
    if (best.second == 0 || offer < best)
      best = offer;
    return true;
  });
  return best.second;
}

// The same for a region of 0 pixels. As it merges with others of 0 pixels it stays the smallest
// region, and nothing else changes: so it takes them in here, one after the other, as a spanning
// tree grows. Scanning all its edges for each would take a time that grows with their square.
int lightestNeighborOfEmpty(BorderedRegions &regions, const int *areaOf, int region) {
  MinHeap<std::pair<int, int>> border; // weight, neighbour
  for (int next = region;;) {
    regions.filterEdges(next, [&](int neighbor, const ifEdge &edge) {
      border.emplace(edge.weight, neighbor);
      return true;
    });
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
  ColorMerging(BorderedRegions &regions, const imImage *labels, const imImage *image,
               Array<int> area, int threshold, ifGraphWeightFn weight)
      : regions_(regions), nVertices_(regions.graph()->nVertices), nbands_(image->nbands),
        threshold_(threshold), weigh_(weight), area_(std::move(area)),
        sum_(makeZeroedArray<std::int64_t>(size() * static_cast<std::size_t>(nbands_))),
        version_(makeZeroedArray<int>(size())), metAt_(makeZeroedArray<std::int64_t>(size())) {
    for (int b = 0; b < nbands_; ++b)
      for (int p = 0; p < labels->npixels; ++p)
        sumsOf(labels->band[0][p])[b] += image->band[b][p];
    for (int v = 0; v < nVertices_; ++v)
      updateAverages(v);
  }

  void run() {
    for (int v = 1; v < nVertices_; ++v)
      offerPairs(v, v);
    Meter meter(nVertices_);
    while (!heap_.empty()) {
      std::pop_heap(heap_.begin(), heap_.end(), std::greater<>());
      const Pair pair = heap_.back();
      heap_.pop_back();
      if (!isCurrent(pair))
        continue;
      merge(pair.a, pair.b);
      meter.advance(1);
    }
  }

private:
  // Neighbours a < b that may merge, unless one of them has changed since.
  struct Pair {
    int weight;
    int a;
    int b;
    int versionOfA;
    int versionOfB;
    auto operator<=>(const Pair &) const = default;
  };

  std::size_t size() const { return static_cast<std::size_t>(nVertices_); }
  std::int64_t *sumsOf(int v) { return sum_.get() + std::ptrdiff_t{nbands_} * v; }
  bool isCurrent(const Pair &pair) const {
    return version_[pair.a] == pair.versionOfA && version_[pair.b] == pair.versionOfB;
  }

  // Whether any average is another one now.
  bool updateAverages(int v) {
    bool isChanged = false;
    for (int b = 0; b < nbands_; ++b) {
      const std::int64_t average = sumsOf(v)[b] / std::max(area_[v], 1);
      int &old = regions_.graph()->vertices[v].data[b];
      isChanged |= std::exchange(old, static_cast<int>(average)) != average;
    }
    return isChanged;
  }

  // Offers a region with each neighbour at the edges in the list of `owner`, which is the region or
  // about to become part of it. Keeps one edge to each.
  void offerPairs(int owner, int region) {
    ++round_;
    regions_.filterEdges(owner, [&](int neighbor, const ifEdge &) {
      if (neighbor == region || std::exchange(metAt_[neighbor], round_) == round_)
        return false;
      offer(std::min(region, neighbor), std::max(region, neighbor));
      return true;
    });
  }

  void offer(int a, int b) {
    const int weight = weigh_(regions_.graph(), a, b);
    if (weight > threshold_)
      return;
    if (heap_.size() >= roomBeforeCleaning_)
      dropOutdated();
    heap_.push_back({weight, a, b, version_[a], version_[b]});
    std::push_heap(heap_.begin(), heap_.end(), std::greater<>());
  }

  // Keeps the heap from growing with the number of changes.
  void dropOutdated() {
    std::erase_if(heap_, [this](const Pair &pair) { return !isCurrent(pair); });
    std::make_heap(heap_.begin(), heap_.end(), std::greater<>());
    roomBeforeCleaning_ = std::max(roomBeforeCleaning_, 2 * heap_.size());
  }

  // Region a, the smaller, takes in region b. While its averages stay as they are, so do its pairs.
  void merge(int a, int b) {
    area_[a] += area_[b];
    for (int i = 0; i < nbands_; ++i)
      sumsOf(a)[i] += sumsOf(b)[i];
    ++version_[b];
    if (updateAverages(a)) {
      ++version_[a];
      regions_.merge(b, a);
      offerPairs(a, a);
    } else {
      offerPairs(b, a);
      regions_.merge(b, a);
    }
  }

  BorderedRegions &regions_;
  int nVertices_;
  int nbands_;
  int threshold_;
  ifGraphWeightFn weigh_;
  Array<int> area_;
  Array<std::int64_t> sum_;
  Array<int> version_;
  Array<std::int64_t> metAt_; // the round in which a region was last met
  std::int64_t round_ = 0;
  Vector<Pair> heap_;
  std::size_t roomBeforeCleaning_ = 1 << 16;
};

} // namespace

ifGraph *ifEliminateSmallRegions(ifGraph *graph, int area, ifGraphWeightFn weight) {
  constexpr const char *operation = "ifEliminateSmallRegions";
  requireRegions(operation, graph);
  requireGiven(operation, "weight", weight);
  BorderedRegions regions(operation, graph, 0);
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
  BorderedRegions regions(operation, graph, image->nbands);
  ColorMerging(regions, graph->labelImage, image, areasOf(graph), threshold, weight).run();
  return regions.toGraph(operation, graph).release();
}
