// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/iftSpanning.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inline.h"
#include "base/report.h"
#include "base/require.h"
#include "graph/detail/disjointSets.h"
#include "graph/detail/edgeInserter.h"
#include "graph/detail/graphTools.h"
#include "graph/unionfind.h"
#include "ift/core/detail/forestTransforms.h"
#include "ift/core/detail/lightestFirstQueue.h"
#include "ift/label/ifLabel.h"
#include "ift/regions/detail/graphTransforms.h"
#include "ift/regions/detail/packedTree.h"
#include "ift/regions/detail/regionWalks.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <span>
#include <utility>

using namespace seedforest::detail;

namespace {

template <class Arcs>
void growPixelTree(Arcs arcs, imImage *forest) {
  const int npixels = forest->npixels;
  int **bands = forest->band + forest->nbands - 2;
  using Base = SpanningTransform<Scaled<Arcs>>;
  Marked<Base> transform(Base{{nullptr, bands[0], bands[1], fixedBuckets - 1}, {std::move(arcs)}},
                         npixels);
  PulledBackQueue<CostedEntry> queue(fixedBuckets, npixels);
  std::fill_n(transform.cost, npixels, ifInfiniteCost);
  std::iota(transform.pred, transform.pred + npixels, 0);
  transform.cost[0] = 0;
  queue.append(0, {0, 0});
  propagate(transform, queue);
}

void checkForest(const char *operation, const imImage *image, const imImage *forest) {
  requireBands(operation, image, 0);
  requireBands(operation, forest, 2);
  requireSameSize(operation, image, forest);
}

constexpr const char *primGraph = "iftPrimGraph";

// What the loop knows of a vertex, in one place: the loop takes vertices far apart, so its time is
// that of the cache lines which it touches.
struct TreeVertex {
  int cost; // of the lightest edge so far; once settled, ifInfiniteCostInverted: no offer is less
  int predecessor;
  int feature; // where the weight is that of one feature
};

// The spanning tree of a graph.
template <class Weight>
struct GraphTreeTransform {
  static constexpr int nbuckets = 1001;
  GraphArcs<Weight> arcs;
  TreeVertex *vertices;
  CostedEntry *settled;   // the next place in the list of settled vertices
  unsigned nUpcoming = 0; // calls of prefetch()
  int upcoming[8] = {};   // by the last ones

  using Entry = CostedEntry;
  bool isCurrent(Entry entry, int) const { return vertices[entry.pixel].cost == entry.cost; }
  void settle(Entry entry) {
    *settled++ = entry;
    vertices[entry.pixel].cost = ifInfiniteCostInverted;
  }
  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int u = entry.pixel;
    arcs.each(u, [&](int v, int k) SEEDFOREST_INLINE {
      if (vertices[v].cost != ifInfiniteCostInverted)
        offer(v, k, arcs.weight(u, v, k));
    });
  }
  bool improves(int offered, int v) const { return offered < vertices[v].cost; }
  void conquer(int u, int v, int, int offered) {
    vertices[v].cost = offered;
    vertices[v].predecessor = u;
  }
  int bucket(int offered, int) const { return circularBucket(offered, nbuckets); }
  Entry entry(int v, int, int cost) const { return {v, cost}; }
  // First what holds the pointer to the edges, and, when that has arrived, the edges. Without, the
  // loop takes twice as long on a million small regions.
  SEEDFOREST_INLINE void prefetch(int v) {
    prefetchAt(&vertices[v]);
    prefetchAt(&arcs.graph->vertices[v]);
    const int sooner = std::exchange(upcoming[nUpcoming++ % std::size(upcoming)], v);
    prefetchAt(arcs.graph->vertices[sooner].edges);
  }
};

// Inserts an edge from each vertex to its predecessor, in this order, and gives the vertices their
// costs back. No search for duplicates: a vertex has no edge before its own turn.
void insertTreeEdges(std::span<const CostedEntry> settled, TreeVertex *vertices, ifVertex *tree) {
  constexpr std::size_t ahead = 16;
  BlockArena arena;
  for (std::size_t i = 0; i < settled.size(); ++i) {
    if (i + 2 * ahead < settled.size())
      prefetchAt(&vertices[settled[i + 2 * ahead].pixel]);
    if (i + ahead < settled.size()) {
      const int v = settled[i + ahead].pixel;
      prefetchAt(&tree[v]);
      prefetchAt(&tree[vertices[v].predecessor]);
    }
    const auto [v, cost] = settled[i];
    vertices[v].cost = cost;
    const int predecessor = vertices[v].predecessor;
    if (predecessor == v)
      continue;
    prependEdge(&tree[predecessor], v, cost, arena);
    prependEdge(&tree[v], predecessor, cost, arena);
  }
}

