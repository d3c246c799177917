// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/iftEuclidean.h"

#include "base/require.h"
#include "ift/core/detail/euclideanPropagation.h"
#include "ift/core/detail/iftPropagate.h"
#include "image/detail/imageTools.h"

using namespace seedforest::detail;

void iftEuclideanDT(const imImage *image, imImage *result, imNeighborhoodFn adjacency,
                    const ifRoots *roots) {
  const char *operation = "iftEuclideanDT";
  requireBands(operation, image, 0);
  requireBands(operation, result, 3);
  requireSameSize(operation, image, result);
  requireGiven(operation, "adjacency", adjacency);
  requireGiven(operation, "roots record", roots);
  int **bands = result->band + result->nbands - 3;
  const std::int64_t nbuckets = 2 * (std::int64_t{image->ncols} + image->nrows) + 2;
  propagateEuclidean({operation,
                      image,
                      NeighborWalk(image, adjacency),
                      nbuckets,
                      pixelsOf(*roots),
                      bands[1],
                      bands[2],
                      {{bands[0], roots->label}}});
}
