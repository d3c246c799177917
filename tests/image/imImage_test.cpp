// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/image.h"

#include "support.h"

namespace {

TEST(Image, ImpossibleSizesAreRefused) {
  const int sizes[][3] = {{1, 0, 5}, {1, 5, 0}, {1, 65536, 32768}, {-1, 2, 2}};
  for (const auto &[nbands, ncols, nrows] : sizes)
    EXPECT_EQ(errorsOf([&, n = nbands, w = ncols, h = nrows] {
                EXPECT_EQ(imCreateImage(n, imTypeGrey, w, h), nullptr);
              }),
              "Could not allocate image!\n");
  const seedforest::ThrowingErrors throwing;
  try {
    EXPECT_EQ(imCreateImage(1, imTypeGrey, 0, 5), nullptr);
  } catch (const seedforest::Error &error) {
    EXPECT_EQ(dynamic_cast<const seedforest::OutOfMemory *>(&error), nullptr); // there is enough
  }
}

TEST(Image, Copies) {
  imImage *none = imCopyImage(nullptr);
  EXPECT_EQ(none, nullptr);
  imReleaseImage(&none);
  imReleaseImage(nullptr);
  const std::vector<Matrix> bands = {{{-9, -8}, {-7, -6}}, {{5, 6}, {7, 8}}};
  const imImagePtr image = makeBands(bands, imTypeXyz);
  image->maxValue = 77;
  expectImage("whole", imCopyImage(image.get()), imTypeXyz, 77, bands);
  expectImage("at least 0", imCopyBand(image.get(), imTypeAscii, 0), imTypeAscii, 0, {bands[0]});
  expectImage("its largest", imCopyBand(image.get(), imTypeGrey, 1), imTypeGrey, 8, {bands[1]});
  const imImagePtr colour = blank(2, 2, 3);
  imPgm2rgb(image.get(), colour.get());
  for (int b = 0; b < 3; ++b)
    EXPECT_EQ(bandOf(colour, b), bands[0]);
}

TEST(Image, HistogramUnderAMask) {
  const imImagePtr image = makeImage({{3, 0, 3, 1}, {1, 9, -4, 3}});
  const imImagePtr mask = makeImage({{1, 2, 5, -1}, {1, 0, -1, 0}});
  float *list = nullptr;
  int size = 0;
  imHistogram(image.get(), mask.get(), &list, &size);
  EXPECT_EQ(std::vector<float>(list, list + size), (std::vector<float>{1, 1, 0, 2}));
  std::free(list);
}

TEST(Image, PrintsAWindow) {
  const imImagePtr image = makeImage({{1, 2, 3}, {4, 5, 6}});
  EXPECT_EQ(printedBy([&] {
              imPrintWindow(stdout, image.get(), 2, 1);
              imPrintWindow(stdout, image.get(), 0, 1);
              imPrintWindow(stdout, image.get(), 0, -1);
            }),
            "\n     2      3 \n     5      6 \n\n     1      2 \n     4      5 \n");
}

} // namespace
