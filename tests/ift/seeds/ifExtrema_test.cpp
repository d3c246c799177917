#include "ift/seeds/ifExtrema.h"

#include "ift/core/iftForest.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/detail/imageTools.h"
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
    Matrix image, minima, maxima;
  } cases[] = {
      // clang-format off
      {"constant", 1, {{7, 7}, {7, 7}}, {{1, 1}, {1, 1}}, {{1, 1}, {1, 1}}},
      {"no maximum at 0", 1, {{0, 0}}, {{1, 1}}, {{0, 0}}},
      {"no minimum at 255 in type grey", 1, {{255}}, {{0}}, {{1}}},
      {"but in type ASCII", 2, {{255}}, {{1}}, {{1}}},
      {"0 and 255", 1, {{0, 255, 0, 0, 255}}, {{1, 0, 1, 1, 0}}, {{0, 1, 0, 0, 1}}},
      {"plateaus go whole", 2, {{5, 5, 5, 4}, {5, 5, 5, 5}}, {{0, 0, 0, 1}, {0, 0, 0, 0}}, {{1, 1, 1, 0}, {1, 1, 1, 1}}},
      {"corners join", 2, {{9, 1}, {1, 9}}, {{0, 1}, {1, 0}}, {{1, 0}, {0, 1}}},
      {"values above the maximum", 2, {{300, 2000000000, 1}}, {{1, 0, 1}}, {{0, 1, 0}}},
      {"a column", 2, {{1}, {3}, {3}, {2}}, {{1}, {0}, {0}, {1}}, {{0}, {1}, {1}, {0}}},
      // clang-format on
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
  ifRootsPtr roots;
  EXPECT_EQ(printedBy([&] { roots.reset(ifRegionalMaximaAsRoots(image.get())); }),
            "in ifLabelImage\nin ifLabelImage\n");
  EXPECT_EQ(listOf(roots.get()),
            (std::vector<Root>{{0, 1, 5}, {2, 2, 8}, {3, 2, 8}, {8, 3, 5}, {10, 4, 3}}));
}

// The definition: what the reconstruction of the image from its shifted copy leaves over.
Matrix byReconstruction(const imImagePtr &image, bool wantMinima) {
  const imImagePtr shifted(imAddToPixelValues(image.get(), wantMinima ? 1 : -1));
  const imImage *bounded = wantMinima ? shifted.get() : image.get();
  const imImagePtr marks(wantMinima ? imFalseRegionalMinimum(bounded)
                                    : imFalseRegionalMaximum(bounded));
  const imImagePtr labels = blankLike(image);
  ifLabelImage(marks.get(), labels.get());
  const ifRootsPtr seeds(ifLabelsToRoots(labels.get()));
  for (int i = 0; i < seeds->n; ++i)
    seeds->value[i] = shifted->band[0][seeds->pixel[i]];
  const imImagePtr forest = blankLike(image, 3);
  const int bound = std::max(bounded->maxValue, largestValue(bounded, 0));
  (wantMinima ? iftNonNormalized : iftNonNormalizedInverted)(
      image.get(), forest.get(), imNeighborhood8, ifWatershedMetric, bound,
      wantMinima ? ifPathCostMax : ifPathCostMin, seeds.get());
  for (int p = 0; p < image->npixels; ++p)
    labels->band[0][p] = (forest->band[1][p] - image->band[0][p]) * (wantMinima ? 1 : -1);
  return bandOf(labels);
}

TEST(Extrema, EqualTheReconstruction) {
  std::mt19937 random(21);
  testing::internal::CaptureStdout();
  for (int round = 0; round < 1200; ++round) {
    const int levels[] = {1, 2, 4, 30};
    const int lo = std::vector<int>{250, 0, -3}[round % 3]; // the ends of the scale, and beyond
    const imImagePtr image =
        randomImage(random, 1 + round % 2, round % 4 < 2 ? imTypeGrey : imTypeAscii,
                    pick(random, 1, 12), pick(random, 1, 12), lo, lo + levels[random() % 4]);
    if (round % 5 != 0) // what leaves the scale takes another way, so most images stay inside
      for (int p = 0; p < image->npixels; ++p)
        image->band[0][p] = std::clamp(image->band[0][p], 0, 255);
    image->maxValue = std::max(image->maxValue, 0);
    const Matrix expectedMinima = byReconstruction(image, true);
    const Matrix expectedMaxima = byReconstruction(image, false);
    EXPECT_EQ(minima(image), expectedMinima) << round;
    EXPECT_EQ(maxima(image), expectedMaxima) << round;
  }
  testing::internal::GetCapturedStdout();
}

} // namespace