template <class Weight>
void growGraphTree(const ifGraph *graph, Weight weight, TreeVertex *vertices, ifVertex *tree) {
  using Transform = GraphTreeTransform<Weight>;
  const int n = graph->nVertices;
  for (int v = 0; v < n; ++v) {
    vertices[v].cost = ifInfiniteCost;
    vertices[v].predecessor = v;
  }
  const Array<CostedEntry> settled = makeArray<CostedEntry>(static_cast<std::size_t>(n));
  Transform transform = {{primGraph, graph, weight}, vertices, settled.get()};
  if (n > 1) {
    LightestFirstQueue<CostedEntry> queue(Transform::nbuckets, n);
    vertices[1].cost = graph->vertices[1].data[0];
    queue.append(0, {1, vertices[1].cost});
    propagate(transform, queue);
  }
  insertTreeEdges({settled.get(), transform.settled}, vertices, tree);
  for (int v = 0; v < n; ++v) {
    const auto &[cost, predecessor, feature] = vertices[v];
    tree[v].data[forestLabel] = v == 1 || predecessor != v ? 1 : 0;
    tree[v].data[forestCost] = cost;
    tree[v].data[forestPredecessor] = predecessor;
  }
}

struct TreeEdge {
  int smaller;
  int larger;
  int weight;
};

// The edges, each at its smaller end, heaviest first, those of one weight in the order of the walk.
Array<TreeEdge> edgesByFallingWeight(const char *operation, const ifGraph *tree, std::size_t &n) {
  n = 0;
  forEachEdge(operation, tree, [&](int v, const ifEdge &edge) { n += v < edge.target ? 1 : 0; });
  Array<TreeEdge> edges = makeArray<TreeEdge>(n);
  TreeEdge *at = edges.get();
  forEachEdge(operation, tree, [&](int v, const ifEdge &edge) {
    if (v < edge.target)
      *at++ = {v, edge.target, edge.weight};
  });
  std::stable_sort(edges.get(), edges.get() + n,
                   [](const TreeEdge &a, const TreeEdge &b) { return a.weight > b.weight; });
  return edges;
}

// The graph of the parts into which a tree's vertices have been joined, with their label image and
// at least `least` vertices beside vertex 0.
ifGraphPtr makePartGraph(const char *operation, const ifGraph *tree, DisjointSets &sets,
                         std::int64_t least) {
  const int n = tree->nVertices;
  const Array<int> part = makeZeroedArray<int>(static_cast<std::size_t>(n));
  int nParts = 0;
  for (int v = 1; v < n; ++v)
    if (sets.find(v) == v)
      part[v] = ++nParts;
  for (int v = 1; v < n; ++v)
    part[v] = part[sets.find(v)];
  const int last = saturate(std::max<std::int64_t>(least, nParts));
  ifGraphPtr graph = requireMade(allocateGraph(last, 0));
  EdgeInserter edges(operation, graph.get());
  forEachEdge(operation, tree, [&](int v, const ifEdge &edge) {
    const int a = sets.find(v);
    const int b = sets.find(edge.target);
    if (a < b)
      edges.insert(part[a], part[b], 0);
  });
  imImagePtr labels = createImage(1, imTypeAscii, tree->labelImage->ncols, tree->labelImage->nrows);
  mapLabels(tree->labelImage, part.get(), labels.get());
  labels->maxValue = last;
  setLabelImage(graph.get(), labels.release());
  return graph;
}

} // namespace

void iftPrim(const imImage *image, imImage *forest, imNeighborhoodFn adjacency,
             ifArcWeightFn arcWeight) {
  checkForest("iftPrim", image, forest);
  FunctionArcs arcs = functionArcs("iftPrim", image, adjacency, arcWeight);
  int **bands = forest->band + forest->nbands - 2;
  if (!growPackedTree(image, arcs.neighbors, arcWeight, bands[0], bands[1]))
    growPixelTree(std::move(arcs), forest);
}

void iftPrimWF(const imImage *image, imImage *forest, const imImage *weights) {
  checkForest("iftPrimWF", image, forest);
  growPixelTree(weightImageArcs("iftPrimWF", image, weights), forest);
}

