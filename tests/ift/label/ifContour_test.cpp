// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/ifContour.h"

#include "image/imNeighborhood.h"
#include "support.h"

using namespace seedforest::detail;

namespace {

TEST(RegionsToContours, InnerBorders) {
  const imImagePtr labels = makeImage({{1, 1, 2, 2}, {1, 0, 2, 2}, {1, 1, -3, 2}});
  imImagePtr output = blankLike(labels);
  ifRegionsToContours(labels.get(), output.get());
  expectImage("", output.release(), imTypeAscii, 255,
              {{{0, 255, 0, 0}, {255, 0, 255, 0}, {0, 255, 0, 0}}});
}

TEST(LabelContours, Walks) {
  const Matrix hook = {{1, 2, 0, 0}, {0, 3, 0, 8}, {5, 0, 4, 0}};
  const struct {
    Matrix contour, labels;
    int count, maxValue;
  } cases[] = {
      {{{0, 0}}, {{0, 0}}, 0, 0},
      {{{1, 0, 1, 0, 1}}, {{3, 0, 6, 0, 9}}, 3, 9}, // more labels than pixels
      {{{-1, 4, -1}, {0, 0, 0}, {-1, -1, -1}}, {{5, 1, 2}, {0, 0, 0}, {0, 0, 0}}, 3, 5},
      // A ring: two branches in turn, straight before diagonal, meet at the far corner.
      {{{1, 1, 1}, {1, 0, 1}, {1, 1, 1}}, {{1, 2, 4}, {3, 0, 6}, {5, 7, 10}}, 8, 10},
      // The diagonal is taken only from a pixel without a straight way on.
      {{{1, 1, 0, 0}, {0, 1, 0, 1}, {1, 0, 1, 0}}, hook, 6, 8},
  };
  for (const auto &c : cases) {
    const imImagePtr contour = makeImage(c.contour);
    const imImagePtr labels = blankLike(contour);
    EXPECT_EQ(labelContours(contour.get(), labels.get()), c.count);
    expectImage("", imCopyImage(labels.get()), imTypeAscii, c.maxValue, {c.labels});
  }
}

// The recursive form, with the positions as differences of pixel indices.
void followRecursively(std::vector<Root> &record, int contour, imImage *mask, const imImage *shape,
                       int p, const int *displacements) {
  const int w = shape->ncols;
  record.push_back({p, static_cast<int>(record.size()) + 1, contour});
  mask->band[0][p] = 0;
  for (int k = 0; k < 8; ++k) {
    const int x = p % w + displacements[2 * k];
    const int y = p / w + displacements[2 * k + 1];
    const int q = x + y * w;
    if (x < 0 || x >= w || y < 0 || y >= shape->nrows || mask->band[0][q] < 1)
      continue;
    const auto at = [&](bool within, int pixel) { return within ? shape->band[0][pixel] : 0; };
    const int above = at(y > 0, q - w);
    const int below = at(y < shape->nrows - 1, q + w);
    const int left = at(x > 0, q - 1);
    const int right = at(x < w - 1, q + 1);
    const struct {
      int step, object, background; // on the sides of q
    } rules[] = {{-w, left, right},      {w, right, left},      {1, above, below},
                 {-1, below, above},     {-w + 1, left, below}, {w + 1, above, left},
                 {-w - 1, below, right}, {w - 1, right, above}};
    for (const auto &[step, object, background] : rules)
      if (q == p + step) {
        if (object > 0 && background == 0)
          followRecursively(record, contour, mask, shape, q, displacements);
        break;
      }
  }
}

TEST(ContourFollow, EqualsTheRecursion) {
  std::mt19937 random(8);
  for (int round = 0; round < 2000; ++round) {
    const int ncols = pick(random, 1, round % 2 == 0 ? 3 : 12);
    const int nrows = pick(random, 1, 12);
    const imImagePtr shape = randomImage(random, 1, imTypeGrey, ncols, nrows, -1, 2);
    const imImagePtr mask = randomImage(random, 1, imTypeGrey, ncols, nrows, -1, 3);
    const imImagePtr otherMask(imCopyImage(mask.get()));
    std::vector<int> list = {1, 0, 0, 1, 0, -1, -1, 0, 1, 1, -1, 1, 1, -1, -1, -1};
    if (round % 4 == 3) // any list will do, steps of no rule included
      for (int &d : list)
        d = pick(random, -2, 2);
    const ifRootsPtr made = makeRoots(std::vector<Root>(shape->npixels));
    ifRoots2 record = {made->pixel, made->label, made->value, nullptr, -1};
    made->n = 0;
    std::vector<Root> expected;
    for (int p = 0; p < shape->npixels; ++p)
      if (mask->band[0][p] > 0) {
        ifContourFollow(&record, &made->n, p, mask.get(), shape.get(), p, list.data());
        followRecursively(expected, p, otherMask.get(), shape.get(), p, list.data());
      }
    ASSERT_EQ(listOf(made.get()), expected) << "round " << round;
    EXPECT_EQ(record.n, -1);
    EXPECT_EQ(bandOf(mask), bandOf(otherMask));
  }
}

TEST(LabelDifferences, HandImages) {
  constexpr int none = -100000;
  const Matrix ring = {{1, 2, 3}, {8, 9, 4}, {7, 6, 5}};
  const struct {
    Matrix value, label;
    int maxLabel, absolute;
    Matrix difference;
    int maxValue;
  } cases[] = {
      // A ring: 1 and 8 are neighbours along it, as are 1 and 2; 9 lies in a label of its own.
      {ring, {{2, 2, 2}, {2, 1, 2}, {2, 2, 2}}, 2, 1, {{1, 1, 1}, {1, 2, 1}, {1, 1, 1}}, 2},
      // Half the range is rounded down: r = 7, so 4 counts as 3. Signed, a fall of 4 stays a fall.
      {{{1, 5, 8}}, {{1, 1, 1}}, 1, 1, {{3, 3, 3}}, 4},
      {{{8, 4, 1}}, {{1, 1, 1}}, 1, 0, {{-4, 3, 3}}, 4},
      // Labels outside 1 .. maxValue have no range, yet the higher one marks the lower.
      {{{4, 9, 1, 2}}, {{0, 0, 7, 7}}, 3, 1, {{none, -99999, none, none}}, -99999},
      // Far apart labels, and values whose differences take more than 32 bits.
      {{{4, 6, 7, 9}}, {{5, 5, maxInt, maxInt}}, maxInt, 1, {{0, 1, 0, 0}}, 1},
      {{{minInt, maxInt}}, {{1, 1}}, 1, 0, {{0, none}}, 1},
      // Positions are expected in -1 .. 100000, so that beyond it ranges are too wide.
      {{{100005, 100001}}, {{1, 1}}, 1, 1, {{1, 1}}, 2},
      {{{-5, -3}}, {{1, 1}}, 1, 1, {{2, 2}}, 3},
  };
  for (const auto &c : cases) {
    const imImagePtr value = makeImage(c.value);
    const imImagePtr label = makeImage(c.label);
    label->maxValue = c.maxLabel;
    const imImagePtr output = blankLike(label);
    ifLabelDifferences(value.get(), label.get(), output.get(), c.absolute);
    expectImage("", imCopyImage(output.get()), imTypeAscii, c.maxValue, {c.difference});
  }
}

// Where differences fit into 32 bits, a row is looked at all at once. A single position that is out of
// reach, at a pixel whose label has no range, makes no difference but to that.
TEST(LabelDifferences, SameByRowsAndByPixels) {
  std::mt19937 random(9);
  for (int round = 0; round < 600; ++round) {
    const int ncols = pick(random, 1, 70);
    const int nrows = pick(random, 1, 9);
    const imImagePtr label = randomImage(random, 1, imTypeAscii, ncols, nrows, -1, round % 3 + 1);
    label->band[0][0] = -1;
    label->maxValue = pick(random, 0, 4);
    const imImagePtr value = randomImage(random, 1, imTypeAscii, ncols, nrows, -9, 90);
    const imImagePtr rows = blankLike(label);
    ifLabelDifferences(value.get(), label.get(), rows.get(), round % 2);
    value->band[0][0] = minInt;
    const imImagePtr pixels = blankLike(label);
    ifLabelDifferences(value.get(), label.get(), pixels.get(), round % 2);
    ASSERT_EQ(bandOf(rows), bandOf(pixels)) << "round " << round;
    EXPECT_EQ(rows->maxValue, pixels->maxValue);
  }
}

} // namespace
