// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "graph/graph.h"

#include "base/error.h"
#include "faults.h"
#include "graph/detail/edgeInserter.h"
#include "graph/detail/graphTools.h"
#include "graphs.h"

#include <cerrno>
#include <utility>

using namespace seedforest::detail;

namespace {

TEST(Graph, InsertsAtTheHeadOncePerTarget) {
  const ifGraphPtr graph = makeGraph(5, {{2, 5, 10}, {5, 2, 99}, {1, 1, 3}, {3, 1, 7}});
  EXPECT_EQ(listsOf(graph.get()),
            (Lists{{}, {{3, 7}, {1, 3}}, {{5, 10}}, {{1, 7}}, {}, {{2, 10}}}));
  insertDirectedEdge(graph.get(), 4, 2, 1);
  insertEdge(graph.get(), 2, 4, 8); // completes the edge that led one way
  for (int twice = 0; twice < 2; ++twice)
    removeEdge(graph.get(), 5, 2);
  removeDirectedEdge(graph.get(), 1, 3);
  EXPECT_EQ(listsOf(graph.get()), (Lists{{}, {{1, 3}}, {{4, 8}}, {{1, 7}}, {{2, 1}}, {}}));
}

TEST(Graph, ListsOnTheirOwn) {
  ifVertex *list = createList(2);
  for (int target : {1, 2, 3})
    EXPECT_EQ(listInsertEdge(list, target, 10 * target), list->edges);
  EXPECT_EQ(listInsertEdge(list, 3, 0)->target, 2); // the one behind
  EXPECT_EQ(listInsertEdge(list, 1, 0), nullptr);
  list->cursor = list->edges;
  EXPECT_EQ(listGetAndWalk(list)->target, 3);
  listRemoveEdge(list, 2); // the cursor stands on it
  EXPECT_EQ(listGetAndWalk(list)->target, 1);
  EXPECT_EQ(listGetAndWalk(list), nullptr);
  EXPECT_EQ(list->data[1], 0);
  listDestroy(list);
  EXPECT_EQ(std::make_tuple(list->nEdges, list->edges, list->cursor, list->data),
            std::make_tuple(0, nullptr, nullptr, nullptr));
  std::free(list);
}

TEST(Graph, Prints) {
  const ifGraphPtr graph(allocateGraph(1, 2));
  graph->vertices[1].data[0] = 12;
  insertDirectedEdge(graph.get(), 1, 0, 7);
  insertDirectedEdge(graph.get(), 1, 1, -9);
  EXPECT_EQ(printedBy([&] {
              EXPECT_EQ(graphPrint(graph.get()), 2);
              EXPECT_EQ(graphPrint(makeGraph(0, {}).get()), 1);
            }),
            "Graph has 2 vertices\n[0 (   0    0 \b)]: \n[1 (  12    0 \b)]: 1(-9) 0(7) \n"
            "Graph has 1 vertices\n[0 ()]: \n");
}

TEST(Graph, CopiesInReverseAndOwnsItsLabels) {
  const imImagePtr labels = makeImage({{0, 3}, {1, 2}});
  ifGraphPtr graph(createGraph(labels.get(), 1));
  for (int target : {1, 2, 3})
    insertDirectedEdge(graph.get(), 0, target, target);
  setLabelImage(graph.get(), graph->labelImage);
  graph->labelImage->maxValue = 0; // the copy keeps all vertices
  BlockArena arena;
  prependEdge(&graph->vertices[0], 2, 99, arena); // a second one to 2
  const ifGraphPtr copy(copyBaseGraph(graph.get(), 2));
  EXPECT_EQ(listsOf(copy.get()), (Lists{{{1, 1}, {3, 3}, {2, 99}}, {}, {}, {}}));
  EXPECT_EQ(bandOf(copy->labelImage), bandOf(labels));
  EXPECT_EQ(copy->vertices[3].data[1], 0);
  EXPECT_EQ(graph->vertices[0].cursor, nullptr);
  setLabelImage(graph.get(), nullptr);
  EXPECT_EQ(ifGraphPtr(copyBaseGraph(graph.get(), 0))->labelImage, nullptr);
}

TEST(Graph, ManyEdgesAsIfInsertedOneByOne) {
  std::mt19937 random(3);
  for (int round = 0; round < 8; ++round) {
    const int n = round * round;
    const ifGraphPtr literal = makeGraph(n, {});
    const ifGraphPtr fast = makeGraph(n, {});
    EdgeInserter edges("test", fast.get());
    for (int i = 0; i < 600; ++i) {
      const int a = pick(random, 0, n);
      const int b = pick(random, 0, n);
      (round % 2 == 0 ? insertDirectedEdge : insertEdge)(literal.get(), a, b, i);
      round % 2 == 0 ? edges.insertDirected(a, b, i) : edges.insert(a, b, i);
    }
    EXPECT_EQ(listsOf(fast.get()), listsOf(literal.get()));
  }
}

// The edges of one graph come from malloc(), those of the other from slabs too. Both are taken out
// one by one and with their lists, while others come in.
TEST(Graph, EdgesOfBothKindsInOneList) {
  std::mt19937 random(5);
  constexpr int n = 200;
  const ifGraphPtr literal = makeGraph(n, {}, 3);
  for (int i = 0; i < 3000; ++i)
    insertEdge(literal.get(), pick(random, 0, n), pick(random, 0, n), i);
  const ifGraphPtr mixed(copyBaseGraph(ifGraphPtr(copyBaseGraph(literal.get(), 200)).get(), 3));
  ASSERT_EQ(listsOf(mixed.get()), listsOf(literal.get()));
  for (int i = 0; i < 40000; ++i) {
    const int a = pick(random, 0, n);
    const int b = pick(random, 0, n);
    const int what = pick(random, 0, 300);
    for (ifGraph *graph : {literal.get(), mixed.get()})
      if (what == 0)
        listDestroy(&graph->vertices[a]);
      else
        what % 3 == 0 ? insertEdge(graph, a, b, i) : removeEdge(graph, a, b);
  }
  EXPECT_EQ(listsOf(mixed.get()), listsOf(literal.get()));
}

#ifdef SEEDFOREST_FAULTS
TEST(Graph, CopiesWhenMemoryLasts) {
  const seedforest::ThrowingErrors throwing;
  std::vector<Edge> edges;
  for (int v = 0; v < 2000; ++v)
    edges.push_back({v, v + 1, v});
  const ifGraphPtr graph = makeGraph(2000, edges);
  ifGraphPtr copy;
  int failures = 0;
  while (copy == nullptr) {
    inject({Call::allocate, Effect::fail, ENOMEM}, failures + 1);
    try {
      copy.reset(copyBaseGraph(graph.get(), 3));
    } catch (const seedforest::OutOfMemory &) {
      ++failures;
    }
    endInjection();
  }
  EXPECT_GT(failures, 2 * 64); // what comes before the slabs of data and of edges
  EXPECT_EQ(listsOf(ifGraphPtr(copyBaseGraph(copy.get(), 0)).get()), listsOf(graph.get()));
}
#endif

TEST(Graph, WithoutMemory) {
  const imImagePtr labels = makeImage({{maxInt}});
  EXPECT_EQ(errorsOf([&] { EXPECT_EQ(createGraph(labels.get(), 0), nullptr); }),
            "in createGraph: could not allocate memory\n");
}

} // namespace