ifGraph *iftPrimGraph(ifGraph *graph, ifGraphWeightFn weight) {
  requireData(primGraph, graph, 1);
  requireGiven(primGraph, "weight", weight);
  ifGraphPtr tree = requireMade(tryMakeAlike(graph, forestDataSize).release());
  const int n = graph->nVertices;
  const Array<TreeVertex> vertices = makeArray<TreeVertex>(static_cast<std::size_t>(n));
  if (weight == ifGraphEuclideanDistance && graph->dataSize == 1) {
    for (int v = 0; v < n; ++v)
      vertices[v].feature = graph->vertices[v].data[0];
    const auto difference = [of = vertices.get()](int u, int v) {
      return saturate(std::abs(std::int64_t{of[u].feature} - of[v].feature));
    };
    growGraphTree(graph, difference, vertices.get(), tree->vertices);
  } else {
    growGraphTree(graph, CalledGraphWeight{graph, weight}, vertices.get(), tree->vertices);
  }
  return tree.release();
}

void ifMstThreshold(const imImage *forest, imImage *output, double fraction) {
  requireBands("ifMstThreshold", forest, 2);
  requireBands("ifMstThreshold", output, 1);
  requireSameSize("ifMstThreshold", forest, output);
  const int *cost = forest->band[forest->nbands - 2];
  const int *predecessor = forest->band[forest->nbands - 1];
  const int n = forest->npixels;
  if (!allWithin(predecessor, n, 0, n - 1))
    fatal("ifMstThreshold: predecessors outside the image\n");
  const int threshold = truncate(std::rint(fraction * largestValue(forest, forest->nbands - 2)));
  DisjointSets sets(n);
  for (int p = 0; p < n; ++p)
    if (predecessor[p] != p && cost[p] <= threshold)
      sets.join(p, predecessor[p]);
  for (int p = 0; p < n; ++p)
    output->band[0][p] = sets.find(p);
  output->maxValue = largestValue(output, 0);
}

ifGraph *ifThresholdGraph(ifGraph *tree, double fraction) {
  requireData("ifThresholdGraph", tree, forestDataSize);
  requireRegions("ifThresholdGraph", tree);
  const int n = tree->nVertices;
  const int threshold = truncate(fraction * 1000.0);
  const auto isKept = [&](int v) {
    const int *data = tree->vertices[v].data;
    return data[forestPredecessor] != v && data[forestCost] <= threshold;
  };
  for (int v = 1; v < n; ++v)
    if (isKept(v))
      requireVertex("ifThresholdGraph", tree, tree->vertices[v].data[forestPredecessor]);
  ifGraphPtr graph = requireMade(tryMakeAlike(tree, 0).release());
  progress("threshold is %d\n", threshold);
  DisjointSets sets(n);
  EdgeInserter edges("ifThresholdGraph", graph.get());
  for (int v = 1; v < n; ++v)
    if (isKept(v)) {
      const int *data = tree->vertices[v].data;
      edges.insert(v, data[forestPredecessor], data[forestCost]);
      sets.join(v, data[forestPredecessor]);
    }
  const Array<int> representative = makeArray<int>(static_cast<std::size_t>(n));
  for (int v = 0; v < n; ++v)
    representative[v] = sets.find(v);
  mapLabels(graph->labelImage, representative.get(), graph->labelImage);
  ifCorrectLabels(graph->labelImage);
  return graph.release();
}

ifGraph *ifThresholdMST(ifGraph *tree, int threshold) {
  requireRegions("ifThresholdMST", tree);
  DisjointSets sets(tree->nVertices);
  std::int64_t nParts = 1;
  forEachEdge("ifThresholdMST", tree, [&](int v, const ifEdge &edge) {
    if (edge.weight <= threshold)
      sets.join(v, edge.target);
    else if (v < edge.target)
      ++nParts;
  });
  progress("there will be %d regions\n", saturate(nParts));
  return makePartGraph("ifThresholdMST", tree, sets, nParts).release();
}

ifGraph *ifThresholdMST_nRegions(ifGraph *tree, int n) {
  constexpr const char *operation = "ifThresholdMST_nRegions";
  requireRegions(operation, tree);
  std::size_t nEdges;
  const Array<TreeEdge> edges = edgesByFallingWeight(operation, tree, nEdges);
  const std::size_t nCuts = std::min(nEdges, static_cast<std::size_t>(std::max(n, 1)) - 1);
  PairSet cuts;
  for (std::size_t i = 0; i < nCuts; ++i)
    cuts.insert(edges[i].smaller, edges[i].larger);
  // A copy has its lists reversed, so this walk goes from the oldest edge to the youngest.
  const ifGraphPtr copy = requireMade(tryMakeGraph("createGraph", tree->nVertices, 0).release());
  copyEdges(operation, tree, copy.get());
  DisjointSets sets(tree->nVertices);
  forEachEdge(operation, copy.get(), [&](int v, const ifEdge &edge) {
    if (!cuts.contains(std::min(v, edge.target), std::max(v, edge.target)))
      sets.join(v, edge.target);
  });
  return makePartGraph(operation, tree, sets, n).release();
}
