// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "flood.h"

#include "pixels.h"

#include <algorithm>
#include <climits>
#include <cstdint>

namespace seedforest::tools {

namespace {

// A sum that cannot wrap: the largest cost is that of a path that never arrives.
int saturatingSum(int cost, int weight) {
  return cost > INT_MAX - weight ? INT_MAX : cost + weight;
}

// Whether sums of weights along the best paths stay within 31 bits for sure: without a mask a path
// of fewer steps than the image has rows and columns leads anywhere.
bool isSumBounded(const Image &relief, const ForestOptions &options) {
  const std::int64_t steps = std::int64_t{relief.ncols()} + relief.nrows();
  return options.mask == nullptr && steps * std::ranges::max(relief.pixels()) < INT_MAX;
}

} // namespace

Image reliefOf(const Image &image, Relief relief) {
  if (relief == Relief::gradient)
    return gradient(image);
  Image brightness = brightnessOf(image);
  return raisedToZero(relief == Relief::image ? std::move(brightness) : negative(brightness));
}

Image labelsFrom(const Image &relief, Roots &roots, Cost cost, const ForestOptions &options) {
  switch (cost) {
  case Cost::max:
    return watershed(relief, roots, options).labels;
  case Cost::sum:
    roots.startAt(0);
    if (isSumBounded(relief, options))
      return forest(relief, roots, pathCost::sum, arcWeight::watershed, options).labels;
    return forest(relief, roots, saturatingSum, arcWeight::watershed, options).labels;
  case Cost::local:
    roots.startAt(relief);
    return forest(relief, roots, pathCost::maxLocal, arcWeight::watershed, options).labels;
  }
  return {};
}

void requireRegions(const Roots &roots, const Image &image, const std::string &what) {
  for (const Root &root : roots)
    if (root.pixel < 0 || root.pixel >= image.npixels())
      throw Error(what + ": a root outside the image");
    else if (root.label < 1)
      throw Error(what + ": a root of label " + std::to_string(root.label) +
                  ", where labels are from 1");
}

} // namespace seedforest::tools
