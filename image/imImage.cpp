// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imImage.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

imImage *imCreateImage(int nbands, char type, int ncols, int nrows) {
  constexpr const char *unavailable = "Could not allocate image!\n";
  const std::int64_t npixels = std::int64_t{ncols} * nrows;
  if (nbands < 0 || ncols <= 0 || nrows <= 0 || npixels > maxInt) {
    fail(About::call, unavailable);
    return nullptr;
  }
  auto *image = static_cast<imImage *>(tryAllocateZeroed(1, sizeof(imImage)));
  if (image != nullptr) {
    image->band = static_cast<int **>(tryAllocateZeroed(nbands, sizeof(int *)));
    image->row = static_cast<int *>(tryAllocateZeroed(nrows, sizeof(int)));
  }
  if (image == nullptr || image->band == nullptr || image->row == nullptr) {
    imReleaseImage(&image);
    fail(About::memory, unavailable);
    return nullptr;
  }
  image->nbands = nbands;
  image->type = type;
  image->ncols = ncols;
  image->nrows = nrows;
  image->npixels = static_cast<int>(npixels);
  for (int y = 1; y < nrows; ++y)
    image->row[y] = image->row[y - 1] + ncols;
  for (int b = 0; b < nbands; ++b) {
    image->band[b] = static_cast<int *>(tryAllocateZeroed(npixels, sizeof(int)));
    if (image->band[b] == nullptr) {
      imReleaseImage(&image);
      fail(About::memory, "Could not allocate memory for image band %d!\n", b);
      return nullptr;
    }
  }
  return image;
}

void imReleaseImage(imImage **image) {
  if (image == nullptr || *image == nullptr)
    return;
  for (int b = 0; (*image)->band != nullptr && b < (*image)->nbands; ++b)
    std::free((*image)->band[b]);
  std::free((*image)->band);
  std::free((*image)->row);
  std::free(*image);
}

void imImageDeleter::operator()(imImage *image) const {
  std::free(image->adj);
  imReleaseImage(&image);
}

imImage *imCopyImage(const imImage *image) {
  if (image == nullptr)
    return nullptr;
  imImage *copy = imCreateImage(image->nbands, image->type, image->ncols, image->nrows);
  if (copy == nullptr)
    return nullptr;
  for (int b = 0; b < image->nbands; ++b)
    std::copy_n(image->band[b], image->npixels, copy->band[b]);
  copy->maxValue = image->maxValue;
  return copy;
}

imImage *imCopyBand(const imImage *image, char type, int b) {
  requireBands("imCopyBand", image, 0);
  if (b < 0 || b >= image->nbands)
    fatal("imCopyBand: no band %d in an image of %d\n", b, image->nbands);
  imImage *copy = imCreateImage(1, type, image->ncols, image->nrows);
  if (copy == nullptr)
    return nullptr;
  std::copy_n(image->band[b], image->npixels, copy->band[0]);
  copy->maxValue = largestValue(copy, 0);
  return copy;
}

void imHistogram(const imImage *image, const imImage *mask, float **histogram, int *size) {
  requireBands("imHistogram", image, 1);
  requireBands("imHistogram", mask, 1);
  requireSameSize("imHistogram", image, mask);
  requireGiven("imHistogram", "place for the histogram", histogram);
  requireGiven("imHistogram", "place for its size", size);
  const int *value = image->band[0];
  const int *inside = mask->band[0];
  int largest = 0;
  for (int p = 0; p < image->npixels; ++p) {
    if (inside[p] <= 0)
      continue;
    if (value[p] < 0 || value[p] == maxInt)
      fatal("imHistogram: no entry for the value %d at pixel %d\n", value[p], p);
    largest = std::max(largest, value[p]);
  }
  Array<float> counts = makeZeroedArray<float>(std::size_t{1} + largest);
  for (int p = 0; p < image->npixels; ++p)
    if (inside[p] > 0)
      counts[value[p]] += 1.0F;
  *size = largest + 1;
  *histogram = counts.release();
}

void imPrintWindow(std::FILE *stream, const imImage *image, int p, int r) {
  requireGiven("imPrintWindow", "stream", stream);
  requireBands("imPrintWindow", image, 1);
  requirePixel("imPrintWindow", image, p);
  const std::int64_t reach = r;
  const std::int64_t x = p % image->ncols;
  const std::int64_t left = std::max<std::int64_t>(x - reach, 0);
  const std::int64_t right = std::min<std::int64_t>(x + reach, image->ncols - 1);
  for (std::int64_t y = p / image->ncols - reach; y <= p / image->ncols + reach; ++y) {
    if (y >= 0 && y < image->nrows)
      for (std::int64_t column = left; column <= right; ++column)
        std::fprintf(stream, "%6d ", image->band[0][column + image->row[y]]);
    std::fputc('\n', stream);
  }
}

void imPgm2rgb(const imImage *grey, imImage *colour) {
  requireBands("imPgm2rgb", grey, 1);
  requireBands("imPgm2rgb", colour, 3);
  requireSameSize("imPgm2rgb", grey, colour);
  for (int b = 0; b < 3; ++b)
    std::copy_n(grey->band[0], grey->npixels, colour->band[b]);
}
