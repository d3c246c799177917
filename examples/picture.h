// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Helpers of the example programs for reading images and making pictures.
#pragma once

#include "image/image.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

/// The image in a file; null, after a line on standard error, where it has several bands.
inline imImagePtr readGrey(const char *path) {
  imImage *read = nullptr;
  imReadImage(path, &read);
  imImagePtr image(read);
  if (image->nbands == 1)
    return image;
  std::fprintf(stderr, "%s is no grey image\n", path);
  return nullptr;
}

struct Colour {
  int red;
  int green;
  int blue;
};

inline void paint(imImage *picture, int p, const Colour &colour) {
  picture->band[0][p] = colour.red;
  picture->band[1][p] = colour.green;
  picture->band[2][p] = colour.blue;
}

/// A strong colour: the colour circle's after `turns` turns around it.
inline Colour colourAt(double turns) {
  const auto wave = [turns](double from) {
    return static_cast<int>(255 * (0.5 + 0.5 * std::cos(6.28318530718 * (turns - from))));
  };
  return {wave(0), wave(1 / 3.0), wave(2 / 3.0)};
}

/// A strong colour for a label; consecutive labels are far apart on the colour circle.
inline Colour colourOf(int label) {
  return colourAt(std::fmod(label * 0.61803398875, 1.0));
}

/// Images of one size side by side, with as many bands as the first; null where that cannot be
/// made.
inline imImagePtr sideBySide(const std::vector<const imImage *> &parts) {
  const imImage *first = parts.at(0);
  const std::int64_t ncols = std::int64_t{first->ncols} * static_cast<std::int64_t>(parts.size());
  if (ncols > INT_MAX)
    return nullptr;
  imImagePtr picture(
      imCreateImage(first->nbands, first->type, static_cast<int>(ncols), first->nrows));
  if (picture == nullptr)
    return nullptr;
  picture->maxValue = first->maxValue;
  for (int b = 0; b < first->nbands; ++b)
    for (int y = 0; y < first->nrows; ++y) {
      int *to = picture->band[b] + picture->row[y];
      for (const imImage *part : parts)
        to = std::copy_n(part->band[b] + part->row[y], part->ncols, to);
    }
  return picture;
}
