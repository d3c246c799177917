// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imNeighborhood.h"

#include "image/detail/neighborWalk.h"
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

TEST(Neighborhood, Lists) {
  EXPECT_EQ(pairsOf(imNeighborhood4), (Pairs{{1, 0}, {0, 1}, {0, -1}, {-1, 0}}));
  EXPECT_EQ(pairsOf(imNeighborhood4forward), (Pairs{{1, 0}, {0, 1}}));
  EXPECT_EQ(pairsOf(imNeighborhood8),
            (Pairs{{1, 0}, {0, 1}, {0, -1}, {-1, 0}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}));
  EXPECT_EQ(pairsOf(imNeighborhood8forward), (Pairs{{1, 0}, {0, 1}, {1, 1}, {-1, 1}}));
  EXPECT_EQ(pairsOf(imNeighborhood8Clockwise),
            (Pairs{{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}));
  for (int r = -1; r <= 60; ++r) {
    Pairs disc, square;
    for (int dx = -r; dx <= r; ++dx)
      for (int dy = -r; dy <= r; ++dy) {
        square.emplace_back(dx, dy);
        if (dx * dx + dy * dy <= r)
          disc.emplace_back(dx, dy);
      }
    EXPECT_EQ(pairsOf([r](int **list) { return imNeighborhood(list, r); }), disc) << r;
    EXPECT_TRUE(r < 0 || pairsOf([r](int **list) { return imMorphWindow(list, r); }) == square);
  }
}

// Every relation on every small image, against the definition of a neighbour.
TEST(NeighborWalk, EqualsTheDefinition) {
  const imNeighborhoodFn relations[] = {imNeighborhood4, imNeighborhood8, imNeighborhood8forward,
                                        [](int **list) { return imNeighborhood(list, 5); }};
  for (int i = 0; i < 4 * 36; ++i) {
    const int ncols = 1 + i % 6;
    const int nrows = 1 + i / 6 % 6;
    const imImagePtr image = blank(ncols, nrows);
    const Pairs displacements = pairsOf(relations[i / 36]);
    const NeighborWalk walk(image.get(), relations[i / 36]);
    for (int p = 0; p < image->npixels; ++p) {
      Pairs expected, seen; // (neighbour, displacement)
      for (int k = 0; k < static_cast<int>(displacements.size()); ++k) {
        const int x = p % ncols + displacements[k].first;
        const int y = p / ncols + displacements[k].second;
        if (x >= 0 && x < ncols && y >= 0 && y < nrows)
          expected.emplace_back(x + image->row[y], k);
      }
      walk.each(p, [&seen](int q, int k) { seen.emplace_back(q, k); });
      EXPECT_EQ(seen, expected);
    }
  }
}

} // namespace
