#include "ift/regions/ifRegionGraph.h"

#include "graphs.h"
#include "image/imNeighborhood.h"

#include <climits>

using namespace seedforest::detail;

namespace {

// A graph whose vertices carry these integers.
ifGraphPtr withData(const Matrix &data, const std::vector<Edge> &edges) {
  ifGraphPtr graph = makeGraph(static_cast<int>(data.size()) - 1, edges, data[0].size());
  for (std::size_t v = 0; v < data.size(); ++v)
    std::copy(data[v].begin(), data[v].end(), graph->vertices[v].data);
  return graph;
}

TEST(RegionGraph, Weights) {
  const ifGraphPtr graph = withData({{1, 0, 0}, {2, 1, 1}, {2, 1, 0}, {INT_MIN, 0, 0}}, {});
  const struct {
    ifGraphWeightFn weight;
    int u, v, expected;
  } cases[] = {
      {ifGraphEuclideanDistance, 0, 1, 1},          // sqrt(3 / 3)
      {ifGraphEuclideanDistance, 0, 2, 0},          // 2 / 3 is 0
      {ifGraphEuclideanDistance, 3, 0, 1239850262}, // far beyond 32 bits when squared
      {ifGraphMinDistance, 1, 3, INT_MIN},          {ifGraphWatershedDistance, -1, 2, 2},
  };
  for (const auto &c : cases)
    EXPECT_EQ(c.weight(graph.get(), c.u, c.v), c.expected) << c.u << c.v;
}

// An insertion for each pair of neighbours that differ.
Lists literalMosaic(const imImage *labels) {
  const ifGraphPtr graph(createGraph(labels, 0));
  const NeighborWalk neighbors(labels, imNeighborhood8forward);
  for (int p = 0; p < labels->npixels; ++p)
    neighbors.each(p, [&](int q, int) {
      if (labels->band[0][p] != labels->band[0][q])
        insertEdge(graph.get(), labels->band[0][p], labels->band[0][q], 0);
    });
  return listsOf(graph.get());
}

TEST(RegionGraph, OfMosaics) {
  const ifGraphPtr graph(ifMosaicToGraph(makeImage({{1, 1, 2}, {1, 3, 3}}).get()));
  EXPECT_EQ(listsOf(graph.get()),
            (Lists{{}, {{2, 0}, {3, 0}}, {{3, 0}, {1, 0}}, {{2, 0}, {1, 0}}}));
  EXPECT_EQ(bandOf(graph->labelImage), (Matrix{{1, 1, 2}, {1, 3, 3}}));
}

TEST(RegionGraph, OfMosaicsAsIfInsertedOneByOne) {
  std::mt19937 random(11);
  for (int round = 0; round < 1500; ++round) {
    const imImagePtr labels =
        randomImage(random, 1, imTypeAscii, 1 + int(random() % 40), 1 + int(random() % 12), 0,
                    int(random() % (round % 2 == 0 ? 4 : 60)));
    // Noise; regions of some size; single pixels on a background.
    const int cell = 1 + round % 5;
    for (int y = 0; y < labels->nrows; ++y)
      for (int x = 0; x < labels->ncols; ++x) {
        int &label = labels->band[0][x + labels->row[y]];
        if (round % 3 == 1)
          label = labels->band[0][x / cell * cell + labels->row[y / cell * cell]];
        else if (round % 3 == 2 && (x % 2 == 0 || y % 2 == 0))
          label = 0;
      }
    EXPECT_EQ(listsOf(ifGraphPtr(ifMosaicToGraph(labels.get())).get()),
              literalMosaic(labels.get()));
  }
}

TEST(RegionGraph, Gradient) {
  const ifGraphPtr graph = withData({{-9, 500}, {3, 10}, {INT_MIN, 12}, {4, INT_MAX}, {7, 7}},
                                    {{1, 0, 1}, {1, 4, 1}, {2, 3, 1}});
  const ifGraphPtr gradient(ifMorphoGradGraph(graph.get()));
  const int expected[] = {0, 493, INT_MAX, INT_MAX, 4};
  for (int v = 0; v <= 4; ++v)
    EXPECT_EQ(gradient->vertices[v].data[0], expected[v]);
  EXPECT_EQ(gradient->dataSize, 1);
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

TEST(RegionGraphDeathTest, WhatIsMissingEndsWithALine) {
  const auto dies = testing::ExitedWithCode(1);
  const ifGraphPtr graph = withData({{0}, {-1}, {1}}, {{1, 2, 0}});
  EXPECT_EXIT(ifGraphMinDistance(graph.get(), 0, 3), dies, "ifGraphMinDistance");
  EXPECT_EXIT(ifColapseGraph(makeGraph(2, {}).get()), dies, "ifColapseGraph: vertices");
  EXPECT_EXIT(ifColapseGraph(graph.get()), dies, "ifColapseGraph: vertex -1");
  listInsertEdge(&graph->vertices[2], 3, 0);
  EXPECT_EXIT(ifMorphoGradGraph(graph.get()), dies, "vertex 3");
  graph->labelImage->maxValue = 1;
  EXPECT_EXIT(ifMosaicToGraph(graph->labelImage), dies, "ifMosaicToGraph");
}

} // namespace
