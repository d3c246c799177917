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

// By how much distances are multiplied before they become integers. The roots of whole numbers up
// to d * d lie 1 / (2 d) apart at least, so that this keeps all distances up to d apart; less where
// distances and h, twice over, would not fit 32 bits.
int distanceScale(int d, int h) {
  if (h < 0)
    fatal("splitTouching: h is %d\n", h);
  const std::int64_t largest = maxInt / 2 / (std::int64_t{d} + 1 + h);
  if (largest == 0)
    fatal("splitTouching: h is %d, too much for an image\n", h);
  return static_cast<int>(std::min(std::int64_t{2} * d + 3, largest));
}

// The distances (not squared) within a shape, scaled and moved up by `lift`; 0 outside.
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
    // Lifted by more than h, so that a component's highest maximum counts however low it is.
    const Image distances = liftedDistances(squared, scale, scale * h + 1);
    Components maxima = components(masked(hMaxima(distances, scale * h), shape));
    const Roots roots = rootsOf(maxima.labels);
    const ForestOptions within = {.mask = &shape};
    return Components{watershed(negative(distances), roots, within).labels, maxima.count};
  });
}

} // namespace seedforest
