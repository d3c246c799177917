// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/ifContourSeeds.h"

#include "ift/label/ifContour.h"
#include "image/detail/neighborWalk.h"
#include "image/imPixelwise.h"
#include "support.h"

#include <cstdlib>

using seedforest::detail::NeighborWalk;

namespace {

TEST(ContourSeeds, AlongTheContourOrOneLabelForAll) {
  using Roots = std::vector<Root>; // pixel and label; values are 0
  const struct {
    Matrix shape;
    Roots numbered, uniform;
  } cases[] = {
      {{{1, 1}, {1, 1}}, {}, {}}, // outside the image is no background
      // a background pixel that touches only diagonally; two objects; a negative pixel
      {{{0, 1, 1}, {1, 1, 1}, {1, 1, 1}}, {{1, 1}, {3, 4}}, {{1, 1}, {3, 1}, {4, 1}}},
      {{{1, 0, 1}}, {{0, 3}, {2, 6}}, {{0, 1}, {2, 2}}},
      {{{1, -5}}, {}, {{0, 1}}},
  };
  for (const auto &c : cases)
    for (const auto &[contour, expected] : {std::pair(0, c.uniform), {1, c.numbered}}) {
      ifRoots roots;
      ifDistTransfRoots(makeImage(c.shape).get(), &roots, contour);
      EXPECT_EQ(listOf(&roots), expected) << &c - cases;
      ifReleaseRoots(&roots);
    }
}

// Of each root the number of its contour, in hundreds, and its label. The shape that is left has
// exactly the roots as its border.
Matrix followed(const Matrix &shape) {
  ifRoots2 roots;
  const imImagePtr left(ifSkel2Roots(makeImage(shape).get(), &roots));
  const imImagePtr picture = blankLike(left);
  ifRegionsToContours(left.get(), picture.get());
  for (int i = 0; i < roots.n; ++i)
    picture->band[0][roots.pixel[i]] += 100 * roots.value[i] + roots.label[i] - 255;
  ifReleaseRoots2(&roots);
  return bandOf(picture);
}

Matrix numbered(const Matrix &shape) {
  const imImagePtr image = makeImage(shape);
  ifRoots roots;
  EXPECT_EQ(printedBy([&] { ifSkel2RootsSplit(image.get(), &roots); }), "in ifLabelImage\n");
  const imImagePtr picture(ifVisualizeRoots(image.get(), &roots));
  ifReleaseRoots(&roots);
  return bandOf(picture);
}

TEST(SkeletonSeeds, FollowedWithTheBackgroundOnTheRight) {
  // A closed walk; a blob cut by the frame, where every pixel that following misses begins a
  // contour of its own, and whose spur touches the interior.
  EXPECT_EQ(followed({{0, 0, 0, 0, 0, 0, 0, 0, 0},
                      {0, 1, 1, 1, 0, 0, 1, 1, 0},
                      {0, 1, 1, 1, 0, 1, 1, 1, 0},
                      {0, 1, 1, 1, 0, 1, 1, 1, 1},
                      {0, 0, 0, 0, 0, 1, 1, 1, 0}}),
            (Matrix{{0, 0, 0, 0, 0, 0, 0, 0, 0},
                    {0, 101, 108, 107, 0, 0, 209, 313, 0},
                    {0, 102, 0, 106, 0, 210, 0, 414, 0},
                    {0, 103, 104, 105, 0, 211, 0, 0, 515},
                    {0, 0, 0, 0, 0, 212, 0, 616, 0}}));
  // the border of a hole; a line and single pixels have no interior
  EXPECT_EQ(followed({{1, 1, 1}, {1, 0, 1}, {1, 1, 1}}),
            (Matrix{{0, 101, 0}, {104, 0, 102}, {0, 103, 0}}));
  EXPECT_EQ(followed({{1, 0, 0, 0}, {0, 0, 1, 1}, {0, 0, 0, 0}}), Matrix(3, {0, 0, 0, 0}));
}

// The same from whole images: border, interior, the border that touches both sides, its contours.
TEST(SkeletonSeeds, EqualTheirSteps) {
  std::mt19937 random(44);
  for (int round = 0; round < 300; ++round) {
    const imImagePtr image = randomImage(random, 2, imTypeGrey, pick(random, 1, 70),
                                         pick(random, 1, 30), -round % 2, round % 3 == 0 ? 1 : 20);
    const imImagePtr border = blankLike(image);
    ifRegionsToContours(image.get(), border.get());
    const imImagePtr interior(imBinaryDifference(image.get(), border.get(), imTypeGrey));
    const NeighborWalk neighbors(image.get(), imNeighborhood8);
    for (int p = 0; p < image->npixels; ++p)
      if (!neighbors.any(p % image->ncols, p / image->ncols,
                         [&](int q, int) { return interior->band[0][q] > 0; }))
        border->band[0][p] = 0;
    const imImagePtr shape(imBinaryUnion(border.get(), interior.get(), imTypeGrey));
    const ifRootsPtr expected = makeRoots(std::vector<Root>(image->npixels));
    expected->n = 0;
    ifRoots2 record = {expected->pixel, expected->label, expected->value, nullptr, 0};
    int *list = nullptr;
    imNeighborhood8(&list);
    int contour = 0;
    for (int p = 0; p < image->npixels; ++p)
      if (border->band[0][p] > 0)
        ifContourFollow(&record, &expected->n, ++contour, border.get(), shape.get(), p, list);
    std::free(list);
    ifRoots2 roots;
    expectImage("shape", ifSkel2Roots(image.get(), &roots), imTypeGrey, 255,
                {bandOf(shape), Matrix(image->nrows, std::vector<int>(image->ncols))});
    const ifRoots made = {roots.pixel, roots.label, roots.value, roots.n};
    EXPECT_EQ(listOf(&made), listOf(expected.get())) << "round " << round;
    ifReleaseRoots2(&roots);
  }
}

TEST(SkeletonSeeds, NumberedFromTheMiddleRow) {
  EXPECT_EQ(numbered({{0, 0, 0, 0, 0, 0, 0, 0},
                      {0, 1, 1, 1, 0, 1, 0, 2},
                      {0, 1, 1, 1, 0, 1, 0, 0},
                      {0, 1, 1, 1, 0, 0, 0, 0},
                      {0, 0, 0, 0, 0, 0, 9, 0}}),
            (Matrix{{0, 0, 0, 0, 0, 0, 0, 0},
                    {0, 4, 5, 8, 0, 9, 0, 11},
                    {0, 1, 0, 7, 0, 10, 0, 0},
                    {0, 3, 2, 6, 0, 0, 0, 0},
                    {0, 0, 0, 0, 0, 0, 12, 0}}));
  EXPECT_EQ(numbered({{1, 1}, {1, 1}}), (Matrix{{0, 0}, {0, 0}}));
  // The search for a curve's first row begins at 100000: a curve below gets no roots.
  Matrix column(100007, {0});
  column[100000] = column[100005] = {1};
  Matrix expected(100007, {0});
  expected[100000] = {1};
  EXPECT_EQ(numbered(column), expected);
}

} // namespace
