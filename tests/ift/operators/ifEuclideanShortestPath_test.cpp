// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/ifEuclideanShortestPath.h"

#include "image/imNeighborhood.h"
#include "support.h"

#include <cmath>

namespace {

std::vector<Root> path(const imImagePtr &mask, int from, int to) {
  return listOf(ifRootsPtr(ifEuclideanShortestPath(mask.get(), from, to)).get());
}

TEST(ShortestPath, ByHand) {
  const imImagePtr mask = makeImage({{1, 1, 1, 0, 7}, {0, 0, 1, -1, 0}, {1, 1, 1, 1, 1}});
  EXPECT_EQ(path(mask, 0, 10),
            (std::vector<Root>{{0, 1, 0}, {1, 2, 1}, {7, 3, 5}, {11, 4, 5}, {10, 5, 4}}));
  // Right comes before the diagonals, and down before down and right.
  const imImagePtr open = makeImage(Matrix(2, std::vector<int>(4, 1)));
  EXPECT_EQ(path(open, 0, 7), (std::vector<Root>{{0, 1, 0}, {1, 2, 1}, {2, 3, 4}, {7, 4, 10}}));
  EXPECT_EQ(path(mask, 0, 4).size(), 0U); // not connected
}

// All lengths by Bellman's rule until nothing changes, in long doubles, which tell lengths of so few
// steps apart by far more than they err; then the steps in the order of the adjacency.
std::vector<int> plainPath(const imImagePtr &mask, int from, int to) {
  const long double infinite = 1e9L;
  std::vector<long double> length(static_cast<std::size_t>(mask->npixels), infinite);
  int *list = nullptr;
  const int n = imNeighborhood8(&list);
  const seedforest::detail::Array<int> owner(list);
  const auto fits = [](long double a, long double b) { return std::abs(a - b) < 1e-9L; };
  // The first neighbour for which visit(q, length of the step) holds; else p.
  const auto firstNeighbor = [&](int p, const auto &visit) {
    for (int k = 0; k < n; ++k) {
      const int x = p % mask->ncols + list[2 * k];
      const int y = p / mask->ncols + list[2 * k + 1];
      if (x < 0 || y < 0 || x >= mask->ncols || y >= mask->nrows)
        continue;
      const int q = x + mask->row[y];
      if (mask->band[0][q] > 0 && visit(q, std::hypot(0.0L + list[2 * k], 0.0L + list[2 * k + 1])))
        return q;
    }
    return p;
  };
  length[to] = 0;
  for (bool changes = true; changes;) {
    changes = false;
    for (int p = 0; p < mask->npixels; ++p)
      firstNeighbor(p, [&](int q, long double step) {
        if (mask->band[0][p] > 0 && length[q] + step < length[p] - 1e-9L) {
          length[p] = length[q] + step;
          changes = true;
        }
        return false;
      });
  }
  if (mask->band[0][from] <= 0 || mask->band[0][to] <= 0 || length[from] == infinite)
    return {};
  std::vector<int> pixels = {from};
  while (pixels.back() != to)
    pixels.push_back(firstNeighbor(pixels.back(), [&](int q, long double step) {
      return fits(length[q] + step, length[pixels.back()]);
    }));
  return pixels;
}

TEST(ShortestPath, EqualsThePlainSearch) {
  std::mt19937 random(51);
  for (int round = 0; round < 600; ++round) {
    imImagePtr mask = randomImage(random, 1, imTypeAscii, pick(random, 1, 30), pick(random, 1, 30),
                                  0, 1 + round % 4);
    const int from = pick(random, 0, mask->npixels - 1);
    const int to = pick(random, 0, mask->npixels - 1);
    std::vector<Root> expected;
    for (const int p : plainPath(mask, from, to)) {
      const int dx = p % mask->ncols - from % mask->ncols;
      const int dy = p / mask->ncols - from / mask->ncols;
      expected.push_back({p, static_cast<int>(expected.size()) + 1, dx * dx + dy * dy});
    }
    ASSERT_EQ(path(mask, from, to), expected) << round;
  }
}

} // namespace
