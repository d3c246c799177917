#include "ift/regions/iftSpanning.h"

#include "graph/detail/disjointSets.h"
#include "graph/unionfind.h"
#include "graphs.h"
#include "ift/core/ifWeightImage.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

#include <algorithm>
#include <set>

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
    const imImagePtr image = randomImage(random, 2, imTypeAscii, pick(random, 1, 12),
                                         pick(random, 1, 12), 0, round % 3 == 0 ? 3 : 1000);
    const auto weight = [&](int p, int q) { return 49 * ifEuclideanDistance(image.get(), p, q); };
    const NeighborWalk neighbors(image.get(), adjacency);
    std::vector<Edge> edges;
    for (int p = 0; p < image->npixels; ++p)
      neighbors.each(p, [&](int q, int) { edges.push_back({p, q, weight(p, q)}); });
    const imImagePtr byFunction = blankLike(image, 3);
    const imImagePtr byImage = blankLike(image, 3);
    iftPrim(image.get(), byFunction.get(), adjacency, ifEuclideanDistance);
    iftPrimWF(image.get(), byImage.get(), imImagePtr(euclideanWF(image.get(), adjacency)).get());
    EXPECT_EQ(bandOf(byFunction, 1), bandOf(byImage, 1));
    EXPECT_EQ(bandOf(byFunction, 2), bandOf(byImage, 2));
    const int *cost = byFunction->band[1];
    for (int p = 1; p < image->npixels; ++p)
      EXPECT_EQ(cost[p], weight(p, byFunction->band[2][p]));
    EXPECT_EQ(cost[0], 0);
    EXPECT_EQ(std::accumulate(cost, cost + image->npixels, std::int64_t{0}),
              kruskal(image->npixels, edges));
  }
}

