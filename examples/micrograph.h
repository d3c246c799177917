// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A synthetic micrograph: bright round cells, some of them touching, on a dark and uneven ground
// with noise. Integers only, so that it is the same on every machine. For the demo and the
// benchmarks.
#pragma once

#include "image/imImage.h"

#include <algorithm>
#include <cstdint>
#include <random>

/// A new image of type grey; the caller owns it. The ground is brighter at the right edge than at the
/// left one by `slope` grey levels, -255 to 255.
inline imImagePtr micrograph(int ncols, int nrows, int slope = 20) {
  imImagePtr image(imCreateImage(1, imTypeGrey, ncols, nrows));
  if (image == nullptr)
    return nullptr;
  std::mt19937 random(1); // raw numbers only: the standard does not fix its distributions
  const auto pick = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  int *value = image->band[0];
  for (int cell = image->npixels / 1600; cell > 0; --cell) {
    const int radius = 8 + pick(14);
    const int cx = pick(ncols);
    const int cy = pick(nrows);
    const int peak = 90 + pick(80);
    for (int y = std::max(0, cy - radius); y <= std::min(nrows - 1, cy + radius); ++y)
      for (int x = std::max(0, cx - radius); x <= std::min(ncols - 1, cx + radius); ++x) {
        const int d = (x - cx) * (x - cx) + (y - cy) * (y - cy);
        const int height = peak - peak * d / (radius * radius); // a dome
        int &v = value[x + image->row[y]];
        v = std::max(v, height);
      }
  }
  for (int y = 0; y < nrows; ++y)
    for (int x = 0; x < ncols; ++x) {
      const int light = static_cast<int>(30 + std::int64_t{slope} * x / ncols);
      const int noise = pick(13) + pick(13) - 12;
      int &v = value[x + image->row[y]];
      v = std::clamp(v + light + noise, 0, 255);
    }
  image->maxValue = 255;
  return image;
}
