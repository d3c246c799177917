// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/ifExtrema.h"

#include "image/detail/neighborWalk.h"
#include "support.h"

#include <algorithm>

namespace {

TEST(Extrema, OfSmallImages) {
  const struct {
    char type;
    Matrix image, minima, maxima;
  } cases[] = {
      {1, {{0, 0}}, {{1, 1}}, {{0, 0}}}, // no maximum at the end of the scale
      {2, {{5, 5, 4}, {5, 5, 5}}, {{0, 0, 1}, {0, 0, 0}}, {{1, 1, 0}, {1, 1, 1}}},
      {1, {{300, 5, 258, 258, 300}}, {{0, 1, 0, -3, -45}}, {{45, 0, 3, 3, 45}}}, // clipped
      {2, {{-3, 5, -1, 5}}, {{3, 0, 1, 0}}, {{0, 1, 0, 1}}},
      {2, {{600, 500, 115, 400, -1}}, {{0, 0, 1, 0, 1}}, {{1, 0, 0, 1, 0}}},
  };
  for (const auto &c : cases) {
    const imImagePtr image = makeImage(c.image, c.type);
    image->maxValue = std::min(image->maxValue, 255);
    expectImage("", ifRegionalMinima(image.get()), imTypeAscii, 1, {c.minima});
    expectImage("", ifRegionalMaxima(image.get()), imTypeAscii, 1, {c.maxima});
  }
}

TEST(Extrema, AsRootsInRasterOrder) {
  const imImagePtr image = makeImage({{5, 1, 8, 8}, {1, 1, 1, 1}, {5, 1, 3, 2}});
  ifRootsPtr roots;
  EXPECT_EQ(printedBy([&] { roots.reset(ifRegionalMaximaAsRoots(image.get())); }),
            "in ifLabelImage\nin ifLabelImage\n");
  EXPECT_EQ(listOf(roots.get()),
            (std::vector<Root>{{0, 1, 5}, {2, 2, 8}, {3, 2, 8}, {8, 3, 5}, {10, 4, 3}}));
}

// The definition: plateaus without a neighbour that beats them, and not at the end of the scale.
Matrix byPlateaus(const imImagePtr &image, bool wantMinima) {
  const seedforest::detail::NeighborWalk neighbors(image.get(), imNeighborhood8);
  const int *value = image->band[0];
  const int end = !wantMinima ? 0 : image->type == imTypeGrey ? 255 : maxInt;
  const imImagePtr marks = blankLike(image);
  for (int start = 0; start < image->npixels; ++start) {
    std::vector<int> plateau = {start};
    bool isBeaten = value[start] == end;
    for (std::size_t i = 0; i < plateau.size(); ++i)
      neighbors.each(plateau[i], [&](int q, int) {
        isBeaten |= wantMinima ? value[q] < value[start] : value[q] > value[start];
        if (value[q] == value[start] && std::count(plateau.begin(), plateau.end(), q) == 0)
          plateau.push_back(q);
      });
    marks->band[0][start] = isBeaten ? 0 : 1;
  }
  return bandOf(marks);
}

TEST(Extrema, EqualTheirDefinition) {
  std::mt19937 random(21);
  testing::internal::CaptureStdout();
  for (int round = 0; round < 400; ++round) {
    const char type = round % 4 < 2 ? imTypeGrey : imTypeAscii;
    const int hi = round % 3 == 0 ? 255 : 4; // the ends of the scale
    const int ncols = round % 8 == 0 ? pick(random, 60, 140) : pick(random, 1, 12);
    const int nrows = pick(random, 1, round % 8 == 0 ? 4 : 12);
    const imImagePtr image =
        randomImage(random, 1 + round % 2, type, ncols, nrows, hi - pick(random, 0, 4), hi);
    EXPECT_EQ(bandOf(imImagePtr(ifRegionalMinima(image.get()))), byPlateaus(image, true)) << round;
    EXPECT_EQ(bandOf(imImagePtr(ifRegionalMaxima(image.get()))), byPlateaus(image, false)) << round;
  }
  testing::internal::GetCapturedStdout();
}

} // namespace
