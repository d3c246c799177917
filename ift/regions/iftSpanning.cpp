// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/iftSpanning.h"

#include "base/arith.h"
#include "base/buffer.h"
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
#include <numeric>
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

// The spanning tree of a graph. What its vertices gain is kept side by side, since the integers of
// a vertex lie on their own, and goes to them in the end.
template <class Weight>
struct GraphTreeTransform {
  struct Gain {
    int cost;
    int predecessor;
  };
  static constexpr int nbuckets = 1001;
  GraphArcs<Weight> arcs;
  ifVertex *tree;
  Array<Gain> gain;
  BlockArena &arena;

  // No search for duplicates: a vertex has no edge in the tree before it is settled.
  void settle(int v) {
    const auto [cost, predecessor] = gain[v];
    if (predecessor == v)
      return;
    prependEdge(&tree[predecessor], v, cost, arena);
    prependEdge(&tree[v], predecessor, cost, arena);
  }
  int costOf(int v) const { return gain[v].cost; }
  int extend(int u, int v, int k) const { return arcs.weight(u, v, k); }
  bool improves(int offered, int v) const { return offered < gain[v].cost; }
  void conquer(int u, int v, int, int offered) { gain[v] = {offered, u}; }
  int bucket(int offered, int) const { return circularBucket(offered, nbuckets); }
};

template <class Weight>
void growGraphTree(const ifGraph *graph, Weight weight, ifVertex *tree) {
  using Base = GraphTreeTransform<Weight>;
  const int n = graph->nVertices;
  BlockArena arena;
  Marked<Base> transform(Base{{primGraph, graph, weight},
                              tree,
                              makeArray<typename Base::Gain>(static_cast<std::size_t>(n)),
                              arena},
                         n);
  for (int v = 0; v < n; ++v)
    transform.gain[v] = {ifInfiniteCost, v};
  if (n > 1) {
    LightestFirstQueue<CostedEntry> queue(Base::nbuckets, n);
    const int cost = graph->vertices[1].data[0];
    transform.gain[1].cost = cost;
    queue.append(0, {1, cost});
    propagate(transform, queue);
  }
  for (int v = 0; v < n; ++v) {
    const auto [cost, predecessor] = transform.gain[v];
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
  if (weight == ifGraphEuclideanDistance && graph->dataSize == 1) {
    const Array<int> feature = makeArray<int>(static_cast<std::size_t>(graph->nVertices));
    std::transform(graph->vertices, graph->vertices + graph->nVertices, feature.get(),
                   [](const ifVertex &vertex) { return vertex.data[0]; });
    const auto difference = [of = feature.get()](int u, int v) {
      return saturate(std::abs(std::int64_t{of[u]} - of[v]));
    };
    growGraphTree(graph, difference, tree->vertices);
  } else {
    growGraphTree(graph, CalledGraphWeight{graph, weight}, tree->vertices);
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
