#include "image/imVisual.h"

#include "support.h"

namespace {

TEST(Visual, HighlightsAMask) {
  const imImagePtr mask = makeImage({{0, 1, -1}});
  const auto highlight = [&mask](const std::vector<Matrix> &bands) {
    return imHighlightElements(makeBands(bands, imTypeGrey).get(), mask.get(), 1, 2, 3);
  };
  expectImage("grey", highlight({{{10, 20, 300}}}), imTypeColor, 0,
              {{{10, 1, 300}}, {{10, 2, 300}}, {{10, 3, 300}}});
  expectImage("colour", highlight({{{7, 7, 7}}, {{8, 8, 8}}, {{9, 9, 9}}}), imTypeColor, 0,
              {{{7, 1, 7}}, {{8, 2, 8}}, {{9, 3, 9}}});
  EXPECT_EQ(errorsOf([&] {
              EXPECT_EQ(highlight({{{0, 0, 0}}, {{0, 0, 0}}}), nullptr);
            }),
            "invalid number of bands (expected 1 or 3)\n");
}

TEST(Visual, BordersLieOnTheSmallerLabel) {
  const imImagePtr image = makeImage({{5, 5, 5, 5}, {5, 5, 5, 6}}, imTypeGrey);
  const imImagePtr labels = makeImage({{1, 1, 2, 2}, {1, 1, 1, 2}});
  const auto show = [&] { return imShowSegm(image.get(), labels.get(), 100, 8, 0); };
  const Matrix black = Matrix(2, {0, 0, 0, 0});
  expectImage("grey", show(), imTypeColor, 0,
              {{{5, 100, 5, 5}, {5, 100, 100, 6}},
               {{5, 8, 5, 5}, {5, 8, 8, 6}},
               {{5, 0, 5, 5}, {5, 0, 0, 6}}});
  image->type = imTypeWeights; // of other types only the borders are painted
  expectImage("other", show(), imTypeColor, 0,
              {{{0, 100, 0, 0}, {0, 100, 100, 0}}, {{0, 8, 0, 0}, {0, 8, 8, 0}}, black});
  const imImagePtr pixel = makeImage({{5}}, imTypeGrey);
  expectImage("a pixel is black", imShowSegm(pixel.get(), pixel.get(), 7, 8, 9), imTypeColor, 0,
              {{{0}}, {{0}}, {{0}}});
}

TEST(Visual, DiscsEqualTheirDefinition) {
  std::mt19937 random(4);
  for (int round = 0; round < 60; ++round) {
    const int w = pick(random, 1, 12);
    const imImagePtr radii = randomImage(random, 1, imTypeAscii, w, pick(random, 1, 12), -400, 9);
    if (round % 10 == 0)
      radii->band[0][0] = maxInt;
    const imImagePtr picture(imPaintCircles(radii.get()));
    EXPECT_EQ(picture->type, imTypeGrey);
    for (int p = 0; p < radii->npixels; ++p) {
      bool covered = false;
      for (int q = 0; q < radii->npixels; ++q) {
        const int dx = p % w - q % w;
        const int dy = p / w - q / w;
        covered |= radii->band[0][q] > 0 && dx * dx + dy * dy <= radii->band[0][q];
      }
      EXPECT_EQ(picture->band[0][p], covered ? 255 : 0);
    }
  }
}

} // namespace
