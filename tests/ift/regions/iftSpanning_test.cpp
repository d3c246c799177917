// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/iftSpanning.h"

#include "base/arith.h"
#include "graphs.h"
#include "ift/core/detail/bucketQueue.h"
#include "ift/core/ifQueue.h"
#include "ift/core/ifWeightImage.h"
#include "ift/regions/detail/packedTree.h"
#include "image/detail/neighborWalk.h"

#include <algorithm>
#include <array>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

// Prim's algorithm as one would write it down, on the public queue: `n` elements, grown from one of
// this cost, whose neighbours and their weights `arcs` tells in order.
struct Tree {
  std::vector<int> cost, predecessor;
  std::vector<Edge> taken; // in this order
};
template <class Arcs>
Tree literalPrim(int n, int root, int rootCost, int nbuckets, Arcs arcs) {
  Tree tree = {std::vector<int>(n, ifInfiniteCost), std::vector<int>(n), {}};
  std::iota(tree.predecessor.begin(), tree.predecessor.end(), 0);
  ifQueue queue;
  ifQueueNodes nodes;
  initQueue(&queue, nbuckets, &nodes, n);
  tree.cost[root] = rootCost;
  insertQueue(&queue, &nodes, 0, root);
  while (isEmpty(&queue) == 0) {
    const int p = removeQueue(&queue, &nodes, queue.current);
    if (p != root)
      tree.taken.push_back({tree.predecessor[p], p, tree.cost[p]});
    for (const auto &[q, weight] : arcs(p))
      if (nodes.bucket[q] != -2 && weight < tree.cost[q]) {
        tree.cost[q] = weight;
        tree.predecessor[q] = p;
        insertQueueUpdateCurr(&queue, &nodes, circularBucket(weight, nbuckets),
                              q); // moves it when it waits
      }
  }
  releaseQueue(&queue, &nodes);
  return tree;
}

// To one side, so that some pixels are not reached; one twice, and one to the pixel itself.
int oneSided(int **list) {
  *list = static_cast<int *>(std::malloc(8 * sizeof(int)));
  std::copy_n(std::array{1, 0, 0, 0, 1, 0, -1, 1}.begin(), 8, *list);
  return 4;
}

TEST(Trees, OfPixelsEqualTheLiteralForm) {
  std::mt19937 random(31);
  const imNeighborhoodFn adjacencies[] = {imNeighborhood4, imNeighborhood8, oneSided,
                                          [](int **list) { return imNeighborhood(list, 5); }};
  const ifArcWeightFn weights[] = {ifMaxDistance, ifEuclideanDistance, ifWatershedMetric};
  // The widest difference that does not go round the buckets is 1020. Then values far beyond them.
  const std::pair<int, int> ranges[] = {{0, 3},         {0, 255},        {-500, 520}, {0, 1020},
                                        {-500, 521},    {-3, 5},         {0, 1021},   {5000, 6000},
                                        {0, 100000000}, {minInt, maxInt}};
  for (int round = 0; round < 1000; ++round) {
    const int relation = pick(random, 0, 3);
    const imNeighborhoodFn adjacency = adjacencies[relation];
    const ifArcWeightFn weight = weights[pick(random, 0, 2)];
    const auto [least, most] = ranges[round % std::size(ranges)];
    const imImagePtr image = randomImage(random, pick(random, 1, 2), imTypeAscii,
                                         pick(random, 1, 12), pick(random, 1, 12), least, most);
    const NeighborWalk neighbors(image.get(), adjacency);
    const Tree tree = literalPrim(image->npixels, 0, 0, 50000, [&](int p) {
      std::vector<Arc> arcs;
      neighbors.each(p, [&](int q, int) {
        arcs.push_back({q, saturate(std::int64_t{49} * weight(image.get(), p, q))});
      });
      return arcs;
    });
    const imImagePtr forest = blankLike(image, 3);
    const auto expectTree = [&] {
      EXPECT_TRUE(std::equal(tree.cost.begin(), tree.cost.end(), forest->band[1])) << round;
      EXPECT_TRUE(std::equal(tree.predecessor.begin(), tree.predecessor.end(), forest->band[2]));
    };
    const auto before = packedTrees;
    iftPrim(image.get(), forest.get(), adjacency, weight);
    expectTree();
    const auto [lowest, highest] = rangeOf(image->band[0], image->npixels);
    const bool isNarrow = weight == ifWatershedMetric
                              ? lowest >= 0 && highest <= 1020
                              : image->nbands == 1 && std::int64_t{highest} - lowest <= 1020;
    EXPECT_EQ(packedTrees - before, isNarrow && relation < 3 ? 1 : 0);
    if (weight == ifEuclideanDistance && most - std::int64_t{least} <= 1000) {
      iftPrimWF(image.get(), forest.get(), imImagePtr(euclideanWF(image.get(), adjacency)).get());
      expectTree();
    }
  }
}

