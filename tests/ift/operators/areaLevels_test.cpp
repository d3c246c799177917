#include "base/error.h"
#include "ift/operators/ifConnected.h"
#include "support.h"

namespace {

// 16384 maxima of one pixel each, and an area that needs thousands of pixels: a flood for each
// would settle millions of pixels, where one pass and one reconstruction settle each pixel once.
TEST(AreaLevels, TakeNoFloodForEachMaximum) {
  constexpr int side = 256;
  const imImagePtr image = blank(side, side);
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = p % 2 == 0 && p / side % 2 == 0 ? 200 : 100 + p % 7;
  image->maxValue = 200;
  int steps = 0; // of 2^16 pixels
  imImage *opened = nullptr;
  imImage *labels = nullptr;
  {
    const seedforest::ThrowingErrors watched(nullptr, [&](std::int64_t, std::int64_t) {
      ++steps;
      return true;
    });
    ifAreaOpen(image.get(), &opened, &labels, 4000);
  }
  const imImagePtr owned(opened);
  const imImagePtr ownedLabels(labels);
  EXPECT_EQ(ownedLabels->maxValue, side * side / 4);
  EXPECT_GE(steps, 1);
  EXPECT_LE(steps, 4);
}

} // namespace
