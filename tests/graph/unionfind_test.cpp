// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "graph/unionfind.h"

#include "support.h"

namespace {

struct Sets : ufUnionFind {
  explicit Sets(int n, int dataSize = 0) { ufStartUnionFind(this, n, dataSize); }
  ~Sets() { ufReleaseUnionFind(this); }
};

// Adds up the members of sets, and records the rank at which the surviving root was found.
int addUp(ufElement *elems, int a, int b) {
  EXPECT_EQ(elems[b].parent, a);
  elems[a].data[0] += elems[b].data[0];
  elems[a].data[1] = elems[a].rank;
  return 0;
}

TEST(UnionFind, LinksByRankAndTellsTheCallback) {
  Sets sets(8, 2);
  EXPECT_EQ(sets.merge, nullptr);
  sets.merge = addUp;
  for (int i = 0; i < 8; ++i)
    sets.elems[i].data[0] += 1 << i;
  ufLink(&sets, 2, 5); // equal ranks: the second stays, and rises after the callback
  EXPECT_EQ(sets.elems[5].data[1], 0);
  ufLink(&sets, 5, 7); // the higher rank stays
  ufLink(&sets, 0, 5);
  EXPECT_EQ(sets.elems[5].data[1], 1);
  EXPECT_EQ(sets.elems[5].data[0], 1 + (1 << 2) + (1 << 5) + (1 << 7));
  EXPECT_EQ(sets.elems[5].rank, 1);
  EXPECT_EQ(ufFindSet(&sets, 7), 5);
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
  Sets sets(0);
  EXPECT_FATAL(ufStartUnionFind(nullptr, 1, 0),
               "^Union/find was not allocated before ufStartUnionFind \n\n$");
  EXPECT_FATAL(ufStartUnionFind(&sets, -1, 0),
               "^Could not allocate structure for union/find \\[-1 elements\\]\n\n$");
}

} // namespace
