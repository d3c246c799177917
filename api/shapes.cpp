// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/shapes.hpp"

#include "base/arith.h"
#include "base/report.h"
#include "detail/quietly.h"
#include "ift/label/ifContour.h"
#include "ift/label/ifLabel.h"
#include "ift/operators/ifEuclideanShortestPath.h"
#include "ift/operators/ifSkeleton.h"
#include "seedforest/forest.hpp"
#include "seedforest/pixelwise.hpp"
#include "seedforest/seeds.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace seedforest {

using namespace detail;

namespace {

// The factor by which distances are multiplied before they are truncated. The square roots of
// different integers up to d * d differ by at least 1 / (2 d), so with a factor above 2 d different
// distances stay different. It is smaller where twice the distances and h would not fit 32 bits.
int distanceScale(int d, int h) {
  if (h < 0)
    fatal("splitTouching: h is %d\n", h);
  const std::int64_t largest = maxInt / 2 / (std::int64_t{d} + 1 + h);
  if (largest == 0)
    fatal("splitTouching: h is %d, too much for an image\n", h);
  return static_cast<int>(std::min(std::int64_t{2} * d + 3, largest));
}

// The distances (not squared) within a shape, scaled and raised by `lift`; 0 outside.
Image liftedDistances(const Image &squared, int scale, int lift) {
  Image result = like(squared);
  std::ranges::transform(squared.pixels(), result.pixels().begin(), [scale, lift](int value) {
    return value == 0 ? 0 : lift + truncate(scale * std::sqrt(static_cast<double>(value)));
  });
  result.setMaxValue(largestValue(result.get(), 0));
  return result;
}

} // namespace

Components components(const Image &shapes) {
  return quietly([&] {
    Components result = {like(shapes), 0};
    ifLabelImage(shapes.get(), result.labels.get());
    result.count = result.labels.maxValue();
    return result;
  });
}

Components relabel(const Image &labels) {
  return quietly([&] {
    Components result = {labels.copyBand(0), 0};
    ifCorrectLabels(result.labels.get());
    result.count = result.labels.maxValue();
    return result;
  });
}

Image flatZones(const Image &image, const Roots &roots) {
  return quietly([&] {
    Image result = like(image);
    ifConnectedComponents(image.get(), result.get(), roots.get());
    result.setMaxValue(255);
    return result;
  });
}

Image innerBorder(const Image &labels) {
  return quietly([&] {
    Image result = like(labels);
    ifRegionsToContours(labels.get(), result.get());
    return result;
  });
}

Components contours(const Image &curves) {
  return quietly([&] {
    Components result = {like(curves), 0};
    result.count = labelContours(curves.get(), result.labels.get());
    return result;
  });
}

Image contourDifferences(const Image &values, const Image &labels, bool absolute) {
  return quietly([&] {
    Image result = like(values);
    ifLabelDifferences(values.get(), recordOf(labels), result.get(), absolute ? 1 : 0);
    return result;
  });
}

Skeleton skeleton(const Image &shape, int scale, Side side) {
  return quietly([&] {
    imImage *result = nullptr;
    const int largest = ifSkel(recordOf(shape), static_cast<int>(side), scale, &result);
    return Skeleton{made(result), largest};
  });
}

Image shapeOf(const Image &squaredDistances) {
  return quietly([&] { return made(iftSkelReconstr(recordOf(squaredDistances))); });
}

Roots shortestPath(const Image &mask, int from, int to) {
  return quietly(
      [&] { return Roots(ifRootsPtr(ifEuclideanShortestPath(recordOf(mask), from, to))); });
}

Components splitTouching(const Image &shape, int h) {
  return quietly([&] {
    const Image squared = distanceTransform(shape).costs;
    const int farthest = largestValue(squared.get(), 0);
    if (farthest == ifInfiniteCost)
      return components(shape);
    const int scale = distanceScale(truncatedSqrt(farthest), h);
    // Raised by more than h above the outside, so that each component has a maximum that counts.
    const Image distances = liftedDistances(squared, scale, scale * h + 1);
    Components maxima = components(masked(hMaxima(distances, scale * h), shape));
    const Roots roots = rootsOf(maxima.labels);
    const ForestOptions within = {.mask = &shape};
    return Components{watershed(negative(distances), roots, within).labels, maxima.count};
  });
}

} // namespace seedforest
