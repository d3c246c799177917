#include "ift/core/detail/iftPacked.h"

#include "ift/core/ifCost.h"
#include "ift/core/iftForest.h"
#include "support.h"

using seedforest::detail::packedRuns;

namespace {

int disc100(int **list) {
  return imNeighborhood(list, 100); // 317 displacements
}

int destination(const imImage *image, int, int q) {
  return image->band[0][q];
}

// Results are the same in the general form, many times slower: only the count tells.
TEST(Packed, IsTakenWhereItApplies) {
  const auto iftMin = iftNonNormalized;
  const auto iftMax = iftNonNormalizedInverted;
  const struct {
    const char *what;
    decltype(&iftNonNormalized) transform;
    ifPathCostFn pathCost;
    bool isPacked;
    int bound = 255;
    int value = 200;
    imNeighborhoodFn adjacency = imNeighborhood8;
    ifArcWeightFn weight = ifWatershedMetric;
  } cases[] = {
      {"watershed", iftMin, ifPathCostMax, true},
      {"local watershed", iftMin, ifPathCostMaxLocal, true},
      {"reconstruction", iftMax, ifPathCostMin, true},
      {"local reconstruction", iftMax, ifPathCostMinLocal, true},
      {"four neighbours", iftMin, ifPathCostMax, true, 255, 200, imNeighborhood4},
      {"9 bits", iftMin, ifPathCostMax, true, 256, 256},
      {"24 bits", iftMin, ifPathCostMax, true, (1 << 24) - 1, (1 << 24) - 1},
      {"25 bits", iftMin, ifPathCostMax, false, 1 << 24},
      {"a value beyond the bound", iftMin, ifPathCostMax, false, 199},
      {"a negative value", iftMin, ifPathCostMax, false, 255, -1},
      {"sums", iftMin, ifPathCostSum, false},
      {"the other direction's cost", iftMin, ifPathCostMin, false},
      {"many displacements", iftMin, ifPathCostMax, false, 255, 200, disc100},
      {"a function of the caller's", iftMin, ifPathCostMax, false, 255, 200, imNeighborhood8,
       destination},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const imImagePtr image = makeImage({{3, c.value, 1}});
    const imImagePtr forest = blankLike(image, 3);
    const auto before = packedRuns;
    c.transform(image.get(), forest.get(), c.adjacency, c.weight, c.bound, c.pathCost,
                makeRoots({{0, 1, 3}}).get());
    EXPECT_EQ(packedRuns - before, c.isPacked ? 1 : 0);
  }
}

} // namespace
