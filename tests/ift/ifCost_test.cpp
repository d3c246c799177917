#include "ift/core/ifCost.h"

#include "base/arith.h"
#include "support.h"

#include <utility>

namespace {

using seedforest::detail::maxInt;
using seedforest::detail::minInt;

TEST(Cost, PathCosts) {
  const struct {
    ifPathCostFn extend;
    int cost;
    int weight;
    int expected;
  } cases[] = {
      {ifPathCostMax, 5, 6, 6},
      {ifPathCostMax, -5, -6, -5},
      {ifPathCostMin, 5, 6, 5},
      {ifPathCostMin, -5, -6, -6},
      {ifPathCostSum, 5, -6, -1},
      {ifPathCostSum, maxInt, 1, minInt},
      {ifPathCostSum, minInt, minInt, 0},
      {ifPathCostMaxLocal, 5, 4, 5},
      {ifPathCostMaxLocal, 5, 5, 5},
      {ifPathCostMaxLocal, 5, 6, ifInfiniteCost},
      {ifPathCostMinLocal, 5, 6, 5},
      {ifPathCostMinLocal, 5, 5, 5},
      {ifPathCostMinLocal, 5, 4, ifInfiniteCostInverted},
  };
  for (const auto &c : cases)
    EXPECT_EQ(c.extend(c.cost, c.weight), c.expected) << &c - cases;
}

// Two pixels, a band for each pair of values.
imImagePtr twoPixels(const std::vector<std::pair<int, int>> &bands) {
  imImagePtr image(imCreateImage(static_cast<int>(bands.size()), imTypeColor, 2, 1));
  for (int b = 0; b < image->nbands; ++b) {
    image->band[b][0] = bands[b].first;
    image->band[b][1] = bands[b].second;
  }
  return image;
}

TEST(Cost, Distances) {
  const struct {
    std::vector<std::pair<int, int>> bands;
    int euclidean;
    int largest;
  } cases[] = {
      {{{7, 7}}, 0, 0},
      {{{-2, 7}}, 9, 9},
      {{{1, 2}, {4, 3}, {0, 1}}, 1, 1},
      {{{1, 2}, {4, 3}, {0, 0}}, 0, 1}, // 2 / 3 is 0 before the root
      {{{0, 3}, {9, 5}}, 3, 4},         // 25 / 2 is 12
      {{{0, 65536}}, 65536, 65536},     // its square needs 33 bits
      {{{minInt, maxInt}}, maxInt, maxInt},
      // The sum stays at 2^64 - 1: were it to wrap around, the root would be half as large.
      {{{minInt, maxInt}, {minInt, 0}, {0, 0}, {0, 0}, {0, 0}}, 1920767766, maxInt},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(&c - cases);
    const imImagePtr image = twoPixels(c.bands);
    EXPECT_EQ(ifEuclideanDistance(image.get(), 0, 1), c.euclidean);
    EXPECT_EQ(ifEuclideanDistance(image.get(), 1, 0), c.euclidean);
    EXPECT_EQ(ifMaxDistance(image.get(), 0, 1), c.largest);
    EXPECT_EQ(ifMaxDistance(image.get(), 1, 0), c.largest);
    EXPECT_EQ(ifWatershedMetric(image.get(), 0, 1), c.bands[0].second);
  }
  const imImagePtr none = twoPixels({});
  EXPECT_EQ(ifMaxDistance(none.get(), 0, 1), -1);
  EXPECT_EXIT(ifEuclideanDistance(none.get(), 0, 1), testing::ExitedWithCode(1),
              "ifEuclideanDistance");
}

TEST(Cost, Chamfer) {
  const imImagePtr image(imCreateImage(0, imTypeGrey, 10, 3));
  const struct {
    int p;
    int q;
    int expected;
  } cases[] = {{0, 1, 12}, {10, 0, 12}, {0, 11, 17}, {9, 10, 17}, {5, 5, 12}, {3, 23, 12}};
  for (const auto &c : cases)
    EXPECT_EQ(ifChanferDistance(image.get(), c.p, c.q), c.expected) << c.p << " " << c.q;
}

} // namespace
