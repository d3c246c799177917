// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/iftGraph.h"

#include "graphs.h"
#include "ift/core/iftForest.h"
#include "image/detail/neighborWalk.h"

using namespace seedforest::detail;

namespace {

// The graph of an image's pixels, lists in the order of the adjacency and bands as data.
ifGraphPtr pixelGraph(const imImage *image, imNeighborhoodFn adjacency) {
  ifGraphPtr graph(allocateGraph(image->npixels - 1, image->nbands));
  const NeighborWalk neighbors(image, adjacency);
  for (int p = 0; p < image->npixels; ++p) {
    std::vector<int> list; // edges are inserted at the head
    neighbors.each(p, [&](int q, int) { list.insert(list.begin(), q); });
    for (const int q : list)
      insertDirectedEdge(graph.get(), p, q, 5);
    for (int b = 0; b < image->nbands; ++b)
      graph->vertices[p].data[b] = image->band[b][p];
  }
  return graph;
}

TEST(GraphForest, EqualsTheTransformOfPixels) {
  std::mt19937 random(91);
  const ifPathCostFn costs[] = {ifPathCostMax, ifPathCostSum, ifPathCostMaxLocal, ifPathCostMin};
  for (int round = 0; round < 400; ++round) {
    const imNeighborhoodFn adjacency = round % 3 == 0 ? imNeighborhood4 : imNeighborhood8;
    const imImagePtr image = randomImage(random, pick(random, 1, 2), imTypeWork, pick(random, 1, 9),
                                         pick(random, 1, 9), 0, pick(random, 1, 9));
    std::vector<Root> roots;
    for (int n = pick(random, 0, 6); n > 0; --n)
      roots.push_back({pick(random, 0, image->npixels - 1), pick(random, -2, 3),
                       pick(random, round % 4 == 0 ? -9 : 0, 9)});
    const ifRootsPtr seeds = makeRoots(roots);
    const int maxCost = round % 5 == 0 ? 4 : round % 7 == 0 ? maxInt : 200; // some go round
    const bool isEuclidean = round % 2 == 0;
    const imImagePtr forest = blankLike(image, 3);
    iftNonNormalized(image.get(), forest.get(), adjacency,
                     isEuclidean ? ifEuclideanDistance : ifWatershedMetric, maxCost,
                     costs[round / 2 % 4], seeds.get());
    const ifGraphPtr graph = pixelGraph(image.get(), adjacency);
    const ifGraphPtr made(
        iftGraph(graph.get(), isEuclidean ? ifGraphEuclideanDistance : ifGraphWatershedDistance,
                 costs[round / 2 % 4], maxCost, seeds.get()));
    for (int p = 0; p < image->npixels; ++p)
      EXPECT_EQ(dataOf(made)[p],
                (std::vector<int>{forest->band[0][p], forest->band[1][p], forest->band[2][p]}))
          << round << ": " << p;
    EXPECT_EQ(listsOf(made.get()), listsOf(ifGraphPtr(copyBaseGraph(graph.get(), 3)).get()));
  }
}

TEST(GraphForest, GrowsFromThreeRegions) {
  // 1 and 3 are equally far from 2, and 3 is listed first; 0 lets paths through; an edge of one
  // direction leads no way back.
  const ifGraphPtr graph =
      withData({{0}, {0}, {5}, {0}, {1}, {9}, {0}}, {{1, 2, 1}, {2, 3, 1}, {3, 0, 1}, {0, 4, 1}});
  insertDirectedEdge(graph.get(), 6, 5, 1);
  const ifRootsPtr roots = makeRoots({{3, 30}, {1, 10}, {6, 60, 2}});
  const ifGraphPtr forest(
      iftGraph(graph.get(), ifGraphWatershedDistance, ifPathCostSum, 20, roots.get()));
  EXPECT_EQ(
      dataOf(forest),
      (Matrix{
          {30, 0, 3}, {10, 0, 1}, {30, 5, 3}, {30, 0, 3}, {30, 1, 0}, {60, 11, 6}, {60, 2, 6}}));
  EXPECT_EQ(bandOf(forest->labelImage), bandOf(graph->labelImage));
  EXPECT_EQ(ifGraphPtr(iftGraph(ifGraphPtr(allocateGraph(-1, 0)).get(), ifGraphMinDistance,
                                ifPathCostMax, 0, makeRoots({}).get()))
                ->nVertices,
            0);
}

} // namespace
