#include "graph/graph.h"

#include "graph/edgeInserter.h"
#include "graphs.h"

#include <climits>
#include <utility>

using namespace seedforest::detail;

namespace {

std::string printed(ifGraph *graph) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(graphPrint(graph), graph->nVertices);
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

TEST(Graph, InsertsAtTheHeadOncePerTarget) {
  const ifGraphPtr graph = makeGraph(5, {{2, 5, 10}, {5, 2, 99}, {1, 1, 3}, {3, 1, 7}});
  EXPECT_EQ(listsOf(graph.get()),
            (Lists{{}, {{3, 7}, {1, 3}}, {{5, 10}}, {{1, 7}}, {}, {{2, 10}}}));
  insertDirectedEdge(graph.get(), 4, 2, 1);
  insertEdge(graph.get(), 2, 4, 8); // completes the edge that led one way
  removeEdge(graph.get(), 5, 2);
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
  EXPECT_EQ(listGetAndWalk(list), nullptr);
  EXPECT_EQ(list->data[1], 0);
  listDestroy(list);
  EXPECT_EQ(std::make_tuple(list->nEdges, list->edges, list->cursor, list->data),
            std::make_tuple(0, nullptr, nullptr, nullptr));
  std::free(list);
}

TEST(Graph, Prints) {
  const ifGraphPtr graph(allocateGraph(3, 2));
  graph->vertices[3].data[0] = 12;
  graph->vertices[3].data[1] = -5;
  insertDirectedEdge(graph.get(), 3, 2, 7);
  insertDirectedEdge(graph.get(), 3, 1, 9);
  EXPECT_EQ(printed(graph.get()), "Graph has 4 vertices\n"
                                  "[0 (   0    0 \b)]: \n[1 (   0    0 \b)]: \n"
                                  "[2 (   0    0 \b)]: \n[3 (  12   -5 \b)]: 1(9) 2(7) \n");
  EXPECT_EQ(printed(makeGraph(1, {{0, 1, -4}}).get()),
            "Graph has 2 vertices\n[0 ()]: 1(-4) \n[1 ()]: 0(-4) \n");
}

TEST(Graph, CopiesInReverseAndOwnsItsLabels) {
  const imImagePtr labels = makeImage({{0, 3}, {1, 2}});
  ifGraphPtr graph(createGraph(labels.get(), 1));
  EXPECT_EQ(graph->nVertices, 4);
  EXPECT_NE(graph->labelImage, labels.get());
  for (int target : {1, 2, 3})
    insertDirectedEdge(graph.get(), 0, target, target);
  setLabelImage(graph.get(), graph->labelImage);
  graph->labelImage->maxValue = 0;         // the copy keeps all vertices
  prependEdge(&graph->vertices[0], 2, 99); // a second one to 2
  const ifGraphPtr copy(copyBaseGraph(graph.get(), 2));
  EXPECT_EQ(listsOf(copy.get()), (Lists{{{1, 1}, {3, 3}, {2, 99}}, {}, {}, {}}));
  EXPECT_EQ(bandOf(copy->labelImage), bandOf(labels.get()));
  EXPECT_EQ(copy->vertices[3].data[1], 0);
  EXPECT_EQ(graph->vertices[0].cursor, nullptr);
  setLabelImage(graph.get(), nullptr);
  EXPECT_EQ(ifGraphPtr(copyBaseGraph(graph.get(), 0))->labelImage, nullptr);
}

TEST(Graph, ManyEdgesAsIfInsertedOneByOne) {
  std::mt19937 random(3);
  for (int round = 0; round < 8; ++round) {
    const int n = round * round;
    const bool directed = round % 2 == 0;
    const ifGraphPtr literal(allocateGraph(n, 0));
    const ifGraphPtr fast(allocateGraph(n, 0));
    EdgeInserter inserter("test", fast.get());
    for (int i = 0; i < 600; ++i) {
      const int a = static_cast<int>(random() % (n + 1));
      const int b = static_cast<int>(random() % (n + 1));
      (directed ? insertDirectedEdge : insertEdge)(literal.get(), a, b, i);
      directed ? inserter.insertDirected(a, b, i) : inserter.insert(a, b, i);
    }
    EXPECT_EQ(listsOf(fast.get()), listsOf(literal.get()));
  }
}

TEST(Graph, ThatCannotBeMadeIsNone) {
  const imImagePtr labels = makeImage({{INT_MAX}});
  for (const int failing : {0, 1, 2}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(failing == 0   ? createGraph(labels.get(), 0)
              : failing == 1 ? allocateGraph(-2, 0)
                             : allocateGraph(3, -1),
              nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              failing == 0 ? "in createGraph: could not allocate memory\n"
                           : "in allocateGraph: could not allocate memory\n");
  }
}

TEST(GraphDeathTest, VerticesOutsideEndWithALine) {
  const ifGraphPtr graph = makeGraph(3, {});
  const auto dies = testing::ExitedWithCode(1);
  EXPECT_EXIT(insertEdge(graph.get(), 4, 0, 1), dies, "insertEdge");
  EXPECT_EXIT(insertDirectedEdge(graph.get(), 0, -1, 1), dies, "insertDirectedEdge");
  EXPECT_EXIT(removeEdge(graph.get(), 0, INT_MAX), dies, "removeEdge");
  EXPECT_EXIT(removeDirectedEdge(graph.get(), 4, 0), dies, "removeDirectedEdge");
  EXPECT_EXIT(createGraph(nullptr, 0), dies, "createGraph");
  listInsertEdge(&graph->vertices[1], 9, 0);
  EXPECT_EXIT(copyBaseGraph(graph.get(), 0), dies, "copyBaseGraph");
}

} // namespace
