// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/ifRegionMerging.h"

#include "graphs.h"
#include "ift/regions/ifFeatures.h"

#include <set>
#include <tuple>

namespace {

// Which region each vertex is in: the smallest vertex of it.
using Parts = std::vector<int>;

void merge(Parts &parts, int a, int b) {
  std::replace(parts.begin(), parts.end(), std::max(a, b), std::min(a, b));
}

// Calls visit(u, v) for each edge between two regions, from both ends.
template <class Visit>
void forEachBorder(const ifGraph *graph, const Parts &parts, Visit visit) {
  const Lists lists = listsOf(graph);
  for (int v = 1; v < graph->nVertices; ++v)
    for (const Arc &arc : lists[v])
      if (arc.target != 0 && parts[v] != parts[arc.target]) {
        visit(v, arc.target);
        visit(arc.target, v);
      }
}

bool dropSmallest(const ifGraph *graph, Parts &parts, int least, ifGraphWeightFn weight) {
  std::vector<int> area(parts.size());
  for (int p = 0; p < graph->labelImage->npixels; ++p)
    ++area[parts[graph->labelImage->band[0][p]]];
  std::tuple<int, int, int, int> best = {least, 0, 0, 0}; // area, region, weight, neighbour
  forEachBorder(graph, parts, [&](int u, int v) {
    best = std::min(best, {area[parts[u]], parts[u], weight(graph, u, v), parts[v]});
  });
  merge(parts, std::get<1>(best), std::get<3>(best));
  return std::get<1>(best) != 0;
}

bool joinSimilar(const ifGraph *graph, Parts &parts, int threshold, ifGraphWeightFn weight) {
  const Lists lists = listsOf(graph);
  for (int v = 1; v < graph->nVertices; ++v)
    for (const Arc &arc : lists[v])
      if (arc.target != 0 && weight(graph, v, arc.target) <= threshold)
        merge(parts, parts[v], parts[arc.target]);
  return false;
}

// A turn of all borders between regions.
bool joinMostSimilar(const ifGraph *graph, const imImage *image, Parts &parts, int threshold,
                     ifGraphWeightFn weight) {
  using Border = std::tuple<int, int, int>; // weight, regions
  const auto weighed = [&](int u, int v) {
    const ifGraphPtr regions = makeGraph(graph->nVertices - 1, {});
    Matrix labels = bandOf(graph->labelImage);
    for (std::vector<int> &row : labels)
      for (int &label : row)
        label = parts[label];
    setLabelImage(regions.get(), makeImage(labels).release());
    const ifGraphPtr means(ifComputeAverageColors(regions.get(), image));
    const auto [a, b] = std::minmax(parts[u], parts[v]);
    return Border(weight(means.get(), a, b), a, b);
  };
  std::set<Border> borders;
  forEachBorder(graph, parts, [&](int u, int v) { borders.insert(weighed(u, v)); });
  const Parts before = parts;
  while (!borders.empty()) {
    const auto [weightThen, u, v] = borders.extract(borders.begin()).value();
    const Border now = weighed(u, v);
    const auto [weightNow, a, b] = now;
    if (a == b || weightThen > threshold)
      continue;
    if (weightNow > weightThen)
      borders.insert(now);
    else
      merge(parts, a, b);
  }
  return parts != before;
}

// Compares what an operation made with the parts that are there when no step is left.
template <class Step>
void expectParts(const char *what, ifGraph *made, ifGraph *graph, Step step) {
  SCOPED_TRACE(what);
  const ifGraphPtr owner(made);
  Parts parts(graph->nVertices);
  std::iota(parts.begin(), parts.end(), 0);
  while (step(parts)) {
  }
  const std::set<int> regions(parts.begin(), parts.end());
  // Each copy turns the lists round.
  const ifGraphPtr numbered(copyBaseGraph(ifGraphPtr(copyBaseGraph(graph, 0)).get(), 1));
  for (int v = 0; v < graph->nVertices; ++v)
    numbered->vertices[v].data[0] =
        static_cast<int>(std::distance(regions.begin(), regions.find(parts[v])));
  const ifGraphPtr expected(ifColapseGraph(numbered.get()));
  EXPECT_EQ(listsOf(made), listsOf(expected.get()));
  EXPECT_EQ(bandOf(made->labelImage), bandOf(expected->labelImage));
  EXPECT_EQ(made->labelImage->maxValue, expected->labelImage->maxValue);
}

TEST(RegionMerging, EqualsTheDefinitionsOnRandomGraphs) {
  std::mt19937 random(81);
  for (int round = 0; round < 1500; ++round) {
    const int n = pick(random, 0, 14); // some labels may have no pixel
    imImagePtr labels =
        randomImage(random, 1, imTypeAscii, pick(random, 1, 9), pick(random, 1, 6), 0, n);
    const imImagePtr image =
        randomImage(random, pick(random, 1, 3), imTypeWork, labels->ncols, labels->nrows,
                    round % 5 == 0 ? minInt : 0, round % 5 == 0 ? maxInt : 30);
    ifGraphPtr graph(ifMosaicToGraph(labels.get()));
    graph.reset(copyBaseGraph(graph.get(), 1));
    if (round % 3 != 0) { // not only neighbours in the plane
      graph = makeGraph(n, {}, 1);
      setLabelImage(graph.get(), labels.release());
      for (int edges = pick(random, 0, 2 * n); edges > 0; --edges)
        (round % 3 == 1 ? insertDirectedEdge : insertEdge)(graph.get(), pick(random, 0, n),
                                                           pick(random, 0, n), 77);
    }
    for (int v = 0; v <= n; ++v)
      graph->vertices[v].data[0] = pick(random, -2, 4);
    const auto weight = round % 2 == 0 ? ifGraphEuclideanDistance : ifGraphWatershedDistance;
    const int limit = pick(random, -1, 20);
    SCOPED_TRACE(round);
    expectParts("small", ifEliminateSmallRegions(graph.get(), limit, weight), graph.get(),
                [&](Parts &parts) { return dropSmallest(graph.get(), parts, limit, weight); });
    expectParts("similar", eliminateSimilarRegions(graph.get(), limit / 6, weight), graph.get(),
                [&](Parts &parts) { return joinSimilar(graph.get(), parts, limit / 6, weight); });
    expectParts("colours", ifMergeSimilarColors(graph.get(), image.get(), limit, weight),
                graph.get(), [&](Parts &parts) {
                  return joinMostSimilar(graph.get(), image.get(), parts, limit, weight);
                });
  }
}

TEST(RegionMerging, OfAMosaic) {
  const imImagePtr labels = makeImage({{1, 1, 1, 2, 2}, {1, 3, 4, 2, 2}, {5, 5, 5, 5, 5}});
  const imImagePtr image =
      makeImage({{10, 10, 10, 40, 40}, {10, 24, 27, 40, 40}, {52, 52, 52, 52, 52}});
  const ifGraphPtr mosaic(ifMosaicToGraph(labels.get()));
  const ifGraphPtr graph(ifComputeAverageColors(mosaic.get(), image.get()));
  const auto labelsOf = [](ifGraph *made) { return bandOf(ifGraphPtr(made)->labelImage); };
  // 3 joins 4, its nearest (24, 27); of their old edges 4's to 2 weighs 13, 3's to 1 weighs 14.
  EXPECT_EQ(labelsOf(ifEliminateSmallRegions(graph.get(), 3, ifGraphEuclideanDistance)),
            (Matrix{{1, 1, 1, 2, 2}, {1, 2, 2, 2, 2}, {3, 3, 3, 3, 3}}));
  // 10 -14- 24 -3- 27 -13- 40 -12- 52: all but the step of 14.
  EXPECT_EQ(labelsOf(eliminateSimilarRegions(graph.get(), 13, ifGraphEuclideanDistance)),
            (Matrix{{1, 1, 1, 2, 2}, {1, 2, 2, 2, 2}, {2, 2, 2, 2, 2}}));
  // 24 and 27 become 25, 40 and 52 become 46: from 25 both 10 and 46 are farther than 13.
  EXPECT_EQ(labelsOf(ifMergeSimilarColors(graph.get(), image.get(), 13, ifGraphEuclideanDistance)),
            (Matrix{{1, 1, 1, 2, 2}, {1, 3, 3, 2, 2}, {2, 2, 2, 2, 2}}));
}

} // namespace
