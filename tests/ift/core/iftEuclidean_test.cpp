#include "ift/core/iftEuclidean.h"

#include "ift/core/detail/forestTransforms.h"
#include "image/detail/neighborWalk.h"
#include "reference/literalEuclid.h"
#include "reference/literalTransform.h"
#include "support.h"

using namespace seedforest::detail;

namespace {

imImagePtr distances(int ncols, int nrows, const std::vector<Root> &roots,
                     imNeighborhoodFn adjacency = imNeighborhood8) {
  imImagePtr result = blank(ncols, nrows, 4);
  iftEuclideanDT(blank(ncols, nrows).get(), result.get(), adjacency, makeRoots(roots).get());
  return result;
}

TEST(Euclidean, SmallPictures) {
  const imImagePtr corner = distances(3, 3, {{0, 7, 0}});
  EXPECT_EQ(bandOf(corner, 2), (Matrix{{0, 1, 4}, {1, 2, 5}, {4, 5, 8}}));
  // The middle goes to the root listed first; a pixel listed twice takes its later label and place.
  EXPECT_EQ(bandOf(distances(5, 1, {{4, 2}, {0, 1}, {4, 3}}), 1), (Matrix{{1, 1, 1, 3, 3}}));
  const imImagePtr point = distances(37, 23, {{5 * 37 + 30, 1}}); // exact for one root
  for (int p = 0; p < point->npixels; ++p) {
    const int dx = p % 37 - 30;
    const int dy = p / 37 - 5;
    EXPECT_EQ(point->band[2][p], dx * dx + dy * dy);
  }
}

// Squares beyond 31 bits conquer nothing; those just below do, though an offset of 46340 is more
// than 15 bits hold.
TEST(Euclidean, LongWays) {
  const imImagePtr result = distances(46350, 1, {{0, 1, 0}});
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
  EXPECT_EQ(bandOf(distances(2, 1, {{0, 1, 0}}, leaps), 2), (Matrix{{0, ifInfiniteCost}}));
}

// With the offsets in arrays of their own.
struct LiteralEuclidean : ForestBands {
  struct Arcs {
    NeighborWalk neighbors;
    template <class Visit>
    void each(int p, Visit visit) const {
      neighbors.each(p, visit);
    }
  } arcs;
  std::vector<int> x, y;

  int extend(int p, int, int k) const {
    const int nx = x[p] + std::abs(arcs.neighbors.dx(k));
    const int ny = y[p] + std::abs(arcs.neighbors.dy(k));
    return nx * nx + ny * ny;
  }
  bool improves(int offered, int q) const { return offered < cost[q]; }
  void conquer(int p, int q, int k, int offered) {
    ForestBands::conquer(p, q, k, offered);
    x[q] = x[p] + std::abs(arcs.neighbors.dx(k));
    y[q] = y[p] + std::abs(arcs.neighbors.dy(k));
  }
  int bucket(int offered, int) const { return bucketOf<Minimising>(offered, maxCost); }
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
    const int ncols = pick(random, 1, 40);
    const int nrows = pick(random, 1, 40);
    const int npixels = ncols * nrows;
    std::vector<Root> roots;
    for (int n = pick(random, 0, 11); n > 0; --n)
      roots.push_back({pick(random, 0, npixels - 1), n, 0});
    const imNeighborhoodFn relations[] = {imNeighborhood4, imNeighborhood8, disc2, knight};
    const imNeighborhoodFn adjacency = relations[round % 4];
    const imImagePtr fast = distances(ncols, nrows, roots, adjacency);

    const imImagePtr literal = blankLike(fast, 4);
    int **band = literal->band + 1;
    const int maxCost = 2 * (ncols + nrows) + 1;
    std::fill_n(band[1], npixels, ifInfiniteCost);
    const std::vector<int> zeros(npixels, 0);
    literalTransform(LiteralEuclidean{{band[0], band[1], band[2], maxCost},
                                      {NeighborWalk(literal.get(), adjacency)},
                                      zeros,
                                      zeros},
                     maxCost + 1, npixels, *makeRoots(roots));
    for (int b = 1; b < 4; ++b)
      ASSERT_EQ(bandOf(fast, b), bandOf(literal, b)) << "round " << round;
  }
}

// Relations of more displacements than have lists of their own, and than a byte can name.
TEST(Euclidean, WideRelationsEqualTheLiteralForm) {
  std::mt19937 random(22);
  const imNeighborhoodFn discs[] = {[](int **list) { return imNeighborhood(list, 25); },
                                    [](int **list) { return imNeighborhood(list, 100); }};
  for (int round = 0; round < 40; ++round) {
    const int ncols = pick(random, 1, 30);
    const int nrows = pick(random, 1, 30);
    std::vector<Root> roots;
    for (int label = pick(random, 0, 5); label > 0; --label)
      roots.push_back({pick(random, 0, ncols * nrows - 1), label});
    const imImagePtr fast = distances(ncols, nrows, roots, discs[round % 2]);
    const ifRootsPtr listed = makeRoots(roots);
    const imImagePtr literal = literalEuclid(fast.get(), discs[round % 2], 2 * (ncols + nrows) + 2,
                                             listed->n, listed->pixel, {listed->label});
    EXPECT_EQ(bandOf(fast, 1), bandOf(literal, 2)) << round;
    EXPECT_EQ(bandOf(fast, 2), bandOf(literal, 0)) << round;
    EXPECT_EQ(bandOf(fast, 3), bandOf(literal, 1)) << round;
  }
}

} // namespace
