#include "image/imVisual.h"

#include "support.h"

#include <algorithm>

namespace {

TEST(Visual, HighlightsAMask) {
  const imImagePtr grey = makeImage({{10, 20, 300}});
  const imImagePtr mask = makeImage({{0, 1, -1}});
  const imImagePtr picture(imHighlightElements(grey.get(), mask.get(), 1, 2, 3));
  EXPECT_EQ(picture->type, imTypeColor);
  EXPECT_EQ(picture->maxValue, 0);
  EXPECT_EQ(bandOf(picture.get(), 0), (Matrix{{10, 1, 300}}));
  EXPECT_EQ(bandOf(picture.get(), 2), (Matrix{{10, 3, 300}}));
  const imImagePtr colour(imCreateImage(3, imTypeColor, 3, 1));
  std::fill_n(colour->band[1], 3, 9);
  const imImagePtr second(imHighlightElements(colour.get(), mask.get(), 1, 2, 3));
  EXPECT_EQ(bandOf(second.get(), 0), (Matrix{{0, 1, 0}}));
  EXPECT_EQ(bandOf(second.get(), 1), (Matrix{{9, 2, 9}}));
  const imImagePtr two(imCreateImage(2, imTypeWork, 3, 1));
  testing::internal::CaptureStderr();
  EXPECT_EQ(imHighlightElements(two.get(), mask.get(), 0, 0, 0), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "invalid number of bands (expected 1 or 3)\n");
}

TEST(Visual, BordersLieOnTheSmallerLabel) {
  const imImagePtr image = makeImage({{5, 5, 5, 5}, {5, 5, 5, 6}}, imTypeGrey);
  const imImagePtr labels = makeImage({{1, 1, 2, 2}, {1, 1, 1, 2}});
  const imImagePtr picture(imShowSegm(image.get(), labels.get(), 100, 0, 0));
  EXPECT_EQ(bandOf(picture.get(), 0), (Matrix{{5, 100, 5, 5}, {5, 100, 100, 6}}));
  EXPECT_EQ(bandOf(picture.get(), 1), (Matrix{{5, 0, 5, 5}, {5, 0, 0, 6}}));
}

TEST(Visual, OtherTypesAndSinglePixelsStayBlackButForBorders) {
  const imImagePtr image = makeImage({{5, 5, 5}}, imTypeWeights);
  const imImagePtr labels = makeImage({{1, 1, 2}});
  const imImagePtr picture(imShowSegm(image.get(), labels.get(), 7, 8, 9));
  EXPECT_EQ(bandOf(picture.get(), 0), (Matrix{{0, 7, 0}}));
  const imImagePtr pixel = makeImage({{5}}, imTypeGrey);
  const imImagePtr dot(imShowSegm(pixel.get(), pixel.get(), 7, 8, 9));
  EXPECT_EQ(bandOf(dot.get(), 0), (Matrix{{0}}));
  EXPECT_EXIT(imShowSegm(image.get(), pixel.get(), 0, 0, 0), testing::ExitedWithCode(1),
              "imShowSegm");
}

TEST(Visual, DiscsIncludeTheirRim) {
  Matrix radii(5, std::vector<int>(5, 0));
  radii[2][2] = 1;
  radii[0][4] = 2;
  const imImagePtr picture(imPaintCircles(makeImage(radii).get()));
  EXPECT_EQ(picture->type, imTypeGrey);
  EXPECT_EQ(bandOf(picture.get()), (Matrix{{0, 0, 0, 255, 255},
                                           {0, 0, 255, 255, 255},
                                           {0, 255, 255, 255, 0},
                                           {0, 0, 255, 0, 0},
                                           {0, 0, 0, 0, 0}}));
}

TEST(Visual, DiscsEqualTheirDefinition) {
  std::mt19937 random(4);
  for (int round = 0; round < 60; ++round) {
    const int ncols = 1 + static_cast<int>(random() % 12);
    const int nrows = 1 + static_cast<int>(random() % 12);
    const imImagePtr radii = randomImage(random, 1, imTypeAscii, ncols, nrows, -400, 9);
    if (round % 10 == 0)
      radii->band[0][0] = 2147483647;
    const imImagePtr picture(imPaintCircles(radii.get()));
    for (int p = 0; p < radii->npixels; ++p) {
      bool covered = false;
      for (int q = 0; q < radii->npixels; ++q) {
        const int dx = p % ncols - q % ncols;
        const int dy = p / ncols - q / ncols;
        covered |= radii->band[0][q] > 0 && dx * dx + dy * dy <= radii->band[0][q];
      }
      EXPECT_EQ(picture->band[0][p], covered ? 255 : 0);
    }
  }
}

} // namespace
