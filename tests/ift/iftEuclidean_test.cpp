#include "ift/core/iftEuclidean.h"

#include "ift/core/iftRules.h"
#include "reference/literalTransform.h"
#include "support.h"

using namespace seedforest::detail;

namespace {

imImagePtr distances(int ncols, int nrows, const std::vector<Root> &roots,
                     imNeighborhoodFn adjacency = imNeighborhood8) {
  const imImagePtr size(imCreateImage(1, imTypeGrey, ncols, nrows));
  imImagePtr result(imCreateImage(4, imTypeWork, ncols, nrows));
  iftEuclideanDT(size.get(), result.get(), adjacency, makeRoots(roots).get());
  return result;
}

TEST(Euclidean, SmallPictures) {
  const imImagePtr corner = distances(3, 3, {{0, 7, 0}});
  EXPECT_EQ(bandOf(corner.get(), 2), (Matrix{{0, 1, 4}, {1, 2, 5}, {4, 5, 8}}));
  EXPECT_EQ(bandOf(corner.get(), 1), (Matrix{{7, 7, 7}, {7, 7, 7}, {7, 7, 7}}));
  EXPECT_EQ(bandOf(corner.get(), 0), (Matrix{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}));

  // The middle goes to the root listed first; a pixel listed twice takes its later label and place.
  EXPECT_EQ(bandOf(distances(5, 1, {{4, 2, 0}, {0, 1, 0}}).get(), 1), (Matrix{{1, 1, 2, 2, 2}}));
  EXPECT_EQ(bandOf(distances(5, 1, {{4, 2, 0}, {0, 1, 0}, {4, 3, 0}}).get(), 1),
            (Matrix{{1, 1, 1, 3, 3}}));

  const imImagePtr none = distances(2, 1, {});
  EXPECT_EQ(bandOf(none.get(), 1), (Matrix{{0, 0}}));
  EXPECT_EQ(bandOf(none.get(), 2), (Matrix{{ifInfiniteCost, ifInfiniteCost}}));
  EXPECT_EQ(bandOf(none.get(), 3), (Matrix{{0, 1}}));
}

TEST(Euclidean, ExactForOneRootAndForALine) {
  const int ncols = 37;
  const int nrows = 23;
  std::vector<Root> line;
  for (int x = 0; x < ncols; ++x)
    line.push_back({5 * ncols + x, x + 1, 0});
  const imImagePtr toLine = distances(ncols, nrows, line);
  const imImagePtr toPoint = distances(ncols, nrows, {{5 * ncols + 30, 1, 0}});
  for (int p = 0; p < ncols * nrows; ++p) {
    const int dx = p % ncols - 30;
    const int dy = p / ncols - 5;
    EXPECT_EQ(toPoint->band[2][p], dx * dx + dy * dy);
    EXPECT_EQ(toLine->band[2][p], dy * dy);
    EXPECT_EQ(toLine->band[1][p], p % ncols + 1);
  }
}

// Squares beyond 31 bits conquer nothing; those just below do, though an offset of 46340 is more
// than 15 bits hold.
TEST(Euclidean, LongWays) {
  const int ncols = 46350;
  const imImagePtr result = distances(ncols, 1, {{0, 1, 0}});
  EXPECT_EQ(result->band[2][46340], 46340 * 46340);
  EXPECT_EQ(result->band[1][46340], 1);
  EXPECT_EQ(result->band[2][46341], ifInfiniteCost);
  EXPECT_EQ(result->band[1][46341], 0);

  const auto leaps = [](int **list) {
    *list = allocateInts(4);
    (*list)[0] = minInt;
    (*list)[3] = maxInt;
    return 2;
  };
  EXPECT_EQ(bandOf(distances(2, 1, {{0, 1, 0}}, leaps).get(), 2), (Matrix{{0, ifInfiniteCost}}));
}

// The rule with its offsets in arrays of their own.
struct LiteralRule : ForestBands {
  const NeighborWalk *neighbors;
  std::vector<int> x;
  std::vector<int> y;

  int extend(int p, int k) const {
    const int nx = x[p] + std::abs(neighbors->dx(k));
    const int ny = y[p] + std::abs(neighbors->dy(k));
    return nx * nx + ny * ny;
  }
  bool improves(int offered, int q) const { return offered < cost[q]; }
  void conquer(int p, int q, int k, int offered) {
    ForestBands::conquer(p, q, k, offered);
    x[q] = x[p] + std::abs(neighbors->dx(k));
    y[q] = y[p] + std::abs(neighbors->dy(k));
  }
  int bucket(int offered, int) const { return bucketOf<Minimising>(offered); }
};
struct LiteralArcs : NeighborArcs {
  int weight(int, int, int k) const { return k; }
};

int knight(int **list) {
  const int n = imNeighborhood4(list);
  for (int i = 0; i < 2 * n; ++i)
    (*list)[i] = (*list)[i] * 2 + (i % 2 == 0 ? 1 : 5); // far steps, which outrun the buckets
  return n;
}
int disc2(int **list) {
  return imNeighborhood(list, 2);
}

TEST(Euclidean, EqualsTheLiteralLoop) {
  std::mt19937 random(21);
  for (int round = 0; round < 600; ++round) {
    const int ncols = 1 + static_cast<int>(random() % 40);
    const int nrows = 1 + static_cast<int>(random() % 40);
    const int npixels = ncols * nrows;
    std::vector<Root> roots;
    for (auto n = random() % 12; n > 0; --n)
      roots.push_back({static_cast<int>(random() % unsigned(npixels)), static_cast<int>(n), 0});
    const imNeighborhoodFn relations[] = {imNeighborhood4, imNeighborhood8, disc2, knight};
    const imNeighborhoodFn adjacency = relations[round % 4];
    const imImagePtr fast = distances(ncols, nrows, roots, adjacency);

    const imImagePtr literal(imCreateImage(4, imTypeWork, ncols, nrows));
    const LiteralArcs arcs = {{NeighborWalk(literal.get(), adjacency)}};
    int **band = literal->band + 1;
    const int maxCost = 2 * (ncols + nrows) + 1;
    std::fill_n(band[1], npixels, ifInfiniteCost);
    const std::vector<int> zeros(static_cast<std::size_t>(npixels), 0);
    literalTransform(
        arcs, LiteralRule{{band[0], band[1], band[2], maxCost}, &arcs.neighbors, zeros, zeros},
        maxCost + 1, npixels, *makeRoots(roots));
    for (int b = 1; b < 4; ++b)
      ASSERT_EQ(bandOf(fast.get(), b), bandOf(literal.get(), b)) << "round " << round;
  }
}

TEST(Euclidean, RefusesWhatItCannotDo) {
  const auto exits = testing::ExitedWithCode(1);
  EXPECT_EXIT(distances(2, 1, {{2, 1, 0}}), exits, "iftEuclideanDT.*2");
  const imImagePtr image(imCreateImage(2, imTypeGrey, 2, 1));
  EXPECT_EXIT(iftEuclideanDT(image.get(), image.get(), imNeighborhood8, makeRoots({}).get()), exits,
              "iftEuclideanDT");
}

} // namespace
