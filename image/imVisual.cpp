// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imVisual.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <array>
#include <cstdint>

using namespace seedforest::detail;

namespace {

using Colour = std::array<int, 3>;

void setPixel(imImage *picture, int p, const Colour &colour) {
  for (int b = 0; b < 3; ++b)
    picture->band[b][p] = colour[b];
}

// The pixel as a colour image shows it: its first band three times, or its first three bands.
void copyPixel(imImage *picture, const imImage *image, int p, bool grey) {
  for (int b = 0; b < 3; ++b)
    picture->band[b][p] = image->band[grey ? 0 : b][p];
}

} // namespace

imImage *imHighlightElements(const imImage *image, const imImage *mask, int r, int g, int b) {
  requireBands("imHighlightElements", image, 0);
  if (image->nbands != 1 && image->nbands != 3) {
    fail(About::call, "invalid number of bands (expected 1 or 3)\n");
    return nullptr;
  }
  requireBands("imHighlightElements", mask, 1);
  requireSameSize("imHighlightElements", image, mask);
  imImagePtr picture = tryCreateLike(image, 3, imTypeColor);
  for (int p = 0; picture != nullptr && p < image->npixels; ++p)
    if (mask->band[0][p] > 0)
      setPixel(picture.get(), p, {r, g, b});
    else
      copyPixel(picture.get(), image, p, image->nbands == 1);
  return picture.release();
}

imImage *imShowSegm(const imImage *image, const imImage *labels, int r, int g, int b) {
  requireBands("imShowSegm", image, 0);
  const bool grey = image->type == imTypeGrey || image->type == imTypeAscii;
  const bool colour = image->type == imTypeColor;
  requireBands("imShowSegm", image, grey ? 1 : colour ? 3 : 0);
  requireBands("imShowSegm", labels, 1);
  requireSameSize("imShowSegm", image, labels);
  imImagePtr picture = tryCreateLike(image, 3, imTypeColor);
  if (picture == nullptr || image->npixels == 1) // a pixel without neighbours stays black
    return picture.release();
  const NeighborWalk neighbors(image, imNeighborhood8);
  const int *label = labels->band[0];
  int p = 0;
  for (int y = 0; y < image->nrows; ++y)
    for (int x = 0; x < image->ncols; ++x, ++p)
      if (neighbors.any(x, y, [label, p](int q, int) { return label[q] > label[p]; }))
        setPixel(picture.get(), p, {r, g, b});
      else if (grey || colour)
        copyPixel(picture.get(), image, p, grey);
  return picture.release();
}

imImage *imPaintCircles(const imImage *radii) {
  requireBands("imPaintCircles", radii, 1);
  imImagePtr picture = tryCreateLike(radii, 1, imTypeGrey);
  if (picture == nullptr)
    return nullptr;
  const int ncols = radii->ncols;
  // Each disc adds one span per row: +1 at its first column and -1 behind its last, unless that is
  // the row's last. The sum of a row up to a pixel is the number of discs that cover the pixel.
  int *spans = picture->band[0];
  for (int p = 0; p < radii->npixels; ++p) {
    const int v = radii->band[0][p];
    if (v <= 0)
      continue;
    const int x = p % ncols;
    const int y = p / ncols;
    const int reach = truncatedSqrt(v);
    const int down = std::min(reach, radii->nrows - 1 - y);
    for (int dy = -std::min(reach, y); dy <= down; ++dy) {
      int *row = spans + radii->row[y + dy];
      const int half = truncatedSqrt(v - dy * dy);
      ++row[std::max(0, x - half)];
      if (half < ncols - 1 - x)
        --row[x + half + 1];
    }
  }
  for (int y = 0; y < radii->nrows; ++y) {
    int discs = 0;
    for (int p = radii->row[y]; p < radii->row[y] + ncols; ++p) {
      discs += spans[p];
      spans[p] = discs > 0 ? 255 : 0;
    }
  }
  return picture.release();
}
