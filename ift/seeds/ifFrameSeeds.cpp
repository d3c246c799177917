// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/ifFrameSeeds.h"

#include "base/arith.h"
#include "base/report.h"
#include "ift/core/detail/rootsTools.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdint>

using namespace seedforest::detail;

ifRoots *ifFrameAsRoots(const imImage *image, int uniform, int label) {
  requireBands("ifFrameAsRoots", image, 0);
  const std::int64_t n = 2 * (std::int64_t{image->nrows} + image->ncols) - 4;
  if (image->nrows < 2 || n > maxInt)
    fatal("ifFrameAsRoots: no frame in an image of %d x %d\n", image->ncols, image->nrows);
  ifRootsPtr roots = createRoots(n);
  const int bottom = image->row[image->nrows - 1];
  int *pixel = roots->pixel;
  for (int x = 0; x < image->ncols; ++x)
    *pixel++ = x;
  for (int x = 0; x < image->ncols; ++x)
    *pixel++ = x + bottom;
  for (int y = 1; y < image->nrows - 1; ++y)
    *pixel++ = image->row[y];
  for (int y = 1; y < image->nrows - 1; ++y)
    *pixel++ = image->row[y] + image->ncols - 1;
  for (int k = 0; k < roots->n; ++k)
    roots->label[k] = uniform != 0 ? label : k + 1;
  return roots.release();
}

ifRoots *ifLabelsToRoots(const imImage *image) {
  requireBands("ifLabelsToRoots", image, 1);
  const int *label = image->band[0];
  const auto isSeed = [](int value) { return value > 0; };
  ifRootsPtr roots = createRoots(std::count_if(label, label + image->npixels, isSeed));
  // Every pixel is stored, and only a seed advances k: no branch, which noise would make
  // unpredictable.
  for (int p = 0, k = 0; k < roots->n; ++p) {
    roots->pixel[k] = p;
    roots->label[k] = label[p];
    k += isSeed(label[p]) ? 1 : 0;
  }
  return roots.release();
}
