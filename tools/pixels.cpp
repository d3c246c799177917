// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "pixels.h"

#include "codecs.h"
#include "program.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

namespace seedforest::tools {

namespace {

int lumaOf(int red, int green, int blue) {
  return static_cast<int>(
      (std::int64_t{299} * red + std::int64_t{587} * green + std::int64_t{114} * blue) / 1000);
}

// How many pixels have each value, from the least on, `step` values to an entry.
struct Histogram {
  int least;
  std::int64_t step;
  std::vector<std::int64_t> counts;
};

Histogram histogramOf(const Image &image) {
  constexpr std::int64_t mostEntries = 65536;
  const auto [least, largest] = std::ranges::minmax(image.pixels());
  const std::int64_t range = std::int64_t{largest} - least + 1;
  Histogram histogram = {least, (range + mostEntries - 1) / mostEntries, {}};
  histogram.counts.resize(static_cast<std::size_t>((range - 1) / histogram.step + 1));
  for (const int value : image.pixels())
    ++histogram.counts[static_cast<std::size_t>((std::int64_t{value} - least) / histogram.step)];
  return histogram;
}

} // namespace

Image brightnessOf(const Image &image) {
  Image result = image.copyBand(0);
  if (image.type() == ImageType::grey)
    result.get()->type = imTypeGrey;
  result.setMaxValue(image.maxValue());
  const std::span<int> values = result.pixels();
  if (image.nbands() == 3)
    for (std::size_t p = 0; p < values.size(); ++p)
      values[p] = lumaOf(image.pixels(0)[p], image.pixels(1)[p], image.pixels(2)[p]);
  return result;
}

Image raisedToZero(Image image) {
  const std::span<int> values = image.pixels();
  const auto [least, largest] = std::ranges::minmax(values);
  if (least >= 0)
    return image;
  if (std::int64_t{largest} - least > INT_MAX)
    throw Error("the image's values are too far apart");
  std::ranges::transform(values, values.begin(),
                         [from = least](int value) { return value - from; });
  image.setMaxValue(largest - least);
  return image;
}

Threshold thresholdIn(const std::string &text) {
  if (text == "auto")
    return {};
  return {numberIn(text, "--threshold")};
}

int otsuThreshold(const Image &image) {
  const Histogram histogram = histogramOf(image);
  double weightedSum = 0;
  for (std::size_t i = 0; i < histogram.counts.size(); ++i)
    weightedSum += static_cast<double>(i) * static_cast<double>(histogram.counts[i]);
  const double all = image.npixels();
  double below = 0, sumBelow = 0, best = -1;
  std::size_t bestAt = 0;
  for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
    below += static_cast<double>(histogram.counts[i]);
    sumBelow += static_cast<double>(i) * static_cast<double>(histogram.counts[i]);
    const double above = all - below;
    if (below == 0 || above == 0)
      continue;
    const double difference = sumBelow / below - (weightedSum - sumBelow) / above;
    const double variance = below * above * difference * difference;
    if (variance > best) {
      best = variance;
      bestAt = i;
    }
  }
  const std::int64_t last = (static_cast<std::int64_t>(bestAt) + 1) * histogram.step - 1;
  return static_cast<int>(std::min<std::int64_t>(histogram.least + last, INT_MAX));
}

Image shapeAbove(const Image &image, const Threshold &chosen) {
  const Image brightness = brightnessOf(image);
  const int limit = chosen.value.has_value() ? *chosen.value : otsuThreshold(brightness);
  return limit == INT_MAX ? Image(image.ncols(), image.nrows())
                          : seedforest::threshold(brightness, limit + 1, INT_MAX);
}

Image withoutHoles(const Image &shape) {
  Image marker = shape.copy();
  for (int y = 1; y + 1 < shape.nrows(); ++y)
    for (int x = 1; x + 1 < shape.ncols(); ++x)
      marker.at(x, y) = 255;
  return reconstructDual(shape, marker).image;
}

void requireSize(const Image &image, const Image &other, const std::string &what) {
  if (image.ncols() != other.ncols() || image.nrows() != other.nrows())
    throw Error(what + " has " + std::to_string(other.ncols()) + " x " +
                std::to_string(other.nrows()) + " pixels, the image " +
                std::to_string(image.ncols()) + " x " + std::to_string(image.nrows()));
}

Image asLabels(Image labels, const std::string &path) {
  if (labels.nbands() != 1)
    throw Error(path + ": labels have one band, not " + std::to_string(labels.nbands()));
  if (leastValue(labels) < 0)
    throw Error(path + ": labels are at least 0");
  labels.setMaxValue(largestValue(labels));
  return labels;
}

} // namespace seedforest::tools
