// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "measures.h"

#include "regions.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <numbers>
#include <utility>

namespace seedforest::tools {

namespace {

// Sums over a region's pixels.
struct Sums {
  std::int64_t area = 0;
  std::int64_t x = 0;
  std::int64_t y = 0;
  int left = INT_MAX;
  int top = INT_MAX;
  int right = 0;
  int bottom = 0;
  std::array<std::int64_t, 2> steps = {}; // out of it: along rows and columns, along diagonals
};

// Sums of a band's values less the first one, so that large values lose no digits.
struct BandSums {
  int first = 0;
  int least = INT_MAX;
  int largest = INT_MIN;
  double sum = 0;
  double squares = 0;
  bool isEmpty() const { return least > largest; }
};

std::vector<Sums> sumsOf(const Image &numbers) {
  std::vector<Sums> all(static_cast<std::size_t>(numbers.maxValue()) + 1);
  for (int y = 0; y < numbers.nrows(); ++y)
    for (int x = 0; x < numbers.ncols(); ++x) {
      Sums &sums = all[static_cast<std::size_t>(numbers.at(x, y))];
      ++sums.area;
      sums.x += x;
      sums.y += y;
      sums.left = std::min(sums.left, x);
      sums.right = std::max(sums.right, x);
      sums.top = std::min(sums.top, y);
      sums.bottom = std::max(sums.bottom, y);
    }
  return all;
}

// Counts the steps that leave a region. Those into a region are those out of another, or of 0.
void countSteps(const Image &numbers, std::vector<Sums> &all) {
  constexpr std::array<Displacement, 8> around = {
      {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, 1}, {-1, 1}, {1, -1}}};
  const int ncols = numbers.ncols();
  const int nrows = numbers.nrows();
  const std::span<const int> number = numbers.pixels();
  for (int y = 0; y < nrows; ++y)
    for (int x = 0; x < ncols; ++x) {
      const std::ptrdiff_t p = std::ptrdiff_t{y} * ncols + x;
      const int own = number[static_cast<std::size_t>(p)];
      if (own == 0)
        continue;
      for (std::size_t k = 0; k < around.size(); ++k) {
        const auto [dx, dy] = around[k];
        const bool isInside = x + dx >= 0 && x + dx < ncols && y + dy >= 0 && y + dy < nrows;
        const std::ptrdiff_t q = p + std::ptrdiff_t{dy} * ncols + dx;
        if (!isInside || number[static_cast<std::size_t>(q)] != own)
          ++all[static_cast<std::size_t>(own)].steps[k / 4];
      }
    }
}

std::vector<BandSums> bandSumsOf(const Image &numbers, const Image &image, int band) {
  std::vector<BandSums> all(static_cast<std::size_t>(numbers.maxValue()) + 1);
  const std::span<const int> values = image.pixels(band);
  for (std::size_t p = 0; p < values.size(); ++p) {
    BandSums &sums = all[static_cast<std::size_t>(numbers.pixels()[p])];
    if (sums.isEmpty())
      sums.first = values[p];
    sums.least = std::min(sums.least, values[p]);
    sums.largest = std::max(sums.largest, values[p]);
    const double difference = static_cast<double>(values[p]) - sums.first;
    sums.sum += difference;
    sums.squares += difference * difference;
  }
  return all;
}

Measures measuresFrom(const Sums &sums, int label, const Image &labels) {
  constexpr double pi = std::numbers::pi;
  const auto area = static_cast<double>(sums.area);
  const double straight = static_cast<double>(sums.steps[0]);
  const double diagonal = static_cast<double>(sums.steps[1]) / std::numbers::sqrt2;
  const bool touchesFrame = sums.left == 0 || sums.top == 0 || sums.right == labels.ncols() - 1 ||
                            sums.bottom == labels.nrows() - 1;
  return {label,
          sums.area,
          static_cast<double>(sums.x) / area,
          static_cast<double>(sums.y) / area,
          sums.left,
          sums.top,
          sums.right,
          sums.bottom,
          pi / 8 * (straight + diagonal),
          2 * std::sqrt(area / pi),
          touchesFrame,
          {}};
}

BandMeasures measuresFrom(const BandSums &sums, std::int64_t area) {
  const auto n = static_cast<double>(area);
  const double mean = sums.sum / n;
  const double variance = std::max(sums.squares / n - mean * mean, 0.0);
  return {sums.least, sums.largest, sums.first + mean, std::sqrt(variance)};
}

} // namespace

std::vector<Measures> measuresOf(const Image &labels, const Image *image) {
  const Numbered regions = numbered(labels);
  std::vector<Sums> sums = sumsOf(regions.numbers);
  countSteps(regions.numbers, sums);
  std::vector<Measures> all;
  for (std::size_t n = 1; n < sums.size(); ++n)
    all.push_back(measuresFrom(sums[n], regions.labelOf[n], labels));
  for (int b = 0; image != nullptr && b < image->nbands(); ++b) {
    const std::vector<BandSums> bands = bandSumsOf(regions.numbers, *image, b);
    for (std::size_t n = 1; n < sums.size(); ++n)
      all[n - 1].bands.push_back(measuresFrom(bands[n], sums[n].area));
  }
  return all;
}

} // namespace seedforest::tools
