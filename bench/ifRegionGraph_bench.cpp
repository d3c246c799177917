// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Graphs of n regions and merging in them, with n doubling: bricks, and a background that touches
// each of n small regions.

#include "bench.h"
#include "images.h"

#include "ift/regions/ifRegionGraph.h"
#include "ift/regions/ifRegionMerging.h"
#include "ift/regions/iftSpanning.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

// n single pixels, numbered from 2, on a background of label 1.
imImagePtr star(int n) {
  const int perRow = static_cast<int>(std::sqrt(n)) + 1;
  imImagePtr labels(imCreateImage(1, imTypeAscii, 2 * perRow + 1, 2 * perRow + 1));
  std::fill_n(labels->band[0], labels->npixels, 1);
  for (int i = 0; i < n; ++i)
    labels->band[0][2 * (i % perRow) + 1 + labels->row[2 * (i / perRow) + 1]] = i + 2;
  labels->maxValue = n + 1;
  return labels;
}

// The graph of a mosaic with one feature on each vertex.
ifGraphPtr graphWithFeature(const imImagePtr &labels) {
  ifGraphPtr graph(copyBaseGraph(ifGraphPtr(ifMosaicToGraph(labels.get())).get(), 1));
  const std::vector<int> features = bench::randomFeatures(labels->maxValue);
  for (int v = 0; v < graph->nVertices; ++v)
    graph->vertices[v].data[0] = features[v];
  return graph;
}

void starToGraph(benchmark::State &state) {
  const imImagePtr labels = star(static_cast<int>(state.range(0)));
  for (auto _ : state)
    ifGraphPtr(ifMosaicToGraph(labels.get()));
  reportPerItem(state, "ns/region", static_cast<double>(state.range(0)));
}

// The star, which is its own spanning tree, with repeating weights.
ifGraphPtr starTree(int n) {
  ifGraphPtr tree(ifMosaicToGraph(star(n).get()));
  for (int v = 1; v < tree->nVertices; ++v)
    for (ifEdge *edge = tree->vertices[v].edges; edge != nullptr; edge = edge->next)
      edge->weight = std::max(v, edge->target) * 7919 % 1000;
  return tree;
}

void cutStarIntoRegions(benchmark::State &state) {
  const ifGraphPtr tree = starTree(static_cast<int>(state.range(0)));
  for (auto _ : state)
    ifGraphPtr(ifThresholdMST_nRegions(tree.get(), tree->nVertices / 2));
  reportPerItem(state, "ns/region", static_cast<double>(state.range(0)));
}

// About n regions of 16 pixels, in the mosaic of a square image.
imImagePtr smallBricks(std::int64_t n) {
  return bench::drawBricks(4 * static_cast<int>(std::sqrt(n)), 4);
}

// Merging down to a thousand regions or so, as small ones; what is left is counted.
void dropSmallRegions(benchmark::State &state) {
  const imImagePtr labels = smallBricks(state.range(0));
  const ifGraphPtr graph = graphWithFeature(labels);
  int left = 0;
  for (auto _ : state) {
    const ifGraphPtr merged(
        ifEliminateSmallRegions(graph.get(), labels->npixels / 1500, ifGraphEuclideanDistance));
    left = merged->nVertices - 1;
  }
  state.counters["left"] = left;
  reportPerItem(state, "ns/region", static_cast<double>(state.range(0)));
}

// The same where all but one are neighbours of that one alone.
void dropSmallRegionsOfStar(benchmark::State &state) {
  const ifGraphPtr graph = graphWithFeature(star(static_cast<int>(state.range(0))));
  for (auto _ : state)
    ifGraphPtr(ifEliminateSmallRegions(graph.get(), 2, ifGraphEuclideanDistance));
  reportPerItem(state, "ns/region", static_cast<double>(state.range(0)));
}

// Growing by mean colour until neighbours are far apart.
void mergeSimilarColors(benchmark::State &state) {
  const imImagePtr labels = smallBricks(state.range(0));
  const ifGraphPtr graph(ifMosaicToGraph(labels.get()));
  const imImagePtr image(imCopyImage(labels.get()));
  const std::vector<int> features = bench::randomFeatures(labels->maxValue);
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = features[labels->band[0][p]];
  int left = 0;
  for (auto _ : state) {
    const ifGraphPtr merged(
        ifMergeSimilarColors(graph.get(), image.get(), 200, ifGraphEuclideanDistance));
    left = merged->nVertices - 1;
  }
  state.counters["left"] = left;
  reportPerItem(state, "ns/region", static_cast<double>(state.range(0)));
}

// Merging across light edges, which takes all edges once: what the other two are compared with.
void mergeAcrossLightEdges(benchmark::State &state) {
  const ifGraphPtr graph = graphWithFeature(smallBricks(state.range(0)));
  for (auto _ : state)
    ifGraphPtr(eliminateSimilarRegions(graph.get(), 100, ifGraphEuclideanDistance));
  reportPerItem(state, "ns/region", static_cast<double>(state.range(0)));
}

void doubling(benchmark::internal::Benchmark *b) {
  b->ArgName("regions")->Unit(benchmark::kMillisecond);
  for (const int n : {100000, 200000, 400000, 800000})
    b->Arg(n);
}
BENCHMARK(starToGraph)->Apply(doubling);
BENCHMARK(cutStarIntoRegions)->Apply(doubling);

void doublingToAMillion(benchmark::internal::Benchmark *b) {
  b->ArgName("regions")->Unit(benchmark::kMillisecond);
  for (const int n : {125000, 250000, 500000, 1000000})
    b->Arg(n);
}
BENCHMARK(mergeAcrossLightEdges)->Apply(doublingToAMillion);
BENCHMARK(dropSmallRegions)->Apply(doublingToAMillion);
BENCHMARK(dropSmallRegionsOfStar)->Apply(doublingToAMillion);
BENCHMARK(mergeSimilarColors)->Apply(doublingToAMillion);

} // namespace
