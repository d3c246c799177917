// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/detail/imageTools.h"

#include "base/report.h"

#include <algorithm>
#include <cstdlib>

namespace seedforest::detail {

void requireBands(const char *operation, const imImage *image, int nbands) {
  if (image == nullptr)
    fatal("%s: there is no image\n", operation);
  if (image->nbands < nbands)
    fatal("%s: an image of %d bands where %d are needed\n", operation, image->nbands, nbands);
}

void requireSameSize(const char *operation, const imImage *a, const imImage *b) {
  if (a->ncols != b->ncols || a->nrows != b->nrows)
    fatal("%s: images of different size, %d x %d and %d x %d\n", operation, a->ncols, a->nrows,
          b->ncols, b->nrows);
}

void requirePixel(const char *operation, const imImage *image, int p) {
  if (p < 0 || p >= image->npixels)
    fatal("%s: pixel %d is outside the image\n", operation, p);
}

imImagePtr requireMade(imImage *image) {
  if (image == nullptr)
    endAfterFailure();
  return imImagePtr(image);
}

imImagePtr createImage(int nbands, char type, int ncols, int nrows) {
  return requireMade(imCreateImage(nbands, type, ncols, nrows));
}

imImagePtr createLike(const imImage *image, int nbands, char type) {
  return createImage(nbands, type, image->ncols, image->nrows);
}

imImagePtr tryCreateLike(const imImage *image, int nbands, char type, int maxValue) {
  imImagePtr made(imCreateImage(nbands, type, image->ncols, image->nrows));
  if (made != nullptr)
    made->maxValue = maxValue;
  return made;
}

int largestValue(const imImage *image, int b) {
  return std::max(0, *std::max_element(image->band[b], image->band[b] + image->npixels));
}

} // namespace seedforest::detail
