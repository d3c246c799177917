// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/reconstruct.h"

#include "base/report.h"
#include "ift/core/iftForest.h"
#include "image/detail/imageTools.h"
#include "image/imNeighborhood.h"

namespace seedforest::detail {

imImagePtr reconstruct(const Direction &direction, const imImage *f, int bound,
                       const ifRoots *roots, bool isLocal) {
  imImagePtr forest = createLike(f, 3, imTypeWork);
  const auto transform =
      direction.best == Extremum::largest ? iftNonNormalizedInverted : iftNonNormalized;
  transform(f, forest.get(), imNeighborhood8, ifWatershedMetric, bound,
            isLocal ? direction.localPathCost : direction.pathCost, roots);
  int *cost = forest->band[1];
  for (int p = 0; isLocal && p < f->npixels; ++p)
    if (cost[p] == direction.unreached)
      cost[p] = f->band[0][p];
  return forest;
}

int requireBound(const char *operation, int bound) {
  if (bound < 0)
    fatal("%s: %d is no bound for costs\n", operation, bound);
  return bound;
}

} // namespace seedforest::detail
