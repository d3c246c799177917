#include "image/imNeighborhood.h"

#include "support.h"

#include <utility>

using seedforest::detail::NeighborWalk;

namespace {

using Pairs = std::vector<std::pair<int, int>>;

template <class Make>
Pairs pairsOf(Make make) {
  int *list = nullptr;
  const int n = make(&list);
  const seedforest::detail::Array<int> owned(list);
  Pairs pairs;
  for (int k = 0; k < n; ++k)
    pairs.emplace_back(list[2 * k], list[2 * k + 1]);
  return pairs;
}

Pairs disc(int r2) {
  return pairsOf([r2](int **list) { return imNeighborhood(list, r2); });
}

Pairs square(int r) {
  return pairsOf([r](int **list) { return imMorphWindow(list, r); });
}

TEST(Neighborhood, FixedRelations) {
  EXPECT_EQ(pairsOf(imNeighborhood4), (Pairs{{1, 0}, {0, 1}, {0, -1}, {-1, 0}}));
  EXPECT_EQ(pairsOf(imNeighborhood4forward), (Pairs{{1, 0}, {0, 1}}));
  EXPECT_EQ(pairsOf(imNeighborhood8),
            (Pairs{{1, 0}, {0, 1}, {0, -1}, {-1, 0}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}));
  EXPECT_EQ(pairsOf(imNeighborhood8forward), (Pairs{{1, 0}, {0, 1}, {1, 1}, {-1, 1}}));
  EXPECT_EQ(pairsOf(imNeighborhood8Clockwise),
            (Pairs{{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}));
}

TEST(Neighborhood, DiscsAndSquares) {
  EXPECT_EQ(disc(-1), Pairs{});
  EXPECT_EQ(disc(0), (Pairs{{0, 0}}));
  EXPECT_EQ(disc(1), (Pairs{{-1, 0}, {0, -1}, {0, 0}, {0, 1}, {1, 0}}));
  EXPECT_EQ(disc(2), square(1));
  EXPECT_EQ(disc(3), square(1));
  EXPECT_EQ(disc(4).size(), 13U);
  EXPECT_EQ(disc(5).size(), 21U);
  EXPECT_EQ(square(0), (Pairs{{0, 0}}));
  for (int r2 = 0; r2 <= 60; ++r2) {
    Pairs expected;
    for (int dx = -r2; dx <= r2; ++dx)
      for (int dy = -r2; dy <= r2; ++dy)
        if (dx * dx + dy * dy <= r2)
          expected.emplace_back(dx, dy);
    EXPECT_EQ(disc(r2), expected) << r2;
  }
  EXPECT_EXIT(disc(2147483647), testing::ExitedWithCode(1), "imNeighborhood");
  EXPECT_EXIT(square(-1), testing::ExitedWithCode(1), "imMorphWindow");
  EXPECT_EXIT(square(16384), testing::ExitedWithCode(1), "imMorphWindow");
}

// Every relation on every small image, against the definition of a neighbour.
TEST(NeighborWalk, EqualsTheDefinition) {
  const imNeighborhoodFn relations[] = {imNeighborhood4, imNeighborhood8, imNeighborhood8forward,
                                        [](int **list) { return imNeighborhood(list, 5); }};
  for (const imNeighborhoodFn relation : relations) {
    const Pairs displacements = pairsOf(relation);
    for (int ncols = 1; ncols <= 6; ++ncols)
      for (int nrows = 1; nrows <= 6; ++nrows) {
        const imImagePtr image(imCreateImage(1, imTypeGrey, ncols, nrows));
        const NeighborWalk walk(image.get(), relation);
        for (int p = 0; p < image->npixels; ++p) {
          Pairs expected; // (neighbour, displacement)
          for (int k = 0; k < static_cast<int>(displacements.size()); ++k) {
            const int x = p % ncols + displacements[k].first;
            const int y = p / ncols + displacements[k].second;
            if (x >= 0 && x < ncols && y >= 0 && y < nrows)
              expected.emplace_back(x + image->row[y], k);
          }
          Pairs seen;
          walk.each(p, [&seen](int q, int k) { seen.emplace_back(q, k); });
          EXPECT_EQ(seen, expected);
        }
      }
  }
}

TEST(NeighborWalk, AnyStopsAtTheFirst) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, 3, 3));
  const NeighborWalk walk(image.get(), imNeighborhood8);
  int calls = 0;
  EXPECT_TRUE(walk.any(1, 1, [&calls](int, int k) { return ++calls, k == 2; }));
  EXPECT_EQ(calls, 3);
  EXPECT_FALSE(walk.any(1, 1, [](int, int) { return false; }));
}

} // namespace
