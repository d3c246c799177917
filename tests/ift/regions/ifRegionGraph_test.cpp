// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/ifRegionGraph.h"

#include "reference/literalMosaic.h"

#include <algorithm>

using namespace seedforest::detail;

namespace {

TEST(RegionGraph, Weights) {
  const ifGraphPtr graph = withData({{1, 0, 0}, {2, 1, 1}, {2, 1, 0}, {minInt, 0, 0}}, {});
  const struct {
    ifGraphWeightFn weight;
    int u, v, expected;
  } cases[] = {
      {ifGraphEuclideanDistance, 0, 1, 1},          // sqrt(3 / 3)
      {ifGraphEuclideanDistance, 0, 2, 0},          // 2 / 3 is 0
      {ifGraphEuclideanDistance, 3, 0, 1239850262}, // far beyond 32 bits when squared
      {ifGraphMinDistance, 1, 3, minInt},           {ifGraphWatershedDistance, -1, 2, 2},
  };
  for (const auto &c : cases)
    EXPECT_EQ(c.weight(graph.get(), c.u, c.v), c.expected) << c.u << c.v;
}

TEST(RegionGraph, OfMosaics) {
  std::mt19937 random(11);
  for (int round = 0; round < 1500; ++round) {
    const imImagePtr labels =
        randomImage(random, 1, imTypeAscii, pick(random, 1, 40), pick(random, 1, 12), 0,
                    pick(random, 0, round % 2 == 0 ? 3 : 59));
    if (round % 3 == 0) // else noise
      std::replace_if(
          labels->band[0], labels->band[0] + labels->npixels, [](int v) { return v % 9 > 0; }, 1);
    const ifGraphPtr graph(ifMosaicToGraph(labels.get()));
    EXPECT_EQ(listsOf(graph.get()), literalMosaic(labels.get()));
    EXPECT_EQ(bandOf(graph->labelImage), bandOf(labels));
  }
}

TEST(RegionGraph, Gradient) {
  const ifGraphPtr graph = withData({{-9, 500}, {3, 10}, {minInt, 12}, {4, maxInt}, {7, 7}},
                                    {{1, 0, 1}, {1, 4, 1}, {2, 3, 1}});
  const ifGraphPtr gradient(ifMorphoGradGraph(graph.get()));
  EXPECT_EQ(dataOf(gradient), (Matrix{{0}, {493}, {maxInt}, {maxInt}, {4}}));
  EXPECT_EQ(listsOf(gradient.get())[1], (std::vector<Arc>{{0, 1}, {4, 1}}));
}

TEST(RegionGraph, Collapse) {
  // Vertices 2 and 4 become region 1, vertex 5, which has no pixel, region 7.
  const ifGraphPtr graph =
      withData({{0}, {3}, {1}, {3}, {1}, {7}}, {{1, 2, 9}, {2, 4, 9}, {1, 3, 9}});
  insertDirectedEdge(graph.get(), 4, 0, 9);
  insertDirectedEdge(graph.get(), 5, 3, 9);
  setLabelImage(graph.get(), makeImage({{0, 1, 2}, {3, 4, 4}}).release());
  const ifGraphPtr merged(ifColapseGraph(graph.get()));
  EXPECT_EQ(bandOf(merged->labelImage), (Matrix{{0, 3, 1}, {3, 1, 1}}));
  EXPECT_EQ(merged->labelImage->maxValue, 3);
  EXPECT_EQ(listsOf(merged.get()),
            (Lists{{}, {{0, 0}, {3, 0}}, {}, {{1, 0}}, {}, {}, {}, {{3, 0}}}));
}

} // namespace
