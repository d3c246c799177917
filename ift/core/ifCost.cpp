// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifCost.h"

#include "base/arith.h"
#include "base/report.h"
#include "ift/core/detail/costs.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

// A weight is called for every arc of a transform: a tail call in the rare case keeps its test to two
// instructions.
[[gnu::cold, gnu::noinline]] int withoutBands(const char *operation, const imImage *image,
                                              int nbands) {
  requireBands(operation, image, nbands);
  return 0;
}

bool hasBands(const imImage *image, int nbands) {
  return image != nullptr && image->nbands >= nbands;
}

} // namespace

int ifPathCostMax(int cost, int weight) {
  return std::max(cost, weight);
}

int ifPathCostMin(int cost, int weight) {
  return std::min(cost, weight);
}

int ifPathCostMaxLocal(int cost, int weight) {
  return cost < weight ? ifInfiniteCost : cost;
}

int ifPathCostMinLocal(int cost, int weight) {
  return cost > weight ? ifInfiniteCostInverted : cost;
}

int ifWatershedMetric(const imImage *image, int, int q) {
  if (!hasBands(image, 1)) [[unlikely]]
    return withoutBands("ifWatershedMetric", image, 1);
  return image->band[0][q];
}

int ifPathCostSum(int cost, int weight) {
  return wrap(std::int64_t{cost} + weight);
}

int ifEuclideanDistance(const imImage *image, int p, int q) {
  if (!hasBands(image, 1)) [[unlikely]]
    return withoutBands("ifEuclideanDistance", image, 1);
  std::uint64_t sum = 0;
  for (int b = 0; b < image->nbands; ++b)
    sum = addSaturating(sum, squaredDifference(image->band[b][p], image->band[b][q]));
  return rootOfMean(sum, image->nbands);
}

int ifMaxDistance(const imImage *image, int p, int q) {
  if (!hasBands(image, 0)) [[unlikely]]
    return withoutBands("ifMaxDistance", image, 0);
  std::int64_t largest = -1;
  for (int b = 0; b < image->nbands; ++b)
    largest = std::max(largest, std::abs(std::int64_t{image->band[b][p]} - image->band[b][q]));
  return saturate(largest);
}

int ifChanferDistance(const imImage *image, int p, int q) {
  if (!hasBands(image, 0)) [[unlikely]]
    return withoutBands("ifChanferDistance", image, 0);
  const int ncols = image->ncols;
  return p % ncols == q % ncols || p / ncols == q / ncols ? 12 : 17;
}

namespace seedforest::detail {

int rootOfMean(std::uint64_t sum, int count) {
  const std::uint64_t mean = sum / static_cast<std::uint64_t>(count);
  return truncate(std::sqrt(static_cast<double>(mean)));
}

int costBound(const imImage *image) {
  return std::max(image->maxValue,
                  *std::max_element(image->band[0], image->band[0] + image->npixels));
}

} // namespace seedforest::detail
