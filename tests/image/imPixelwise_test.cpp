// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imPixelwise.h"

#include "support.h"

namespace {

// Two bands, maxValue 50.
imImagePtr twoBands(char type, const std::vector<int> &first, const std::vector<int> &second) {
  imImagePtr image = makeBands({{first}, {second}}, type);
  image->maxValue = 50;
  return image;
}

TEST(Pixelwise, OneBandFromBandZero) {
  const imImagePtr owned = twoBands(imTypeGrey, {minInt, 0, 3, 7, 300, maxInt}, {1, 2, 3, 4, 5, 6});
  imImage *a = owned.get();
  expectImage("inclusive", imThreshold(a, 2, 3, 300), 2, 255, {{{0, 0, 255, 255, 255, 0}}});
  expectImage("pass", imBandPass(a, 11, minInt, 7), 11, 0, {{{minInt, 0, 3, 7, 0, 0}}});
  expectImage("mask", imNegative2(a, 1), 1, 255, {{{255, 255, 0, 0, 0, 0}}});
  expectImage("grey", imNegative(a, 2), 2, 255, {{{maxInt, 255, 252, 248, -45, 255 - maxInt}}});
  EXPECT_EQ(a->maxValue, 50);
}

TEST(Pixelwise, NegativeRaisesTheMaximumOfOtherTypes) {
  const imImagePtr image = makeImage({{0, 7, -2}});
  image->maxValue = 0;
  expectImage("raised", imNegative(image.get(), 1), 1, 0, {{{7, 0, 9}}});
  EXPECT_EQ(image->maxValue, 7);
  image->maxValue = 10;
  expectImage("kept", imNegative(image.get(), 2), 2, 0, {{{10, 3, 12}}});
  const imImagePtr below = makeImage({{-3, -5, minInt}});
  below->maxValue = -9;
  expectImage("below 0", imNegative(below.get(), 2), 2, 0, {{{0, 2, maxInt - 2}}});
}

TEST(Pixelwise, BandByBand) {
  const imImagePtr a = twoBands(6, {5, -1, -2, maxInt}, {1, 2, 3, minInt});
  const imImagePtr b = twoBands(2, {0, 4, -1, -1}, {9, 2, -8, 1});
  expectImage("mask", imMask(a.get(), b.get(), -7), 6, 0, {{{-7, -1, -7, -7}}, {{-7, 2, -7, -7}}});
  expectImage("upper", imUpperEnvelope(a.get(), b.get()), 6, 0,
              {{{5, 4, -1, maxInt}}, {{9, 2, 3, 1}}});
  expectImage("lower", imLowerEnvelope(a.get(), b.get()), 6, 0,
              {{{0, -1, -2, -1}}, {{1, 2, -8, minInt}}});
  expectImage("minus", imSubtractImage(a.get(), b.get()), 6, maxInt,
              {{{5, 0, 0, maxInt}}, {{0, 0, 11, 0}}});
  const imImagePtr one = makeImage({{1}}), two = makeImage({{2}});
  expectImage("below 0", imSubtractImage(one.get(), two.get()), 2, 0, {{{0}}});
  expectImage("difference", imBinaryDifference(a.get(), b.get(), 1), 1, 255,
              {{{255, 0, 0, 0}}, {{0, 0, 0, 0}}}); // a negative b is not 0
  expectImage("union", imBinaryUnion(a.get(), b.get(), 2), 2, 255,
              {{{255, 255, 0, 255}}, {{0, 0, 0, 0}}});
  EXPECT_EQ(imCombineImageWithGrad(a.get(), b.get()), 4);
  expectImage("in place", imCopyImage(a.get()), 6, 50, {{{5, 4, -1, maxInt}}, {{1, 4, 3, -1}}});
}

TEST(Pixelwise, SumsClipByType) {
  const imImagePtr image = twoBands(imTypeGrey, {250, 3, minInt}, {0, 300, maxInt});
  const auto sum = [&image](int k) { return imAddToPixelValues(image.get(), k); };
  expectImage("grey", sum(210), 1, 260, {{{255, 213, 0}}, {{210, 255, 255}}});
  image->type = imTypeAscii;
  expectImage("other", sum(10), 2, 60, {{{260, 13, 0}}, {{10, 310, maxInt}}});
  expectImage("minus", sum(-51), 2, 0, {{{199, 0, 0}}, {{0, 249, maxInt - 51}}});
}

TEST(Pixelwise, BordersGoAndComeBack) {
  const imImagePtr image = twoBands(imTypeGrey, {1, 2}, {-3, 4});
  imImagePtr framed(imAddBorder(image.get(), 1));
  expectImage("and back", imRemoveBorder(framed.get(), 1), 1, 0, {{{1, 2}}, {{-3, 4}}});
  const std::vector<int> border(4, 0);
  expectImage("framed", framed.release(), 1, 0,
              {{border, {0, 1, 2, 0}, border}, {border, {0, -3, 4, 0}, border}});
  EXPECT_EQ(errorsOf([&] { EXPECT_EQ(imAddBorder(image.get(), maxInt), nullptr); }),
            "Could not allocate image!\n");
  EXPECT_FATAL(imRemoveBorder(blank(2, 2).get(), 1), "imRemoveBorder");
}

TEST(Pixelwise, FalseExtremaLookNoFurtherThanTheirNeighbours) {
  const imImagePtr image = makeImage({{4, 4, 4, 4, 3}, {4, 4, 4, 4, 4}, {9, 4, 4, 4, 4}}, 1);
  expectImage("minima", imFalseRegionalMinimum(image.get()), 2, 1,
              {{{1, 1, 1, 0, 1}, {1, 1, 1, 0, 0}, {0, 1, 1, 1, 1}}});
  expectImage("maxima", imFalseRegionalMaximum(image.get()), 2, 1,
              {{{1, 1, 1, 1, 0}, {0, 0, 1, 1, 1}, {1, 0, 1, 1, 1}}});
  expectImage("column", imFalseRegionalMaximum(makeImage({{8}, {8}}).get()), 2, 1, {{{1}, {1}}});
}

} // namespace