TEST(Trees, OfRegionsAreMinimal) {
  std::mt19937 random(32);
  for (int round = 0; round < 300; ++round) {
    const int n = pick(random, 2, 13);
    const ifGraphPtr graph = makeGraph(n, {}, 2);
    for (int v = 0; v <= n; ++v)
      for (int i = 0; i < 2; ++i)
        graph->vertices[v].data[i] = pick(random, 0, round % 2 == 0 ? 3 : 899);
    std::vector<Edge> edges;
    for (int v = 2; v <= n; ++v) // connected, and more
      for (const int u : {pick(random, 1, v - 1), pick(random, 1, v - 1)}) {
        insertEdge(graph.get(), u, v, 0);
        edges.push_back({u, v, ifGraphEuclideanDistance(graph.get(), u, v)});
      }
    const ifGraphPtr tree(iftPrimGraph(graph.get(), ifGraphEuclideanDistance));
    std::int64_t sum = 0;
    int nEdges = 0;
    const Lists lists = listsOf(tree.get());
    for (int v = 1; v <= n; ++v) {
      EXPECT_EQ(tree->vertices[v].data[0], 1);
      for (const Arc &arc : lists[v]) {
        EXPECT_EQ(arc.weight, ifGraphEuclideanDistance(graph.get(), v, arc.target));
        sum += arc.weight;
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
  const imImagePtr forest = blankLike(image, 2);
  iftPrim(image.get(), forest.get(), imNeighborhood4, ifMaxDistance);
  EXPECT_EQ(bandOf(forest, 0), (Matrix{{0, 980, 43120, 0}, {1960, 980, 0, 245}})); // 49 each
  EXPECT_EQ(bandOf(forest, 1), (Matrix{{0, 0, 1, 2}, {0, 1, 5, 3}}));
}

TEST(Trees, OfRegionsThatAreApart) {
  const ifGraphPtr graph = makeGraph(4, {{1, 2, 0}, {3, 4, 0}}, 1);
  graph->vertices[1].data[0] = 17;
  const ifGraphPtr tree(iftPrimGraph(graph.get(), ifGraphWatershedDistance));
  const int far = ifInfiniteCost;
  EXPECT_EQ(dataOf(tree), (Matrix{{0, far, 0}, {1, 17, 1}, {1, 0, 1}, {0, far, 3}, {0, far, 4}}));
  EXPECT_EQ(listsOf(tree.get()), (Lists{{}, {{2, 0}}, {{1, 0}}, {}, {}}));
  EXPECT_EQ(bandOf(tree->labelImage), (Matrix{{0, 1, 2, 3, 4}}));

  // A weight of 1000 has a bucket of its own: vertex 3 is taken first.
  const ifGraphPtr heavy = withData({{0}, {0}, {1000}, {5}}, {{1, 3, 0}, {1, 2, 0}});
  const ifGraphPtr light(iftPrimGraph(heavy.get(), ifGraphWatershedDistance));
  EXPECT_EQ(listsOf(light.get())[1], (std::vector<Arc>{{2, 1000}, {3, 5}}));

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
  const std::vector<Edge> zero = {{0, 2, 1}, {1, 2, 9}};
  const std::vector<Edge> star = {{1, 2, 5}, {1, 3, 5}};
  const struct {
    const char *what;
    std::vector<Edge> edges;
    int threshold, printed;
    std::vector<int> parts;
    Matrix lists;
  } cases[] = {
      {"two parts", tree, 5, 2, {0, 2, 2, 2, 1, 2}, {{}, {2}, {1}}},
      {"below all", tree, 0, 5, {0, 1, 2, 3, 4, 5}, {{}, {3}, {5}, {5, 4, 1}, {3}, {3, 2}}},
      {"more parts than counted", forest, 6, 2, {0, 1, 1, 2, 3, 3, 4}, {{}, {}, {}, {4}, {3}}},
      {"vertex 0 joins, its pixels do not", zero, 1, 2, {0, 1, 0}, {{1}, {0}, {}}},
      {"met at the smaller representative", star, 0, 3, {0, 1, 2, 3}, {{}, {2, 3}, {1}, {1}}},
      {"no region", {}, 0, 1, {0}, {{}, {}}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const ifGraphPtr graph = makeGraph(static_cast<int>(c.parts.size()) - 1, c.edges);
    const std::string printed = printedBy([&] {
      const Parts parts(ifGraphPtr(ifThresholdMST(graph.get(), c.threshold)));
      EXPECT_EQ(parts.of, c.parts);
      EXPECT_EQ(parts.lists, c.lists);
    });
    EXPECT_EQ(printed, "there will be " + std::to_string(c.printed) + " regions\n");
  }
}

// Every edge taken out of a copy by itself; the others join their ends.
std::vector<int> literalParts(ifGraph *tree, int n) {
  std::vector<Edge> edges;
  const Lists lists = listsOf(tree);
  for (int v = 1; v < tree->nVertices; ++v)
    for (const auto &[target, weight] : lists[v])
      if (v < target)
        edges.push_back({v, target, weight});
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
    const int nVertices = pick(random, 1, 12);
    std::vector<Edge> edges; // a tree, mostly, with weights of either sign that repeat
    for (int v = 2; v <= nVertices; ++v)
      if (random() % 9 != 0)
        edges.push_back({v, pick(random, 1, v - 1), pick(random, -2, 2)});
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
  const ifGraphPtr tree =
      withData({{0, 0, 0}, {0, 0, 1}, {0, 400, 1}, {0, 401, 2}, {0, 400, 3}, {0, 9, 5}}, {});
  setLabelImage(tree.get(), makeImage({{5, 0, 2}, {1, 4, 3}}).release());
  ifGraphPtr cut;
  EXPECT_EQ(printedBy([&] { cut.reset(ifThresholdGraph(tree.get(), 0.4009)); }),
            "threshold is 400\n");
  EXPECT_EQ(bandOf(cut->labelImage), (Matrix{{1, 2, 3}, {3, 4, 4}}));
  EXPECT_EQ(cut->labelImage->maxValue, 4);
  EXPECT_EQ(listsOf(cut.get()), (Lists{{}, {{2, 400}}, {{1, 400}}, {{4, 400}}, {{3, 400}}, {}}));
}

TEST(Cuts, OfAForestOfPixels) {
  const imImagePtr forest = makeBands({{{0, 5, 10, 4, 2, 10}}, {{0, 0, 1, 2, 3, 5}}}, imTypeWork);
  const std::pair<double, std::vector<int>> cases[] = {
      {0.0, {0, 1, 2, 3, 4, 5}},  {0.25, {0, 1, 2, 3, 3, 5}}, // 2.5 goes to 2
      {0.35, {0, 1, 2, 2, 2, 5}},                             // 3.5 goes to 4
      {0.5, {0, 0, 2, 2, 2, 5}},  {1e300, {0, 0, 0, 0, 0, 5}},
  };
  for (const auto &[fraction, expected] : cases) {
    const imImagePtr parts = blankLike(forest);
    ifMstThreshold(forest.get(), parts.get(), fraction);
    EXPECT_EQ(bandOf(parts)[0], expected);
    EXPECT_EQ(parts->maxValue, 5);
  }
}

// The pairs of vertices that have an edge.
std::set<std::pair<int, int>> pairsOf(const ifGraph *graph) {
  std::set<std::pair<int, int>> pairs;
  const Lists lists = listsOf(graph);
  for (int v = 0; v < graph->nVertices; ++v)
    for (const Arc &arc : lists[v])
      pairs.insert({v, arc.target});
  return pairs;
}

// Whatever is made of a mosaic, its graph joins what touches in its label image: all of that after
// a collapse, the edges that were cut after a cut.
TEST(Cuts, GraphsAgreeWithTheirLabelImages) {
  std::mt19937 random(33);
  for (int round = 0; round < 200; ++round) {
    const imImagePtr labels = blank(pick(random, 1, 12), pick(random, 1, 12));
    for (int p = 0; p < labels->npixels; ++p)
      labels->band[0][p] = 1 + p % labels->ncols / 3 + 4 * (p / labels->ncols / 2);
    labels->maxValue = largestValue(labels.get(), 0);
    const ifGraphPtr graph(copyBaseGraph(ifGraphPtr(ifMosaicToGraph(labels.get())).get(), 1));
    for (int v = 0; v < graph->nVertices; ++v)
      graph->vertices[v].data[0] = pick(random, 1, 6);
    const auto touching = [](const ifGraphPtr &made) {
      return pairsOf(ifGraphPtr(ifMosaicToGraph(made->labelImage)).get());
    };
    const ifGraphPtr collapsed(ifColapseGraph(graph.get()));
    EXPECT_EQ(pairsOf(collapsed.get()), touching(collapsed));

    const ifGraphPtr tree(iftPrimGraph(graph.get(), ifGraphEuclideanDistance));
    const int n = std::min(3, labels->maxValue);
    const ifGraphPtr regions(ifThresholdMST_nRegions(tree.get(), n));
    testing::internal::CaptureStdout();
    const ifGraphPtr parts(ifThresholdMST(tree.get(), 2));
    const ifGraphPtr merged(ifThresholdGraph(tree.get(), 0.002));
    testing::internal::GetCapturedStdout();
    for (const ifGraphPtr *cut : {&regions, &parts}) {
      const auto edges = pairsOf(cut->get());
      const auto all = touching(*cut);
      EXPECT_TRUE(std::includes(all.begin(), all.end(), edges.begin(), edges.end()));
    }
    const int *part = merged->labelImage->band[0];
    std::vector<int> partOf(graph->nVertices);
    for (int p = 0; p < labels->npixels; ++p)
      partOf[labels->band[0][p]] = part[p];
    for (const auto &[u, v] : pairsOf(merged.get()))
      EXPECT_EQ(partOf[u], partOf[v]); // the edges that stay are those inside
  }
}

} // namespace
