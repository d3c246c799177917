#include "ift/core/ifWeightImage.h"

#include "base/arith.h"
#include "support.h"

#include <algorithm>

namespace {

using seedforest::detail::maxInt;
using seedforest::detail::minInt;

// Runs a builder; `printed` is what it has to say.
imImagePtr build(ifWeightImageFn builder, const imImage *image, imNeighborhoodFn adjacency,
                 const std::string &printed) {
  testing::internal::CaptureStdout();
  imImagePtr weights(builder(image, adjacency));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), printed);
  return weights;
}

// Bands for the displacements (1, 0) and (0, 1).
TEST(WeightImage, EveryBuilderByHand) {
  const imImagePtr image = makeImage({{0, 3, 103}, {4, 2000, -7}});
  const struct {
    ifWeightImageFn builder;
    const char *printed;
    Matrix right;
    Matrix down;
  } cases[] = {
      {euclideanWF,
       "out: 2 3 2 \n",
       {{3, 100, -1}, {1000, 1000, -1}},
       {{4, 1000, 110}, {-1, -1, -1}}},
      {gaussianWF, "", {{0, 632, -1}, {1000, 1000, -1}}, {{1, 1000, 701}, {-1, -1, -1}}},
      {gaussian2WF,
       "out: 2 3 2 \n",
       {{0, 1000, -1}, {1000, 1000, -1}},
       {{864, 1000, 1000}, {-1, -1, -1}}},
      {watershedWF, "", {{3, 103, -1}, {2000, -7, -1}}, {{4, 2000, -7}, {-1, -1, -1}}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(&c - cases);
    const imImagePtr weights = build(c.builder, image.get(), imNeighborhood4forward, c.printed);
    EXPECT_EQ(weights->type, imTypeWeights);
    EXPECT_EQ(weights->maxValue, 1000);
    ASSERT_EQ(weights->nbands, 2);
    EXPECT_EQ(bandOf(weights.get(), 0), c.right);
    EXPECT_EQ(bandOf(weights.get(), 1), c.down);
    ASSERT_EQ(weights->nAdj, 2);
    EXPECT_EQ(std::vector<int>(weights->adj, weights->adj + 4), (std::vector<int>{1, 0, 0, 1}));
  }
}

int toTheRight(int **list) {
  *list = seedforest::detail::allocateInts(2);
  (*list)[0] = 1;
  return 1;
}

// Only the Euclidean distance, and what is made of it, looks at more than band 0.
TEST(WeightImage, BandsAndExtremes) {
  const imImagePtr image(imCreateImage(2, imTypeColor, 5, 1));
  const int values[2][5] = {{minInt, maxInt, 0, 5, 7}, {0, 0, 0, 200, 200}};
  for (int b = 0; b < 2; ++b)
    std::copy_n(values[b], 5, image->band[b]);
  const auto weights = [&image](ifWeightImageFn builder, const char *printed) {
    return bandOf(build(builder, image.get(), toTheRight, printed).get());
  };
  EXPECT_EQ(weights(euclideanWF, "out: 1 5 1 \n"), (Matrix{{1000, 1000, 141, 1, -1}}));
  EXPECT_EQ(weights(gaussianWF, ""), (Matrix{{1000, 1000, 863, 0, -1}}));
  EXPECT_EQ(weights(gaussian2WF, "out: 1 5 1 \n"), (Matrix{{1000, 1000, 999, 0, -1}}));
  EXPECT_EQ(weights(watershedWF, ""), (Matrix{{maxInt, 0, 5, 7, -1}}));
  const imImagePtr none(imCreateImage(0, imTypeGrey, 5, 1));
  EXPECT_EXIT(euclideanWF(none.get(), imNeighborhood4), testing::ExitedWithCode(1), "euclideanWF");
}

} // namespace
