#include "ift/seeds/ifFrameSeeds.h"

#include "support.h"

namespace {

std::vector<int> framePixels(int ncols, int nrows) {
  const imImagePtr image(imCreateImage(0, imTypeGrey, ncols, nrows)); // no band is read
  const ifRootsPtr roots(ifFrameAsRoots(image.get(), 0, 9));
  for (int k = 0; k < roots->n; ++k) {
    EXPECT_EQ(roots->label[k], k + 1);
    EXPECT_EQ(roots->value[k], 0);
  }
  return {roots->pixel, roots->pixel + roots->n};
}

TEST(FrameSeeds, Order) {
  EXPECT_EQ(framePixels(4, 3), (std::vector<int>{0, 1, 2, 3, 8, 9, 10, 11, 4, 7}));
  EXPECT_EQ(framePixels(2, 2), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(framePixels(1, 4), (std::vector<int>{0, 3, 1, 2, 1, 2})); // a column is both sides
  EXPECT_EXIT(framePixels(5, 1), testing::ExitedWithCode(1), "ifFrameAsRoots");
}

TEST(FrameSeeds, OneLabelForAll) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, 4, 3));
  const ifRootsPtr roots(ifFrameAsRoots(image.get(), -1, 7));
  EXPECT_EQ(std::vector<int>(roots->label, roots->label + roots->n), std::vector<int>(10, 7));
}

TEST(LabelSeeds, PositivePixelsInRasterOrder) {
  const ifRootsPtr roots(ifLabelsToRoots(makeImage({{0, 4, -3}, {2, 0, 4}}).get()));
  EXPECT_EQ(listOf(roots.get()), (std::vector<Root>{{1, 4}, {3, 2}, {5, 4}}));
  EXPECT_EQ(ifRootsPtr(ifLabelsToRoots(makeImage({{0, -3}}).get()))->n, 0);
}

} // namespace
