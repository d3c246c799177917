// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seeding.h"

#include <algorithm>
#include <climits>
#include <vector>

namespace seedforest::tools {

namespace {

Roots innerHalves(const Image &shape, const Components &parts) {
  const NearestRoots outside = exactDistanceTransform(shape, rootsOf(complement(shape)));
  std::vector<int> farthest(static_cast<std::size_t>(parts.count) + 1);
  const std::span<const int> part = parts.labels.pixels();
  const std::span<const int> distance = outside.squaredDistances.pixels();
  for (std::size_t p = 0; p < part.size(); ++p) {
    int &largest = farthest[static_cast<std::size_t>(part[p])];
    largest = std::max(largest, distance[p]);
  }
  Roots roots;
  for (std::size_t p = 0; p < part.size(); ++p)
    if (part[p] > 0 && distance[p] >= farthest[static_cast<std::size_t>(part[p])] / 4)
      roots.push_back({static_cast<int>(p), part[p]});
  return roots;
}

} // namespace

Roots splitRoots(const Image &image, const Threshold &threshold, int h) {
  const Image shape = withoutHoles(shapeAbove(image, threshold));
  return innerHalves(shape, splitTouching(shape, h));
}

Ground addGround(Roots &roots, const Image &image, const Threshold &threshold) {
  constexpr int discOfTwo = 5; // its squared radius; 2 * 2 and the corners
  const Image near = dilate(shapeAbove(image, threshold), discOfTwo);
  int largest = 0;
  for (const int label : roots.labels())
    largest = std::max(largest, label);
  if (largest == INT_MAX)
    throw Error("there is no label left for the ground");
  const std::span<const int> values = near.pixels();
  Ground ground = {largest + 1, 0};
  for (std::size_t p = 0; p < values.size(); ++p)
    if (values[p] == 0) {
      roots.push_back({static_cast<int>(p), ground.label});
      ++ground.count;
    }
  return ground;
}

} // namespace seedforest::tools
