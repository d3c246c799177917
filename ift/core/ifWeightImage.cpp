// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifWeightImage.h"

#include "base/arith.h"
#include "base/report.h"
#include "ift/core/ifCost.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

// The arc-weight image of weigh(p, q); with `announced`, prints its size before it is filled.
template <class Weigh>
imImage *weightImage(const char *operation, const imImage *image, imNeighborhoodFn adjacency,
                     bool announced, Weigh weigh) {
  requireBands(operation, image, 1);
  requireGiven(operation, "adjacency", adjacency);
  const NeighborWalk neighbors(image, adjacency);
  imImagePtr weights = tryCreateLike(image, neighbors.size(), imTypeWeights);
  if (weights == nullptr)
    return nullptr;
  if (announced)
    progress("out: %d %d %d \n", weights->nbands, weights->ncols, image->nrows);
  weights->maxValue = 1000;
  weights->nAdj = neighbors.size();
  weights->adj = allocateInts(2 * std::size_t(neighbors.size()));
  for (int k = 0; k < neighbors.size(); ++k) {
    weights->adj[2 * k] = neighbors.dx(k);
    weights->adj[2 * k + 1] = neighbors.dy(k);
    std::fill_n(weights->band[k], weights->npixels, -1);
  }
  for (int p = 0; p < image->npixels; ++p)
    neighbors.each(p, [&](int q, int k) { weights->band[k][p] = weigh(p, q); });
  return weights.release();
}

} // namespace

imImage *euclideanWF(const imImage *image, imNeighborhoodFn adjacency) {
  return weightImage("euclideanWF", image, adjacency, true, [image](int p, int q) {
    return std::min(ifEuclideanDistance(image, p, q), 1000);
  });
}

imImage *gaussianWF(const imImage *image, imNeighborhoodFn adjacency) {
  return weightImage("gaussianWF", image, adjacency, false, [image](int p, int q) {
    const double d = ifEuclideanDistance(image, p, q);
    return truncate((1.0 - std::exp(d * d / -10000.0)) * 1000.0);
  });
}

imImage *gaussian2WF(const imImage *image, imNeighborhoodFn adjacency) {
  return weightImage("gaussian2WF", image, adjacency, true, [image](int p, int q) {
    const std::int64_t d = std::abs(std::int64_t{image->band[0][p]} - image->band[0][q]);
    if (d <= 3)
      return 0;
    const auto beyond =
        static_cast<double>(std::min<std::int64_t>(d - 3, 1000)); // exp is 0 by then
    return truncate((1.0 - std::exp(beyond * beyond * -1.0 / 0.5)) * 1000.0);
  });
}

imImage *watershedWF(const imImage *image, imNeighborhoodFn adjacency) {
  return weightImage("watershedWF", image, adjacency, false,
                     [image](int, int q) { return image->band[0][q]; });
}
