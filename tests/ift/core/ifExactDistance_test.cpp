// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifExactDistance.h"

#include "reference/plainDistance.h"

namespace {

imImagePtr exactDistance(int ncols, int nrows, const std::vector<Root> &roots) {
  imImagePtr result = blank(ncols, nrows, 4);
  ifExactDistance(result.get(), result.get(), makeRoots(roots).get());
  return result;
}

// Of three parabolas the middle one is nowhere the lowest alone: it wins its tie in the first row.
TEST(ExactDistance, TiesGoToTheRootListedFirst) {
  const imImagePtr result = exactDistance(3, 2, {{4, 9}, {0, 1}, {2, 2}});
  EXPECT_EQ(bandOf(result, 1), (Matrix{{1, 9, 2}, {9, 9, 9}}));
  EXPECT_EQ(bandOf(result, 2), (Matrix{{0, 1, 0}, {1, 0, 1}}));
}

// Squares beyond 31 bits are not reached, along rows and along columns.
TEST(ExactDistance, LongWays) {
  for (const bool isRow : {true, false}) {
    const imImagePtr result =
        isRow ? exactDistance(46350, 1, {{0, 1}}) : exactDistance(1, 46350, {{0, 1}});
    EXPECT_EQ(result->band[2][46340], 46340 * 46340);
    EXPECT_EQ(result->band[3][46340], 0);
    EXPECT_EQ(result->band[2][46341], ifInfiniteCost);
    EXPECT_EQ(result->band[1][46341], 0);
    EXPECT_EQ(result->band[3][46341], 46341);
  }
}

// Roots on lattices and lines, shuffled, and repeated: full of ties.
std::vector<Root> randomRoots(std::mt19937 &random, int ncols, int nrows) {
  std::vector<Root> roots;
  const int stepX = pick(random, 1, 4), stepY = pick(random, 1, 4);
  const int kept = pick(random, 0, 5);
  for (int p = 0; p < ncols * nrows; ++p)
    if (p % ncols % stepX == 0 && p / ncols % stepY == 0 && pick(random, 0, 5) <= kept)
      for (int times = pick(random, 0, 7) == 0 ? 2 : 1; times > 0; --times)
        roots.push_back({p, pick(random, -1, 9)});
  std::shuffle(roots.begin(), roots.end(), random);
  roots.resize(std::min<std::size_t>(roots.size(), static_cast<std::size_t>(pick(random, 0, 60))));
  return roots;
}

TEST(ExactDistance, EqualsTheNearestOfAllRoots) {
  std::mt19937 random(31);
  for (int round = 0; round < 1500; ++round) {
    const int ncols = pick(random, 1, 24);
    const int nrows = pick(random, 1, 24);
    const std::vector<Root> roots = randomRoots(random, ncols, nrows);
    const imImagePtr expected = nearestOfAll(ncols, nrows, roots);
    const imImagePtr fast = exactDistance(ncols, nrows, roots);
    for (int b = 0; b < 4; ++b)
      ASSERT_EQ(bandOf(fast, b), bandOf(expected, b)) << "round " << round << " band " << b;
  }
}

} // namespace
