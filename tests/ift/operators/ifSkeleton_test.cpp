// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/ifSkeleton.h"

#include "ift/label/ifContour.h"
#include "ift/seeds/ifContourSeeds.h"
#include "image/imVisual.h"
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

int nearDisc(int **list) {
  return imNeighborhood(list, 2);
}

TEST(Skeleton, IsWhereFarPartsOfTheContourMeet) {
  std::mt19937 random(42);
  for (int round = 0; round < 100; ++round) {
    const imImagePtr image = blank(pick(random, 8, 40), pick(random, 8, 40), 1, imTypeGrey);
    for (int n = pick(random, 0, 4); n > 0; --n) { // rectangles
      const int x = pick(random, 1, image->ncols - 3);
      const int y = pick(random, 1, image->nrows - 3);
      for (int h = pick(random, 1, image->nrows - 1 - y); h > 0; --h)
        std::fill_n(image->band[0] + image->row[y + h - 1] + x, (image->ncols - x) / 2, 7);
    }
    ifRoots2 roots;
    imImagePtr(ifSkel2Roots(image.get(), &roots));
    const imImagePtr literal =
        literalEuclid(image.get(), nearDisc, 2 * (image->ncols + image->nrows), roots.n,
                      roots.pixel, {roots.label, roots.value});
    const imImagePtr work = blankLike(image, 5);
    iftSkelNova(image.get(), work.get(), &roots);
    ifReleaseRoots2(&roots);
    for (const auto &[made, expected] : {std::pair{1, 2}, {2, 0}, {3, 1}, {4, 3}})
      EXPECT_EQ(bandOf(work, made), bandOf(literal, expected)) << round;

    const imImagePtr label(imCopyBand(literal.get(), imTypeAscii, 2));
    const imImagePtr contour(imCopyBand(literal.get(), imTypeAscii, 3));
    const imImagePtr apart = blankLike(image);
    ifLabelDifferences(label.get(), contour.get(), apart.get(), 0);
    for (const int type : {0, 1, 2}) {
      const int threshold = pick(random, -3, 20);
      const Skeleton skel = skeleton(image, type, threshold);
      EXPECT_EQ(skel.largest, apart->maxValue);
      for (int p = 0; p < image->npixels; ++p) {
        const bool isWanted = type == 0 || (type == 1) == (image->band[0][p] > 0);
        const bool isFar = apart->band[0][p] >= std::min(threshold, apart->maxValue);
        ASSERT_EQ(skel.image->band[0][p], isWanted && isFar ? literal->band[0][p] : 0);
      }
    }
  }
}

TEST(Skeleton, EmptyShapesAndInvalidTypes) {
  for (const int value : {0, 7}) {
    const imImagePtr image = makeImage(Matrix(7, std::vector<int>(9, value)));
    for (const int threshold : {1, -99999, minInt}) {
      const Skeleton none = skeleton(image, 0, threshold);
      EXPECT_EQ(none.largest, -99999);
      EXPECT_EQ(bandOf(none.image), Matrix(7, std::vector<int>(9, 0)));
    }
    for (const int type : {3, -1}) {
      const auto fail = [&] { EXPECT_EQ(skeleton(image, type, 1).image, nullptr); };
      EXPECT_EQ(errorsOf(fail), "invalid skelType: " + std::to_string(type) + "\n");
    }
  }
}

TEST(Skeleton, GivesTheShapeBack) {
  const imImagePtr discs = makeImage({{0, 0, 4, 0, 0, 0}, {-9, 0, 0, 0, 0, 1}});
  expectImage("discs", iftSkelReconstr(discs.get()), imTypeAscii, 1,
              {{{1, 1, 1, 1, 1, 1}, {0, 1, 1, 1, 1, 1}}});
  std::mt19937 random(43);
  for (int round = 0; round < 500; ++round) {
    const imImagePtr radii = blank(pick(random, 1, 40), pick(random, 1, 40));
    const int largest = std::vector{2, 50, 2000, maxInt}[round % 4];
    for (int n = pick(random, 0, 60); n > 0; --n)
      radii->band[0][pick(random, 0, radii->npixels - 1)] = pick(random, -2, largest);
    imImagePtr painted(imPaintCircles(radii.get()));
    std::replace(painted->band[0], painted->band[0] + painted->npixels, 255, 1);
    const imImagePtr shape(iftSkelReconstr(radii.get()));
    ASSERT_EQ(bandOf(shape), bandOf(painted)) << round;
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
