// Region graphs of two kinds of mosaics: squares, in the sizes of ordinary images, and a background
// that touches each of n small regions, with n doubling. Compared with the copy of the label image
// that each graph contains.

#include "bench.h"

#include "ift/regions/ifRegionGraph.h"
#include "ift/regions/iftSpanning.h"

#include <algorithm>
#include <cmath>

namespace {

// Squares of 16 x 16 pixels, every second row shifted by half a square, numbered from 1.
imImagePtr bricks(int side) {
  constexpr int brick = 16;
  imImagePtr labels(imCreateImage(1, imTypeAscii, side, side));
  const int perRow = side / brick + 1;
  for (int p = 0; p < labels->npixels; ++p) {
    const int row = p / side / brick;
    labels->band[0][p] = 1 + row * perRow + (p % side + row % 2 * brick / 2) / brick;
  }
  labels->maxValue = *std::max_element(labels->band[0], labels->band[0] + labels->npixels);
  return labels;
}

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

void copyLabels(benchmark::State &state) {
  const imImagePtr labels = bricks(static_cast<int>(state.range(0)));
  for (auto _ : state)
    ifGraphPtr(createGraph(labels.get(), 0));
  reportPerItem(state, "ns/pixel", labels->npixels);
}

void mosaicToGraph(benchmark::State &state) {
  const imImagePtr labels = bricks(static_cast<int>(state.range(0)));
  for (auto _ : state)
    ifGraphPtr(ifMosaicToGraph(labels.get()));
  reportPerItem(state, "ns/pixel", labels->npixels);
  reportPeakMemory(state, labels->npixels);
}

// The spanning tree of a mosaic's regions by the difference of one feature; the graph is made
// before the measurement.
void treeOfRegions(benchmark::State &state) {
  const imImagePtr labels = bricks(static_cast<int>(state.range(0)));
  const ifGraphPtr graph(copyBaseGraph(ifGraphPtr(ifMosaicToGraph(labels.get())).get(), 1));
  for (int v = 0; v < graph->nVertices; ++v)
    graph->vertices[v].data[0] = v * 7919LL % 1000;
  for (auto _ : state)
    ifGraphPtr(iftPrimGraph(graph.get(), ifGraphEuclideanDistance));
  reportPerItem(state, "ns/pixel", labels->npixels);
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

void sides(benchmark::internal::Benchmark *b) {
  b->ArgName("side")->Arg(1024)->Arg(benchSide)->Unit(benchmark::kMillisecond);
}
BENCHMARK(copyLabels)->Apply(sides);
BENCHMARK(mosaicToGraph)->Apply(sides);
BENCHMARK(treeOfRegions)->Apply(sides);

void doubling(benchmark::internal::Benchmark *b) {
  b->ArgName("regions")->Unit(benchmark::kMillisecond);
  for (const int n : {100000, 200000, 400000, 800000})
    b->Arg(n);
}
BENCHMARK(starToGraph)->Apply(doubling);
BENCHMARK(cutStarIntoRegions)->Apply(doubling);

} // namespace
