#include "ift/seeds/ifContourSeeds.h"

#include "support.h"

namespace {

using Roots = std::vector<Root>; // pixel and label; values are 0

Roots rootsOf(const Matrix &shape, int contour) {
  ifRoots roots;
  ifDistTransfRoots(makeImage(shape).get(), &roots, contour);
  const Roots list = listOf(&roots);
  ifReleaseRoots(&roots);
  return list;
}

TEST(ContourSeeds, NumberedAlongTheContour) {
  const Matrix square = {
      {0, 0, 0, 0, 0}, {0, 9, 9, 9, 0}, {0, 9, 9, 9, 0}, {0, 9, 9, 9, 0}, {0, 0, 0, 0, 0}};
  EXPECT_EQ(rootsOf(square, 1),
            (Roots{{6, 1}, {7, 2}, {8, 4}, {11, 3}, {13, 6}, {16, 5}, {17, 7}, {18, 10}}));
  EXPECT_EQ(rootsOf(square, 0),
            (Roots{{6, 1}, {7, 1}, {8, 1}, {11, 1}, {13, 1}, {16, 1}, {17, 1}, {18, 1}}));
}

TEST(ContourSeeds, BordersAndWhatIsBackground) {
  EXPECT_EQ(rootsOf({{0, 0, 0}}, 1), Roots{});
  EXPECT_EQ(rootsOf({{0, 0, 0}}, 0), Roots{});
  EXPECT_EQ(rootsOf({{1, 1}, {1, 1}}, 1), Roots{}); // outside the image is no background
  EXPECT_EQ(rootsOf({{1, 1}, {1, 1}}, 0), Roots{});
  // a background pixel that touches only diagonally; two objects; a negative pixel
  EXPECT_EQ(rootsOf({{0, 1, 1}, {1, 1, 1}, {1, 1, 1}}, 1), (Roots{{1, 1}, {3, 4}}));
  EXPECT_EQ(rootsOf({{0, 1, 1}, {1, 1, 1}, {1, 1, 1}}, 0), (Roots{{1, 1}, {3, 1}, {4, 1}}));
  EXPECT_EQ(rootsOf({{1, 0, 1}}, 0), (Roots{{0, 1}, {2, 2}}));
  EXPECT_EQ(rootsOf({{1, 0, 1}}, 1), (Roots{{0, 3}, {2, 6}}));
  EXPECT_EQ(rootsOf({{1, -5}}, 1), Roots{});
  EXPECT_EQ(rootsOf({{1, -5}}, 0), (Roots{{0, 1}}));
}

} // namespace
