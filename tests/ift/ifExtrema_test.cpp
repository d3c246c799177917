#include "ift/seeds/ifExtrema.h"

#include "ift/core/iftForest.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/imNeighborhood.h"
#include "image/imPixelwise.h"
#include "support.h"

#include <algorithm>

using namespace seedforest::detail;

namespace {

Matrix minima(const imImagePtr &image) {
  return bandOf(imImagePtr(ifRegionalMinima(image.get())).get());
}

Matrix maxima(const imImagePtr &image) {
  return bandOf(imImagePtr(ifRegionalMaxima(image.get())).get());
}

TEST(Extrema, OfSmallImages) {
  const struct {
    const char *what;
    char type;
    Matrix image;
    Matrix minima;
    Matrix maxima;
  } cases[] = {
      {"constant", imTypeGrey, {{7, 7}, {7, 7}}, {{1, 1}, {1, 1}}, {{1, 1}, {1, 1}}},
      {"no maximum at 0", imTypeGrey, {{0, 0}}, {{1, 1}}, {{0, 0}}},
      {"no minimum at 255 in type grey", imTypeGrey, {{255}}, {{0}}, {{1}}},
      {"but in type ASCII", imTypeAscii, {{255}}, {{1}}, {{1}}},
      {"0 and 255", imTypeGrey, {{0, 255, 0, 0, 255}}, {{1, 0, 1, 1, 0}}, {{0, 1, 0, 0, 1}}},
      {"a plateau of false extrema goes whole",
       imTypeAscii,
       {{5, 5, 5, 5, 4}, {5, 5, 5, 5, 5}},
       {{0, 0, 0, 0, 1}, {0, 0, 0, 0, 0}},
       {{1, 1, 1, 1, 0}, {1, 1, 1, 1, 1}}},
      {"corners join", imTypeAscii, {{9, 1}, {1, 9}}, {{0, 1}, {1, 0}}, {{1, 0}, {0, 1}}},
      {"values above the maximum", imTypeAscii, {{300, 2000000000, 1}}, {{1, 0, 1}}, {{0, 1, 0}}},
      {"a column", imTypeAscii, {{1}, {3}, {3}, {2}}, {{1}, {0}, {0}, {1}}, {{0}, {1}, {1}, {0}}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const imImagePtr image = makeImage(c.image, c.type);
    image->maxValue = std::min(image->maxValue, 255);
    EXPECT_EQ(minima(image), c.minima);
    EXPECT_EQ(maxima(image), c.maxima);
    const imImagePtr marks(ifRegionalMaxima(image.get()));
    EXPECT_EQ(marks->type, imTypeAscii);
    EXPECT_EQ(marks->maxValue, 1);
  }
}

TEST(Extrema, AsRootsInRasterOrder) {
  const imImagePtr image = makeImage({{5, 1, 8, 8}, {1, 1, 1, 1}, {5, 1, 3, 2}});
  testing::internal::CaptureStdout();
  const ifRootsPtr roots(ifRegionalMaximaAsRoots(image.get()));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "in ifLabelImage\nin ifLabelImage\n");
  EXPECT_EQ(listOf(roots.get()),
            (std::vector<Root>{{0, 1, 5}, {2, 2, 8}, {3, 2, 8}, {8, 3, 5}, {10, 4, 3}}));
}

// The definition: what the reconstruction of the image from its shifted copy leaves over.
Matrix byReconstruction(imImage *image, bool wantMinima) {
  const imImagePtr shifted(imAddToPixelValues(image, wantMinima ? 1 : -1));
  const imImagePtr marks(wantMinima ? imFalseRegionalMinimum(shifted.get())
                                    : imFalseRegionalMaximum(image));
  const imImagePtr labels(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  ifLabelImage(marks.get(), labels.get());
  const ifRootsPtr seeds(ifLabelsToRoots(labels.get()));
  for (int i = 0; i < seeds->n; ++i)
    seeds->value[i] = shifted->band[0][seeds->pixel[i]];
  const imImagePtr forest(imCreateImage(image->nbands + 3, imTypeWork, image->ncols, image->nrows));
  const imImage *bounded = wantMinima ? shifted.get() : image;
  const int bound = std::max(bounded->maxValue, largestValue(bounded, 0));
  if (wantMinima)
    iftNonNormalized(image, forest.get(), imNeighborhood8, ifWatershedMetric, bound, ifPathCostMax,
                     seeds.get());
  else
    iftNonNormalizedInverted(image, forest.get(), imNeighborhood8, ifWatershedMetric, bound,
                             ifPathCostMin, seeds.get());
  Matrix result = bandOf(image);
  for (int p = 0; p < image->npixels; ++p) {
    int &pixel = result[p / image->ncols][p % image->ncols];
    pixel = wantMinima ? forest->band[image->nbands + 1][p] - pixel
                       : pixel - forest->band[image->nbands + 1][p];
  }
  return result;
}

TEST(Extrema, EqualTheReconstruction) {
  std::mt19937 random(21);
  for (int round = 0; round < 1200; ++round) {
    const int levels[] = {1, 2, 4, 30};
    const int lo = round % 3 == 0   ? 250
                   : round % 3 == 1 ? 0
                                    : -3; // the ends of the scale, and beyond
    const imImagePtr image =
        randomImage(random, 1 + round % 2, round % 4 < 2 ? imTypeGrey : imTypeAscii,
                    1 + int(random() % 12), 1 + int(random() % 12), lo, lo + levels[random() % 4]);
    if (round % 5 != 0) // what leaves the scale takes another way, so most images stay inside
      for (int p = 0; p < image->npixels; ++p)
        image->band[0][p] = std::clamp(image->band[0][p], 0, 255);
    image->maxValue = std::max(image->maxValue, 0);
    testing::internal::CaptureStdout();
    const Matrix expectedMinima = byReconstruction(image.get(), true);
    const Matrix expectedMaxima = byReconstruction(image.get(), false);
    const Matrix foundMinima = minima(image);
    const Matrix foundMaxima = maxima(image);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(foundMinima, expectedMinima) << round;
    EXPECT_EQ(foundMaxima, expectedMaxima) << round;
  }
}

} // namespace
