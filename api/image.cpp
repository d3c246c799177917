// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/image.hpp"

#include "base/arith.h"
#include "base/report.h"
#include "base/scan.h"
#include "detail/memoryFile.h"
#include "detail/quietly.h"
#include "image/detail/parseImage.h"
#include "image/detail/writeImage.h"
#include "image/imIO.h"

#include <cstdint>
#include <cstdlib>

namespace seedforest {

using namespace detail;

namespace {

// The number of bands of this size that nvalues values fill.
int bandsOf(std::size_t nvalues, int ncols, int nrows) {
  const std::int64_t npixels = std::int64_t{ncols} * nrows;
  if (ncols <= 0 || nrows <= 0 || nvalues == 0 || nvalues % npixels != 0 ||
      nvalues / npixels > maxInt)
    fatal("%zu values fill no bands of %d x %d pixels\n", nvalues, ncols, nrows);
  return static_cast<int>(nvalues / npixels);
}

void requireWritable(const imImage *image) {
  if (image->type < imTypeGrey || image->type > imTypeColor)
    fatal("an image of type %d has no file form\n", image->type);
  requireBands("write", image, image->type == imTypeColor ? 3 : 1);
}

} // namespace

Image::Image(int ncols, int nrows, int nbands, ImageType type) {
  *this = quietly([&] {
    const std::int64_t npixels = std::int64_t{ncols} * nrows;
    if (ncols <= 0 || nrows <= 0 || npixels > maxInt || nbands < 0)
      fatal("there is no image of %d bands of %d x %d pixels\n", nbands, ncols, nrows);
    return Image(createImage(nbands, static_cast<char>(type), ncols, nrows));
  });
}

Image Image::ofSize(std::size_t nvalues, int ncols, int nrows, ImageType type) {
  return quietly([&] { return Image(ncols, nrows, bandsOf(nvalues, ncols, nrows), type); });
}

Image Image::borrow(std::span<int> values, int ncols, int nrows, ImageType type) {
  return quietly([&] {
    const int nbands = bandsOf(values.size(), ncols, nrows);
    Image image(ncols, nrows, 0, type);
    auto *bands =
        static_cast<int **>(allocateZeroed(static_cast<std::size_t>(nbands), sizeof(int *)));
    imImage *record = image.get();
    std::free(record->band);
    record->band = bands;
    record->nbands = nbands;
    image.image_.get_deleter().borrowed = true;
    for (int b = 0; b < nbands; ++b)
      bands[b] = values.data() + std::size_t(b) * image.count();
    return image;
  });
}

Image Image::copy() const {
  return quietly([&] { return made(imCopyImage(recordOf(*this))); });
}

Image Image::copyBand(int band) const {
  return quietly([&] { return made(imCopyBand(recordOf(*this), imTypeAscii, band)); });
}

imImagePtr Image::release() {
  return quietly([&] {
    recordOf(*this);
    if (image_.get_deleter().borrowed)
      fatal("an image of borrowed pixels cannot be given up\n");
    return imImagePtr(image_.release());
  });
}

bool Image::operator==(const Image &other) const {
  if (!*this || !other)
    return !*this && !other;
  bool equal = ncols() == other.ncols() && nrows() == other.nrows() && nbands() == other.nbands();
  for (int b = 0; equal && b < nbands(); ++b)
    equal = std::ranges::equal(pixels(b), other.pixels(b));
  return equal;
}

void detail::ReleaseImage::operator()(imImage *image) const {
  for (int b = 0; borrowed && b < image->nbands; ++b)
    image->band[b] = nullptr;
  imImageDeleter()(image);
}

Image read(const std::string &path) {
  return quietly([&] {
    imImage *image = nullptr;
    imReadImage(path.c_str(), &image);
    return made(image);
  });
}

Image decode(std::string_view bytes) {
  return quietly([&] {
    Text text(bytes);
    return Image(parseImage(text, "in memory"));
  });
}

void write(const Image &image, const std::string &path) {
  quietly([&] {
    imImage record = changeable(image);
    requireWritable(&record);
    imSaveImage(path.c_str(), &record);
  });
}

std::string encode(const Image &image) {
  return quietly([&] {
    imImage record = changeable(image);
    requireWritable(&record);
    return textOf([&record](Writer &writer) { writeImage(writer, &record); });
  });
}

} // namespace seedforest