TEST(Trees, OfRegionsEqualTheLiteralForm) {
  std::mt19937 random(32);
  for (int round = 0; round < 300; ++round) {
    const int n = pick(random, 2, 13);
    const ifGraphPtr graph = makeGraph(n, {}, 1);
    for (int v = 0; v <= n; ++v) // weights 999 .. 1002 go once round the 1001 buckets
      graph->vertices[v].data[0] = round % 2 == 0 ? pick(random, 0, 3) : pick(random, 999, 1002);
    for (int edges = pick(random, 0, 2 * n); edges > 0; --edges)
      insertEdge(graph.get(), pick(random, 1, n), pick(random, 1, n), 0);
    if (round % 5 == 0)
      graph->vertices[pick(random, 0, n)].data[0] = minInt;
    const int rootCost = graph->vertices[1].data[0];
    const auto weight = round % 3 == 0 ? ifGraphWatershedDistance : ifGraphEuclideanDistance;
    const Tree tree = literalPrim(n + 1, 1, rootCost, 1001, [&](int u) {
      std::vector<Arc> arcs = listsOf(graph.get())[u];
      for (Arc &arc : arcs)
        arc.weight = weight(graph.get(), u, arc.target);
      return arcs;
    });
    const ifGraphPtr made(iftPrimGraph(graph.get(), weight));
    EXPECT_EQ(listsOf(made.get()), listsOf(makeGraph(n, tree.taken).get())) << round;
    EXPECT_EQ(bandOf(made->labelImage), bandOf(graph->labelImage));
    for (int v = 0; v <= n; ++v) {
      const int number = v == 1 || tree.predecessor[v] != v ? 1 : 0;
      EXPECT_EQ(dataOf(made)[v], (std::vector<int>{number, tree.cost[v], tree.predecessor[v]}));
    }
  }
  const ifGraphPtr alone = makeGraph(0, {}, 1);
  EXPECT_EQ(ifGraphPtr(iftPrimGraph(alone.get(), ifGraphMinDistance))->nVertices, 1);
}

