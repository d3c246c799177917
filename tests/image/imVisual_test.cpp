// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

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
  const std::vector<Matrix> two(2, {{0, 0, 0}});
  EXPECT_EQ(errorsOf([&] { EXPECT_EQ(highlight(two), nullptr); }),
            "invalid number of bands (expected 1 or 3)\n");
}

TEST(Visual, BordersLieOnTheSmallerLabel) {
  const imImagePtr image = makeImage({{5, 5, 5, 5}, {5, 5, 5, 6}}, imTypeGrey);
  const imImagePtr labels = makeImage({{1, 1, 2, 2}, {1, 1, 1, 2}});
  const auto show = [&] { return imShowSegm(image.get(), labels.get(), 100, 8, 0); };
  expectImage("grey", show(), imTypeColor, 0,
              {{{5, 100, 5, 5}, {5, 100, 100, 6}},
               {{5, 8, 5, 5}, {5, 8, 8, 6}},
               {{5, 0, 5, 5}, {5, 0, 0, 6}}});
  image->type = imTypeWeights; // of other types only the borders are painted
  const Matrix black(2, {0, 0, 0, 0});
  expectImage("other", show(), imTypeColor, 0,
              {{{0, 100, 0, 0}, {0, 100, 100, 0}}, {{0, 8, 0, 0}, {0, 8, 8, 0}}, black});
  const imImagePtr pixel = makeImage({{5}}, imTypeGrey); // stays black
  expectImage("pixel", imShowSegm(pixel.get(), pixel.get(), 7, 8, 9), imTypeColor, 0,
              std::vector(3, Matrix{{0}}));
}

TEST(Visual, DiscsOfSquaredRadii) {
  const int w = 255;
  const imImagePtr radii = makeImage({{maxInt, 0, 0, 0}, {0, -9, 0, 0}}); // over all
  expectImage("large", imPaintCircles(radii.get()), imTypeGrey, 0, {Matrix(2, {w, w, w, w})});
  const imImagePtr small =
      makeImage({{0, 0, 0, 0, 0, 0}, {0, 0, 4, 0, 0, 0}, {0, 0, 1, 0, 0, 0}, {0, 0, 0, 0, 0, 2}});
  expectImage("small", imPaintCircles(small.get()), imTypeGrey, 0,
              {{{0, w, w, w, 0, 0}, {w, w, w, w, w, 0}, {0, w, w, w, w, w}, {0, 0, w, 0, w, w}}});
}

} // namespace
