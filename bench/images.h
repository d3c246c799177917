// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The images that the benchmarks run on, square, with 8-bit values: a synthetic micrograph, and
// three worst cases.
#pragma once

#include "bench.h"
#include "examples/micrograph.h"

#include <algorithm>

#include <cstdint>
#include <random>
#include <vector>

enum BenchImage : std::int64_t { micrographImage, noiseImage, plateauImage, spiralImage };

inline std::vector<std::int64_t> benchImageNumbers() {
  return {micrographImage, noiseImage, plateauImage, spiralImage};
}

/// A spiral of width 1 and value 0 between walls of 255, wound from the outside to the middle.
inline void drawSpiral(imImage *image) {
  int *value = image->band[0];
  std::fill_n(value, image->npixels, 255);
  const int turn[4][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  int x = 0;
  int y = 0;
  int length = image->ncols - 1;
  for (int side = 0; length > 0; ++side) {
    for (int step = 0; step < length; ++step) {
      value[x + image->row[y]] = 0;
      x += turn[side % 4][0];
      y += turn[side % 4][1];
    }
    if (side > 0 && side % 2 == 0)
      length -= 2;
  }
}

/// A new image of side x side pixels, type grey.
inline imImagePtr benchImage(std::int64_t number, int side) {
  if (number == micrographImage)
    return micrograph(side, side);
  imImagePtr image(imCreateImage(1, imTypeGrey, side, side));
  image->maxValue = 255;
  std::mt19937 random(5);
  int *value = image->band[0];
  if (number == spiralImage)
    drawSpiral(image.get());
  for (int p = 0; number == noiseImage && p < image->npixels; ++p)
    value[p] = static_cast<int>(random() & 255);
  // Squares of 32 pixels in four values.
  for (int p = 0; number == plateauImage && p < image->npixels; ++p)
    value[p] = (p % side / 32 * 7 + p / side / 32 * 13) % 4 * 60;
  return image;
}

/// The image thresholded, 0 and 255: shapes, noise, squares, a spiral.
inline imImagePtr benchBinary(std::int64_t number, int side) {
  imImagePtr image = benchImage(number, side);
  const int threshold = number == micrographImage ? 80 : 127;
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = image->band[0][p] > threshold ? 255 : 0;
  return image;
}

/// A plain copy of the image, with which other benchmarks are compared; range(0) is the side,
/// range(1) the image.
inline void copyImage(benchmark::State &state) {
  const imImagePtr image = benchImage(state.range(1), static_cast<int>(state.range(0)));
  const imImagePtr copy(imCopyImage(image.get()));
  for (auto _ : state) {
    std::copy_n(image->band[0], image->npixels, copy->band[0]);
    benchmark::ClobberMemory();
  }
  reportPerItem(state, "ns/pixel", image->npixels);
}

/// All images, in these sizes.
inline void sidesAndImages(benchmark::internal::Benchmark *b,
                           const std::vector<std::int64_t> &sides = {1024, benchSide}) {
  b->ArgNames({"side", "image"})->ArgsProduct({sides, benchImageNumbers()});
  b->Unit(benchmark::kMillisecond);
}
