#include "image/imImage.h"

#include "support.h"

#include <cstdlib>
#include <numeric>

namespace {

TEST(Image, CreationFillsTheRecord) {
  const imImagePtr image(imCreateImage(2, imTypeWork, 3, 2));
  EXPECT_EQ(image->nbands, 2);
  EXPECT_EQ(image->npixels, 6);
  EXPECT_EQ(image->maxValue, 0);
  EXPECT_EQ(image->type, imTypeWork);
  EXPECT_EQ(image->nAdj, 0);
  EXPECT_EQ(image->adj, nullptr);
  EXPECT_EQ(std::vector<int>(image->row, image->row + 2), (std::vector<int>{0, 3}));
  for (int b = 0; b < 2; ++b)
    EXPECT_EQ(bandOf(image.get(), b), (Matrix{{0, 0, 0}, {0, 0, 0}}));
}

TEST(Image, ImpossibleSizesAreRefused) {
  const int sizes[][3] = {{1, 0, 5}, {1, 5, 0}, {1, -2, -2}, {1, 65536, 32768}, {-1, 2, 2}};
  for (const auto &[nbands, ncols, nrows] : sizes) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(imCreateImage(nbands, imTypeGrey, ncols, nrows), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not allocate image!\n");
  }
}

TEST(Image, Copies) {
  EXPECT_EQ(imCopyImage(nullptr), nullptr);
  const imImagePtr image(imCreateImage(2, imTypeXyz, 2, 2));
  std::iota(image->band[0], image->band[0] + 4, -9);
  std::iota(image->band[1], image->band[1] + 4, 5);
  image->maxValue = 77;
  const imImagePtr copy(imCopyImage(image.get()));
  EXPECT_EQ(copy->type, imTypeXyz);
  EXPECT_EQ(copy->maxValue, 77);
  EXPECT_EQ(bandOf(copy.get(), 0), (Matrix{{-9, -8}, {-7, -6}}));
  EXPECT_EQ(bandOf(copy.get(), 1), (Matrix{{5, 6}, {7, 8}}));
  const imImagePtr negative(imCopyBand(image.get(), imTypeAscii, 0));
  EXPECT_EQ(negative->maxValue, 0); // never below 0
  const imImagePtr second(imCopyBand(image.get(), imTypeGrey, 1));
  EXPECT_EQ(second->maxValue, 8);
  EXPECT_EQ(second->type, imTypeGrey);
  EXPECT_EXIT(imCopyBand(image.get(), imTypeGrey, 2), testing::ExitedWithCode(1), "imCopyBand");
}

TEST(Image, HistogramUnderAMask) {
  const imImagePtr image = makeImage({{3, 0, 3}, {1, 9, -4}});
  const imImagePtr mask = makeImage({{1, 2, 5}, {1, 0, -1}});
  float *histogram = nullptr;
  int size = 0;
  imHistogram(image.get(), mask.get(), &histogram, &size);
  EXPECT_EQ(std::vector<float>(histogram, histogram + size), (std::vector<float>{1, 1, 0, 2}));
  std::free(histogram);
  mask->band[0][5] = 1;
  EXPECT_EXIT(imHistogram(image.get(), mask.get(), &histogram, &size), testing::ExitedWithCode(1),
              "imHistogram.*-4");
}

TEST(Image, PrintsAWindow) {
  const imImagePtr image = makeImage({{1, 2, 3}, {4, 5, 6}});
  const TemporaryFolder folder;
  std::FILE *file = std::fopen(folder.path("w").c_str(), "w");
  imPrintWindow(file, image.get(), 2, 1);
  imPrintWindow(file, image.get(), 0, -1);
  std::fclose(file);
  EXPECT_EQ(contentsOf(folder.path("w")), "\n     2      3 \n     5      6 \n");
}

TEST(Image, GreyToColour) {
  const imImagePtr grey = makeImage({{1, 300}});
  const imImagePtr colour(imCreateImage(3, imTypeColor, 2, 1));
  imPgm2rgb(grey.get(), colour.get());
  for (int b = 0; b < 3; ++b)
    EXPECT_EQ(bandOf(colour.get(), b), bandOf(grey.get()));
  EXPECT_EXIT(imPgm2rgb(grey.get(), grey.get()), testing::ExitedWithCode(1), "imPgm2rgb");
}

} // namespace
