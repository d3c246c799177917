// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/iftEuclidean.h"

#include "ift/core/detail/euclideanTiles.h"
#include "reference/literalEuclid.h"

using namespace seedforest::detail;

namespace {

imImagePtr distances(int ncols, int nrows, const std::vector<Root> &roots,
                     imNeighborhoodFn adjacency = imNeighborhood8) {
  imImagePtr result = blank(ncols, nrows, 4);
  iftEuclideanDT(blank(ncols, nrows).get(), result.get(), adjacency, makeRoots(roots).get());
  return result;
}

TEST(Euclidean, SmallPictures) {
  EXPECT_EQ(bandOf(distances(3, 2, {{0, 7, 0}}), 2), (Matrix{{0, 1, 4}, {1, 2, 5}}));
  // The middle goes to the root listed first; a pixel listed twice takes its later label and place.
  EXPECT_EQ(bandOf(distances(5, 1, {{4, 2}, {0, 1}, {4, 3}}), 1), (Matrix{{1, 1, 1, 3, 3}}));
}

// Squares beyond 31 bits conquer nothing; those just below do, though an offset of 46340 is more
// than 15 bits hold.
TEST(Euclidean, LongWays) {
  const imImagePtr result = distances(46350, 1, {{0, 1, 0}});
  EXPECT_EQ(result->band[2][46340], 46340 * 46340);
  EXPECT_EQ(result->band[1][46340], 1);
  EXPECT_EQ(result->band[2][46341], ifInfiniteCost);
  EXPECT_EQ(result->band[1][46341], 0);

  // More than the words of tiles can tell apart, in an image that is wide enough for them.
  const std::int64_t before = propagationsInTiles;
  const imImagePtr wide = distances(8300, 9, {{0, 1, 0}});
  EXPECT_EQ(propagationsInTiles, before);
  EXPECT_EQ(wide->band[2][wide->npixels - 1], 8299 * 8299 + 8 * 8);

  const auto leaps = [](int **list) {
    *list = allocateInts(4);
    (*list)[0] = minInt;
    (*list)[3] = maxInt;
    return 2;
  };
  EXPECT_EQ(bandOf(distances(2, 1, {{0, 1, 0}}, leaps), 2), (Matrix{{0, ifInfiniteCost}}));
}

int knight(int **list) { // its far steps outrun the buckets
  const int n = imNeighborhood4(list);
  for (int i = 0; i < 2 * n; ++i)
    (*list)[i] = (*list)[i] * 2 + (i % 2 == 0 ? 1 : 5);
  return n;
}
template <int r2>
int disc(int **list) {
  return imNeighborhood(list, r2);
}

int reversed(int **list) { // another order of the eight, and so other ties
  const int n = imNeighborhood8(list);
  std::reverse(*list, *list + 2 * n);
  return n;
}

// Relations of more displacements than have lists of their own, and than a byte can name, too.
TEST(Euclidean, EqualsTheLiteralForm) {
  std::mt19937 random(21);
  const imNeighborhoodFn relations[] = {imNeighborhood4, imNeighborhood8, disc<2>,  reversed,
                                        knight,          disc<25>,        disc<100>};
  const std::int64_t before = propagationsInTiles;
  for (int round = 0; round < 1400; ++round) {
    const int ncols = pick(random, 1, 40);
    const int nrows = pick(random, 1, 40);
    std::vector<Root> roots;
    const int most = round % 3 == 0 ? ncols * nrows / 3 : 11;
    for (int n = pick(random, 0, most); n > 0; --n)
      roots.push_back({pick(random, 0, ncols * nrows - 1), n});
    const imNeighborhoodFn adjacency = relations[round % std::size(relations)];
    const imImagePtr fast = distances(ncols, nrows, roots, adjacency);
    const ifRootsPtr listed = makeRoots(roots);
    const imImagePtr literal = literalEuclid(fast.get(), adjacency, 2 * (ncols + nrows) + 2,
                                             listed->n, listed->pixel, {listed->label});
    for (const auto &[made, expected] : {std::pair{1, 2}, {2, 0}, {3, 1}})
      ASSERT_EQ(bandOf(fast, made), bandOf(literal, expected)) << "round " << round;
  }
  EXPECT_GT(propagationsInTiles, before + 300);
}

} // namespace
