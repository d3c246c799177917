#include "graph/unionfind.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Sets : ufUnionFind {
  explicit Sets(int n, int dataSize = 0) { ufStartUnionFind(this, n, dataSize); }
  ~Sets() { ufReleaseUnionFind(this); }
};

struct Merge {
  int a, b, rankOfA, parentOfB;
  bool operator==(const Merge &) const = default;
};
std::vector<Merge> merges;

int recordMerge(ufElement *elems, int a, int b) {
  merges.push_back({a, b, elems[a].rank, elems[b].parent});
  for (int i = 0; i < 3; ++i)
    elems[a].data[i] += elems[b].data[i];
  return 0;
}

TEST(UnionFind, LinksByRankAndTellsTheCallback) {
  Sets sets(8, 3);
  EXPECT_EQ(sets.merge, nullptr);
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ(sets.elems[i].data[j], 0);
      sets.elems[i].data[j] = 10 * i + j;
    }
  sets.merge = recordMerge;
  merges.clear();
  ufLink(&sets, 2, 5); // equal ranks: the second stays, and rises after the callback
  ufLink(&sets, 5, 7); // the higher rank stays
  ufLink(&sets, 0, 5);
  EXPECT_EQ(merges, (std::vector<Merge>{{5, 2, 0, 5}, {5, 7, 1, 5}, {5, 0, 1, 5}}));
  EXPECT_EQ(sets.elems[5].rank, 1);
  EXPECT_EQ(sets.elems[5].data[2], 20 + 50 + 70 + 4 * 2);
  EXPECT_EQ(ufFindSet(&sets, 7), 5);
  EXPECT_EQ(ufFindSet(&sets, 1), 1);
}

TEST(UnionFind, FlattensAChainOfAnyLength) {
  const int n = 10000000;
  Sets sets(n);
  for (int i = 0; i + 1 < n; ++i)
    sets.elems[i].parent = i + 1;
  EXPECT_EQ(ufFindSet(&sets, 5), n - 1);
  EXPECT_EQ(sets.elems[4].parent, 5); // not on the way
  for (int i = 5; i < n; ++i)
    ASSERT_EQ(sets.elems[i].parent, n - 1);
}

TEST(UnionFindDeathTest, FaultyCallsEndWithALine) {
  Sets none(0);
  EXPECT_EXIT(ufFindSet(&none, 0), testing::ExitedWithCode(1), "ufFindSet");
  Sets sets(6);
  EXPECT_EXIT(ufFindSet(&sets, 6), testing::ExitedWithCode(1), "ufFindSet");
  EXPECT_EXIT(ufLink(&sets, 1, -1), testing::ExitedWithCode(1), "ufLink");
  const int links[][2] = {
      {0, 1}, {2, 0}, {4, 5}, {5, 0}, {1, 0}}; // 0 is not always a representative
  for (const auto &link : links)
    ufLink(&sets, link[0], link[1]);
  EXPECT_EXIT(ufFindSet(&sets, 2), testing::ExitedWithCode(1), "circle");
  EXPECT_EXIT(ufStartUnionFind(nullptr, 1, 0), testing::ExitedWithCode(1),
              "^Union/find was not allocated before ufStartUnionFind \n\n$");
  EXPECT_EXIT(ufStartUnionFind(&sets, -1, 0), testing::ExitedWithCode(1),
              "^Could not allocate structure for union/find \\[-1 elements\\]\n\n$");
}

} // namespace
