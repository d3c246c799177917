// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/ifLabel.h"

#include "reference/plainLabel.h"

#include <algorithm>

namespace {

// Leaves the objects where a checkerboard, a comb, stripes or squares that meet at corners have them.
void cutOut(int pattern, const imImagePtr &binary) {
  for (int p = 0; p < binary->npixels; ++p) {
    const int x = p % binary->ncols;
    const int y = p / binary->ncols;
    const bool isIn[] = {(x + y) % 2 == 0, y == 0 || x % 2 == 0, y % 2 == 1,
                         (x / 2 + y / 2) % 2 == 0};
    if (pattern < 4 && !isIn[pattern])
      binary->band[0][p] = 0;
  }
}

TEST(LabelImage, EqualsTheFlood) {
  std::mt19937 random(4);
  for (int round = 0; round < 600; ++round) {
    const int ncols = pick(random, 1, 140); // up to three words
    const int nrows = pick(random, 1, 40);
    // From nothing but object to mostly background; fresh images and, in two rounds of three, images
    // in which few or most pixels carry a label.
    const int lowest = pick(random, -5, 1);
    const imImagePtr binary = randomImage(random, 1, imTypeGrey, ncols, nrows, lowest, 2);
    cutOut(pick(random, 0, 8), binary);
    const imImagePtr before =
        randomImage(random, 1, imTypeAscii, ncols, nrows, 0, round % 3 * (round % 5 + 1));
    if (round % 6 == 5)
      std::replace(before->band[0], before->band[0] + before->npixels / 2, 0, 3);
    const imImagePtr expected = flooded(binary, before);
    EXPECT_EQ(printedBy([&] { ifLabelImage(binary.get(), before.get()); }), "in ifLabelImage\n");
    ASSERT_EQ(bandOf(before), bandOf(expected)) << round;
    ASSERT_EQ(before->maxValue, expected->maxValue) << round;
  }
}

TEST(ConnectedComponents, FlatZonesOfTheRoots) {
  const imImagePtr grey = makeImage({{5, 5, -2, 5}, {7, -2, 5, 5}, {-2, 7, 7, 5}});
  const auto zones = [&](int a, int b, int c) {
    const imImagePtr output = makeImage({{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 9}});
    ifConnectedComponents(grey.get(), output.get(), makeRoots({{a, 0}, {b, 0}, {c, 0}}).get());
    EXPECT_EQ(output->maxValue, 9);
    return bandOf(output);
  };
  EXPECT_EQ(zones(1, 2, 1), (Matrix{{255, 255, 255, 255}, {0, 255, 255, 255}, {255, 0, 0, 255}}));
  EXPECT_EQ(zones(9, 10, 4), (Matrix{{0, 0, 0, 0}, {255, 0, 0, 0}, {0, 255, 255, 9}}));
}

TEST(CorrectLabels, OrderOfFirstAppearance) {
  const imImagePtr labels = makeImage({{maxInt, 0}, {minInt, maxInt}, {-1, minInt}});
  labels->maxValue = -1; // not relied on
  ifCorrectLabels(labels.get());
  expectImage("", imCopyImage(labels.get()), imTypeAscii, 4, {{{1, 2}, {3, 1}, {4, 3}}});
}

} // namespace
