#include "ift/regions/iftSpanning.h"

#include "graph/unionfind.h"
#include "graphs.h"
#include "ift/core/ifWeightImage.h"

#include <algorithm>

using namespace seedforest::detail;

namespace {

// The weight of a minimum spanning forest, by Kruskal's algorithm.
std::int64_t kruskal(int nVertices, std::vector<Edge> edges) {
  std::sort(edges.begin(), edges.end(),
            [](const Edge &a, const Edge &b) { return a.weight < b.weight; });
  DisjointSets sets(nVertices);
  std::int64_t sum = 0;
  for (const Edge &edge : edges)
    if (sets.find(edge.a) != sets.find(edge.b)) {
      sets.join(edge.a, edge.b);
      sum += edge.weight;
    }
  return sum;
}

TEST(Trees, OfPixelsAreMinimal) {
  std::mt19937 random(31);
  for (int round = 0; round < 300; ++round) {
    const imNeighborhoodFn adjacency = round % 2 == 0 ? imNeighborhood4 : imNeighborhood8;
    const imImagePtr image = randomImage(random, 2, imTypeAscii, 1 + int(random() % 12),
                                         1 + int(random() % 12), 0, round % 3 == 0 ? 3 : 1000);
    const NeighborWalk neighbors(image.get(), adjacency);
    std::vector<Edge> edges;
    for (int p = 0; p < image->npixels; ++p)
      neighbors.each(p, [&](int q, int) {
        edges.push_back({p, q, 49 * ifEuclideanDistance(image.get(), p, q)});
      });
    const imImagePtr byFunction(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
    const imImagePtr byImage(imCopyImage(byFunction.get()));
    const imImagePtr weights(euclideanWF(image.get(), adjacency));
    iftPrim(image.get(), byFunction.get(), adjacency, ifEuclideanDistance);
    iftPrimWF(image.get(), byImage.get(), weights.get());
    EXPECT_EQ(bandOf(byFunction.get(), 1), bandOf(byImage.get(), 1));
    EXPECT_EQ(bandOf(byFunction.get(), 2), bandOf(byImage.get(), 2));
    const int *cost = byFunction->band[1];
    const int *pred = byFunction->band[2];
    for (int p = 1; p < image->npixels; ++p)
      EXPECT_EQ(cost[p], 49 * ifEuclideanDistance(image.get(), p, pred[p]));
    EXPECT_EQ(cost[0], 0);
    EXPECT_EQ(std::accumulate(cost, cost + image->npixels, std::int64_t{0}),
              kruskal(image->npixels, edges));
  }
}

TEST(Trees, OfRegionsAreMinimal) {
  std::mt19937 random(32);
  for (int round = 0; round < 300; ++round) {
    const int n = 2 + static_cast<int>(random() % 12);
    const ifGraphPtr graph = makeGraph(n, {}, 2);
    for (int v = 0; v <= n; ++v)
      for (int i = 0; i < 2; ++i)
        graph->vertices[v].data[i] = static_cast<int>(random() % (round % 2 == 0 ? 4 : 900));
    std::vector<Edge> edges;
    for (int v = 2; v <= n; ++v) // connected, and more
      for (const int u : {1 + int(random() % (v - 1)), 1 + int(random() % (v - 1))}) {
        insertEdge(graph.get(), u, v, 0);
        edges.push_back({u, v, ifGraphEuclideanDistance(graph.get(), u, v)});
      }
    const ifGraphPtr tree(iftPrimGraph(graph.get(), ifGraphEuclideanDistance));
    std::int64_t sum = 0;
    int nEdges = 0;
    for (int v = 1; v <= n; ++v) {
      EXPECT_EQ(tree->vertices[v].data[0], 1);
      for (const ifEdge *edge = tree->vertices[v].edges; edge != nullptr; edge = edge->next) {
        EXPECT_EQ(edge->weight, ifGraphEuclideanDistance(graph.get(), v, edge->target));
        sum += edge->weight;
        ++nEdges;
      }
    }
    EXPECT_EQ(nEdges, 2 * (n - 1));
    EXPECT_EQ(sum, 2 * kruskal(n + 1, edges));
  }
}

TEST(Trees, LightEdgesComeFirst) {
  // The 900 in the middle is paid for once; then the light edges behind it are taken before others.
  const imImagePtr image = makeImage({{0, 20, 900, 900}, {40, 0, 0, 905}});
  const imImagePtr forest(imCreateImage(2, imTypeWork, 4, 2));
  iftPrim(image.get(), forest.get(), imNeighborhood4, ifMaxDistance);
  EXPECT_EQ(bandOf(forest.get(), 0),
            (Matrix{{0, 20 * 49, 880 * 49, 0}, {40 * 49, 20 * 49, 0, 5 * 49}}));
  EXPECT_EQ(bandOf(forest.get(), 1), (Matrix{{0, 0, 1, 2}, {0, 1, 5, 3}}));

  const imImagePtr dot = makeImage({{7}});
  const imImagePtr one(imCreateImage(2, imTypeWork, 1, 1));
  iftPrim(dot.get(), one.get(), imNeighborhood8, ifWatershedMetric);
  EXPECT_EQ(one->band[0][0], 0);
  EXPECT_EQ(one->band[1][0], 0);
}

TEST(Trees, OfRegionsThatAreApart) {
  const ifGraphPtr graph = makeGraph(4, {{1, 2, 0}, {3, 4, 0}}, 1);
  graph->vertices[1].data[0] = 17;
  const ifGraphPtr tree(iftPrimGraph(graph.get(), ifGraphWatershedDistance));
  const int expected[][3] = {{0, ifInfiniteCost, 0}, {1, 17, 1}, {1, 0, 1}, {0, ifInfiniteCost, 3}};
  for (int v = 0; v < 4; ++v)
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(tree->vertices[v].data[i], expected[v][i]);
  EXPECT_EQ(listsOf(tree.get()), (Lists{{}, {{2, 0}}, {{1, 0}}, {}, {}}));
  EXPECT_EQ(bandOf(tree->labelImage), (Matrix{{0, 1, 2, 3, 4}}));

  const ifGraphPtr bare = makeGraph(2, {{1, 2, 3}});
  EXPECT_EXIT(iftPrimGraph(bare.get(), ifGraphMinDistance), testing::ExitedWithCode(1),
              "iftPrimGraph");
  const ifGraphPtr alone = makeGraph(0, {}, 1);
  EXPECT_EQ(ifGraphPtr(iftPrimGraph(alone.get(), ifGraphMinDistance))->nVertices, 1);
}

// The parts of the label row 0 .. n, and the new graph's lists, without weights, which are 0.
struct Parts {
  explicit Parts(const ifGraphPtr &graph) : of(bandOf(graph->labelImage)[0]) {
    for (const auto &list : listsOf(graph.get())) {
      lists.emplace_back();
      for (const Arc &arc : list)
        lists.back().push_back(arc.target);
    }
    EXPECT_EQ(graph->labelImage->type, imTypeAscii);
    EXPECT_EQ(graph->labelImage->maxValue, graph->nVertices - 1);
  }
  std::vector<int> of;
  Matrix lists;
};

TEST(Cuts, AtAThreshold) {
  const std::vector<Edge> tree = {{3, 5, 1}, {2, 5, 1}, {4, 3, 9}, {1, 3, 1}};
  const std::vector<Edge> forest = {{1, 2, 5}, {4, 5, 6}, {5, 6, 7}}; // vertex 3 alone
  const struct {
    const char *what;
    std::vector<Edge> edges;
    int threshold;
    int printed;
    std::vector<int> parts;
    Matrix lists;
  } cases[] = {
      {"two parts", tree, 5, 2, {0, 2, 2, 2, 1, 2}, {{}, {2}, {1}}},
      {"below all", tree, 0, 5, {0, 1, 2, 3, 4, 5}, {{}, {3}, {5}, {5, 4, 1}, {3}, {3, 2}}},
      {"more parts than counted", forest, 6, 2, {0, 1, 1, 2, 3, 3, 4}, {{}, {}, {}, {4}, {3}}},
      {"vertex 0 joins, its pixels do not",
       {{0, 2, 1}, {1, 2, 9}},
       1,
       2,
       {0, 1, 0},
       {{1}, {0}, {}}},
      {"edges met at the smaller representative",
       {{1, 2, 5}, {1, 3, 5}},
       0,
       3,
       {0, 1, 2, 3},
       {{}, {2, 3}, {1}, {1}}},
      {"no region", {}, 0, 1, {0}, {{}, {}}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const ifGraphPtr graph = makeGraph(static_cast<int>(c.parts.size()) - 1, c.edges);
    testing::internal::CaptureStdout();
    const Parts parts(ifGraphPtr(ifThresholdMST(graph.get(), c.threshold)));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "there will be " + std::to_string(c.printed) + " regions\n");
    EXPECT_EQ(parts.of, c.parts);
    EXPECT_EQ(parts.lists, c.lists);
  }
}

// Every edge taken out of a copy by itself; the others join their ends.
std::vector<int> literalParts(ifGraph *tree, int n) {
  std::vector<Edge> edges;
  const Lists lists = listsOf(tree);
  for (int v = 1; v < tree->nVertices; ++v)
    for (const Arc &arc : lists[v])
      if (v < arc.target)
        edges.push_back({v, arc.target, arc.weight});
  std::stable_sort(edges.begin(), edges.end(),
                   [](const Edge &a, const Edge &b) { return a.weight > b.weight; });
  const ifGraphPtr copy(copyBaseGraph(tree, 0));
  for (int i = 0; i < n - 1 && i < static_cast<int>(edges.size()); ++i)
    removeEdge(copy.get(), edges[i].a, edges[i].b);
  return Parts(ifGraphPtr(ifThresholdMST(copy.get(), 9))).of;
}

TEST(Cuts, IntoRegions) {
  std::mt19937 random(2);
  testing::internal::CaptureStdout();
  for (int round = 0; round < 300; ++round) {
    const int nVertices = 1 + static_cast<int>(random() % 12);
    std::vector<Edge> edges; // a tree, mostly, with weights of either sign that repeat
    for (int v = 2; v <= nVertices; ++v)
      if (random() % 9 != 0)
        edges.push_back({v, 1 + int(random() % (v - 1)), int(random() % 5) - 2});
    std::shuffle(edges.begin(), edges.end(), random);
    const ifGraphPtr tree = makeGraph(nVertices, edges);
    for (const int n : {-7, 1, 2, 3, nVertices + 2}) {
      const ifGraphPtr cut(ifThresholdMST_nRegions(tree.get(), n));
      EXPECT_EQ(Parts(cut).of, literalParts(tree.get(), n));
      EXPECT_GT(cut->nVertices, n);
    }
  }
  testing::internal::GetCapturedStdout();
}

TEST(Cuts, OfATreeInPredecessors) {
  // Vertex 1 is the root, 5 and 0 are not reached.
  const ifGraphPtr tree = makeGraph(5, {}, 3);
  const int costAndPredecessor[][2] = {{0, 0}, {0, 1}, {400, 1}, {401, 2}, {400, 3}, {9, 5}};
  for (int v = 0; v <= 5; ++v)
    std::copy_n(costAndPredecessor[v], 2, tree->vertices[v].data + 1);
  setLabelImage(tree.get(), makeImage({{5, 0, 2}, {1, 4, 3}}).release());
  testing::internal::CaptureStdout();
  const ifGraphPtr cut(ifThresholdGraph(tree.get(), 0.4009));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "threshold is 400\n");
  EXPECT_EQ(bandOf(cut->labelImage), (Matrix{{1, 2, 3}, {3, 4, 4}}));
  EXPECT_EQ(cut->labelImage->maxValue, 4);
  EXPECT_EQ(listsOf(cut.get()), (Lists{{}, {{2, 400}}, {{1, 400}}, {{4, 400}}, {{3, 400}}, {}}));
}

TEST(Cuts, OfAForestOfPixels) {
  const imImagePtr forest(imCreateImage(2, imTypeWork, 6, 1));
  const Matrix bands = {{0, 5, 10, 3, 2, 10}, {0, 0, 1, 2, 3, 5}};
  for (int b = 0; b < 2; ++b)
    std::copy(bands[b].begin(), bands[b].end(), forest->band[b]);
  const struct {
    double fraction;
    std::vector<int> parts;
  } cases[] = {
      {0.0, {0, 1, 2, 3, 4, 5}},  {0.25, {0, 1, 2, 3, 3, 5}}, // 2.5 goes to 2
      {0.35, {0, 1, 2, 2, 2, 5}},                             // 3.5 goes to 4
      {0.5, {0, 0, 2, 2, 2, 5}},  {1e300, {0, 0, 0, 0, 0, 5}},
  };
  for (const auto &c : cases) {
    const imImagePtr parts(imCreateImage(1, imTypeAscii, 6, 1));
    ifMstThreshold(forest.get(), parts.get(), c.fraction);
    EXPECT_EQ(bandOf(parts.get())[0], c.parts);
    EXPECT_EQ(parts->maxValue, 5);
  }
}

TEST(CutsDeathTest, WhatIsMissingEndsWithALine) {
  const auto dies = testing::ExitedWithCode(1);
  const ifGraphPtr graph = makeGraph(2, {{1, 2, 3}});
  EXPECT_EXIT(ifThresholdGraph(graph.get(), 1), dies, "ifThresholdGraph");
  graph->labelImage->band[0][0] = 3;
  EXPECT_EXIT(ifThresholdMST(graph.get(), 1), dies, "ifThresholdMST: labels");
  setLabelImage(graph.get(), nullptr);
  EXPECT_EXIT(ifThresholdMST_nRegions(graph.get(), 1), dies, "ifThresholdMST_nRegions");
}

} // namespace
