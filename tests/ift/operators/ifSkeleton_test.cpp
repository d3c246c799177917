#include "ift/operators/ifSkeleton.h"

#include "ift/label/ifContour.h"
#include "ift/seeds/ifContourSeeds.h"
#include "reference/literalEuclid.h"

#include <algorithm>

namespace {

struct Skeleton {
  int largest;
  imImagePtr image;
};

Skeleton skeleton(const imImagePtr &image, int type, int threshold) {
  imImage *result = nullptr;
  const int largest = ifSkel(image.get(), type, threshold, &result);
  return {largest, imImagePtr(result)};
}

// What iftSkelNova leaves in four bands, which is made of a literal propagation.
std::vector<Matrix> literalBands(const imImagePtr &image, const ifRoots2 &roots) {
  const auto nearDisc = [](int **list) { return imNeighborhood(list, 2); };
  LiteralEuclid literal =
      literalEuclid(image.get(), nearDisc, 2 * (image->ncols + image->nrows), roots.pixel, roots.n);
  const auto ofRoots = [&literal](const int *values) {
    Matrix band = literal.root;
    for (auto &row : band)
      for (int &i : row)
        i = i < 0 ? 0 : values[i];
    return band;
  };
  return {ofRoots(roots.label), literal.cost, literal.pred, ofRoots(roots.value)};
}

TEST(Skeleton, SpreadingEqualsTheLiteralForm) {
  std::mt19937 random(41);
  for (int round = 0; round < 100; ++round) {
    const imImagePtr image = blank(pick(random, 1, 25), pick(random, 1, 25));
    const int n = pick(random, 0, 12);
    std::vector<int> pixel(n), label(n), contour(n);
    for (int i = 0; i < n; ++i) {
      pixel[i] = pick(random, 0, image->npixels - 1);
      label[i] = i + 5;
      contour[i] = -i;
    }
    const ifRoots2 roots = {pixel.data(), label.data(), contour.data(), nullptr, n};
    const imImagePtr work = blankLike(image, 5);
    iftSkelNova(image.get(), work.get(), &roots);
    const std::vector<Matrix> expected = literalBands(image, roots);
    for (int b = 0; b < 4; ++b)
      EXPECT_EQ(bandOf(work, b + 1), expected[b]) << round;
  }
}

TEST(Skeleton, IsWhereFarPartsOfTheContourMeet) {
  std::mt19937 random(42);
  for (int round = 0; round < 40; ++round) {
    const int ncols = pick(random, 8, 40);
    const int nrows = pick(random, 8, 40);
    const imImagePtr image = blank(ncols, nrows, 1, imTypeGrey);
    for (int n = pick(random, 0, 4); n > 0; --n) { // rectangles
      const int x = pick(random, 1, ncols - 3);
      const int y = pick(random, 1, nrows - 3);
      for (int h = pick(random, 1, nrows - 1 - y); h > 0; --h)
        std::fill_n(image->band[0] + image->row[y + h - 1] + x, (ncols - x) / 2, 7);
    }
    ifRoots2 roots;
    imImagePtr(ifSkel2Roots(image.get(), &roots));
    const std::vector<Matrix> bands = literalBands(image, roots);
    ifReleaseRoots2(&roots);
    const imImagePtr apart = blankLike(image);
    ifLabelDifferences(makeImage(bands[0]).get(), makeImage(bands[3]).get(), apart.get(), 0);
    for (const int type : {0, 1, 2}) {
      const int threshold = pick(random, -3, 20);
      const Skeleton skel = skeleton(image, type, threshold);
      EXPECT_EQ(skel.largest, apart->maxValue);
      for (int p = 0; p < image->npixels; ++p) {
        const bool isWanted = type == 0 || (type == 1) == (image->band[0][p] > 0);
        const bool isFar = apart->band[0][p] >= std::min(threshold, apart->maxValue);
        ASSERT_EQ(skel.image->band[0][p], isWanted && isFar ? bands[1][p / ncols][p % ncols] : 0);
      }
    }
  }
}

TEST(Skeleton, EmptyShapesAndInvalidTypes) {
  for (const int value : {0, 7}) {
    const imImagePtr image = makeImage(Matrix(7, std::vector<int>(9, value)));
    const Skeleton none = skeleton(image, 0, 1);
    EXPECT_EQ(none.largest, -99999);
    EXPECT_EQ(bandOf(none.image), Matrix(7, std::vector<int>(9, 0)));
    for (const int type : {3, -1}) {
      const auto fail = [&] { EXPECT_EQ(skeleton(image, type, 1).image, nullptr); };
      EXPECT_EQ(errorsOf(fail), "invalid skelType: " + std::to_string(type) + "\n");
    }
  }
}

// A comb whose border is more than a million pixels long: no stack is that deep. Pixels half as far
// apart along it meet at its spine.
TEST(Skeleton, ContourOfAMillionPixels) {
  const imImagePtr comb = blank(1800, 1800, 1, imTypeGrey);
  for (int y = 1; y < 1799; ++y)
    for (int x = 1; x < 1799; ++x)
      comb->band[0][x + comb->row[y]] = y < 4 || x % 6 < 3 ? 1 : 0;
  const Skeleton skel = skeleton(comb, 0, 500000);
  EXPECT_GT(skel.largest, 500000);
  EXPECT_GT(*std::max_element(skel.image->band[0], skel.image->band[0] + comb->npixels), 0);
}

} // namespace
