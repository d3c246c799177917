// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifCost.h"

#include "ift/core/ifWeightImage.h"
#include "support.h"

namespace {

TEST(Cost, PathCosts) {
  const struct {
    ifPathCostFn extend;
    int cost, weight, expected;
  } cases[] = {
      {ifPathCostMax, 5, 6, 6},           {ifPathCostMax, -5, -6, -5},
      {ifPathCostMin, 5, 6, 5},           {ifPathCostMin, -5, -6, -6},
      {ifPathCostSum, maxInt, 1, minInt}, {ifPathCostSum, minInt, minInt, 0},
      {ifPathCostMaxLocal, 5, 5, 5},      {ifPathCostMaxLocal, 5, 6, ifInfiniteCost},
      {ifPathCostMinLocal, 5, 5, 5},      {ifPathCostMinLocal, 5, 4, ifInfiniteCostInverted},
  };
  for (const auto &c : cases)
    EXPECT_EQ(c.extend(c.cost, c.weight), c.expected) << &c - cases;
}

TEST(Cost, Distances) {
  const struct {
    std::vector<Matrix> bands; // of two pixels
    int euclidean, largest;
  } cases[] = {
      {{{{-2, 7}}}, 9, 9},
      {{{{1, 2}}, {{4, 3}}, {{0, 1}}}, 1, 1},
      {{{{1, 2}}, {{4, 3}}, {{0, 0}}}, 0, 1}, // 2 / 3 is 0 before the root
      {{{{0, 3}}, {{9, 5}}}, 3, 4},           // 25 / 2 is 12
      {{{{minInt, maxInt}}}, maxInt, maxInt},
      // The sum stays at 2^64 - 1: were it to wrap around, the root would be half as large.
      {{{{minInt, maxInt}}, {{minInt, 0}}, {{0, 0}}, {{0, 0}}, {{0, 0}}}, 1920767766, maxInt},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(&c - cases);
    const imImagePtr image = makeBands(c.bands, imTypeColor);
    for (const int p : {0, 1}) {
      EXPECT_EQ(ifEuclideanDistance(image.get(), p, 1 - p), c.euclidean);
      EXPECT_EQ(ifMaxDistance(image.get(), p, 1 - p), c.largest);
      EXPECT_EQ(ifWatershedMetric(image.get(), p, 1 - p), c.bands[0][0][1 - p]);
    }
  }
  EXPECT_EQ(ifMaxDistance(blank(2, 1, 0).get(), 0, 1), -1);
}

TEST(Cost, Chamfer) {
  const int cases[][3] = {{0, 1, 12}, {10, 0, 12}, {0, 11, 17}, {9, 10, 17}, {5, 5, 12}};
  for (const auto &[p, q, expected] : cases)
    EXPECT_EQ(ifChanferDistance(blank(10, 3, 0).get(), p, q), expected) << p << " " << q;
}

// Bands for the displacements (1, 0) and (0, 1). Only the Euclidean distance, and what is made of
// it, looks at more than band 0.
TEST(WeightImage, EveryBuilderByHand) {
  const imImagePtr two = makeImage({{0, 3, 103}, {4, 2000, -7}});
  const imImagePtr wide =
      makeBands({{{minInt, maxInt, 0, 5, 7}}, {{0, 0, 0, 200, 200}}}, imTypeColor);
  const std::string out = "out: 2 3 2 \n";
  const Matrix none = {{-1, -1, -1, -1, -1}};
  const struct {
    ifWeightImageFn builder;
    const imImagePtr &image;
    std::string printed;
    Matrix right, down;
  } cases[] = {
      // clang-format off
      {euclideanWF, two, out, {{3, 100, -1}, {1000, 1000, -1}}, {{4, 1000, 110}, {-1, -1, -1}}},
      {gaussianWF, two, "", {{0, 632, -1}, {1000, 1000, -1}}, {{1, 1000, 701}, {-1, -1, -1}}},
      {gaussian2WF, two, out, {{0, 1000, -1}, {1000, 1000, -1}}, {{864, 1000, 1000}, {-1, -1, -1}}},
      {watershedWF, two, "", {{3, 103, -1}, {2000, -7, -1}}, {{4, 2000, -7}, {-1, -1, -1}}},
      {euclideanWF, wide, "out: 2 5 1 \n", {{1000, 1000, 141, 1, -1}}, none},
      {gaussianWF, wide, "", {{1000, 1000, 863, 0, -1}}, none},
      {gaussian2WF, wide, "out: 2 5 1 \n", {{1000, 1000, 999, 0, -1}}, none},
      // clang-format on
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(&c - cases);
    imImage *weights = nullptr;
    EXPECT_EQ(printedBy([&] { weights = c.builder(c.image.get(), imNeighborhood4forward); }),
              c.printed);
    ASSERT_EQ(weights->nAdj, 2);
    EXPECT_EQ(std::vector<int>(weights->adj, weights->adj + 4), (std::vector<int>{1, 0, 0, 1}));
    expectImage("", weights, imTypeWeights, 1000, {c.right, c.down});
  }
}

} // namespace