TEST(Cuts, AtAThreshold) {
  const std::vector<Edge> tree = {{3, 5, 1}, {2, 5, 1}, {4, 3, 9}, {1, 3, 1}};
  const std::vector<Edge> forest = {{1, 2, 5}, {4, 5, 6}, {5, 6, 7}}; // vertex 3 alone
  const std::vector<Edge> zero = {{0, 2, 1}, {1, 2, 9}};
  const std::vector<Edge> star = {{1, 2, 5}, {1, 3, 5}}; // met at the smaller representative
  const std::vector<Arc> none;
  const struct {
    const char *what;
    std::vector<Edge> edges;
    int threshold, printed;
    std::vector<int> parts;
    Lists lists;
  } cases[] = {
      {"two parts", tree, 5, 2, {0, 2, 2, 2, 1, 2}, {none, {{2, 0}}, {{1, 0}}}},
      {"uncounted", forest, 6, 2, {0, 1, 1, 2, 3, 3, 4}, {none, none, none, {{4, 0}}, {{3, 0}}}},
      {"vertex 0 joins, its pixels do not", zero, 1, 2, {0, 1, 0}, {{{1, 0}}, {{0, 0}}, none}},
      {"star", star, 0, 3, {0, 1, 2, 3}, {none, {{2, 0}, {3, 0}}, {{1, 0}}, {{1, 0}}}},
      {"no region", {}, 0, 1, {0}, {none, none}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const ifGraphPtr graph = makeGraph(static_cast<int>(c.parts.size()) - 1, c.edges);
    ifGraphPtr cut;
    EXPECT_EQ(printedBy([&] { cut.reset(ifThresholdMST(graph.get(), c.threshold)); }),
              "there will be " + std::to_string(c.printed) + " regions\n");
    EXPECT_EQ(listsOf(cut.get()), c.lists);
    expectImage("", imCopyImage(cut->labelImage), imTypeAscii, cut->nVertices - 1, {{c.parts}});
  }
}

TEST(Cuts, IntoRegions) {
  // The walk meets 1-4, then 1-2, then 2-3, all of one weight; 4-5 is lighter.
  const ifGraphPtr tree = makeGraph(5, {{1, 2, 7}, {2, 3, 7}, {4, 1, 7}, {5, 4, -2}});
  const struct {
    int n, nVertices;
    std::vector<int> parts;
  } cases[] = {
      {-7, 2, {0, 1, 1, 1, 1, 1}}, {1, 2, {0, 1, 1, 1, 1, 1}}, {2, 3, {0, 1, 1, 1, 2, 2}},
      {3, 4, {0, 1, 2, 2, 3, 3}},  {4, 5, {0, 1, 2, 3, 4, 4}}, {7, 8, {0, 1, 2, 3, 4, 5}},
  };
  for (const auto &[n, nVertices, parts] : cases) {
    const ifGraphPtr cut(ifThresholdMST_nRegions(tree.get(), n));
    EXPECT_EQ(cut->nVertices, nVertices) << n;
    EXPECT_EQ(bandOf(cut->labelImage)[0], parts) << n;
  }
}

TEST(Cuts, OfATreeInPredecessors) {
  // Vertex 1 is the root, 5 and 0 are not reached; 3 and 4 have no pixels.
  const ifGraphPtr tree =
      withData({{0, 0, 0}, {0, 0, 1}, {0, 400, 1}, {0, 401, 2}, {0, 400, 3}, {0, 9, 5}}, {});
  setLabelImage(tree.get(), makeImage({{5, 0, 2, 1}}).release());
  ifGraphPtr cut;
  EXPECT_EQ(printedBy([&] { cut.reset(ifThresholdGraph(tree.get(), 0.4009)); }),
            "threshold is 400\n");
  EXPECT_EQ(bandOf(cut->labelImage), (Matrix{{1, 2, 3, 3}}));
  EXPECT_EQ(cut->labelImage->maxValue, 3);
  EXPECT_EQ(listsOf(cut.get()), (Lists{{}, {{2, 400}}, {{1, 400}}, {{4, 400}}, {{3, 400}}, {}}));
}

TEST(Cuts, OfAForestOfPixels) {
  const imImagePtr forest = makeBands({{{0, 5, 10, 4, 2, 10}}, {{0, 0, 1, 2, 3, 5}}}, imTypeWork);
  const std::pair<double, std::vector<int>> cases[] = {
      {0.25, {0, 1, 2, 3, 3, 5}}, // 2.5 goes to 2
      {0.35, {0, 1, 2, 2, 2, 5}}, // 3.5 goes to 4
      {1e300, {0, 0, 0, 0, 0, 5}},
  };
  for (const auto &[fraction, expected] : cases) {
    const imImagePtr parts = blankLike(forest);
    ifMstThreshold(forest.get(), parts.get(), fraction);
    EXPECT_EQ(bandOf(parts)[0], expected);
    EXPECT_EQ(parts->maxValue, 5);
  }
}

} // namespace
