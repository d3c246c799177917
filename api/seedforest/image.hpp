// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Images, which own their 32-bit pixels in bands, and their PNM files.
#pragma once

#include "base/error.h"
#include "image/imImage.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#pragma GCC visibility push(default)

namespace seedforest {

/// The type of an image, which is also the dialect of its file; see imImage.h.
enum class ImageType : char {
  grey = imTypeGrey,         ///< 8 bits a pixel: P5
  ascii = imTypeAscii,       ///< any values: P2; every computed image of one band
  color = imTypeColor,       ///< red, green, blue of 8 bits each: P6
  xyz = imTypeXyz,           ///< a computed colour space; has no file form, nor have the rest
  features = imTypeFeatures, ///< bands rescaled to 0 .. 1000
  weights = imTypeWeights,   ///< a band for each arc of an adjacency
  work = imTypeWork,         ///< bands of a transform
};

namespace detail {
struct ReleaseImage {
  bool borrowed = false; ///< the bands are not owned
  void operator()(imImage *image) const;
};
} // namespace detail

/// An image, movable, and copied only by copy(). An object that was moved from, or constructed
/// without arguments, holds no image: its size is 0 x 0, and functions throw Error for it.
class Image {
public:
  Image() = default;

  /// An image of zeros.
  /// Throws Error: a size without pixels, or with more than 2^31 - 1.
  Image(int ncols, int nrows, int nbands = 1, ImageType type = ImageType::ascii);

  /// Takes over a record of the library.
  explicit Image(imImagePtr image) noexcept : image_(image.release()) {}

  /// A copy of integers in memory, row by row from the top and band after band; as many bands as
  /// there are values for. maxValue becomes the largest.
  /// Throws Error: a number of values that does not fill bands of that size.
  template <class Value>
  static Image copyOf(std::span<const Value> values, int ncols, int nrows,
                      ImageType type = ImageType::ascii);

  /// An image that uses the caller's memory, in the same order, without a copy. The memory must
  /// outlive the image.
  static Image borrow(std::span<int> values, int ncols, int nrows,
                      ImageType type = ImageType::ascii);

  explicit operator bool() const { return image_ != nullptr; }
  int ncols() const { return image_ == nullptr ? 0 : image_->ncols; }
  int nrows() const { return image_ == nullptr ? 0 : image_->nrows; }
  int nbands() const { return image_ == nullptr ? 0 : image_->nbands; }
  int npixels() const { return image_ == nullptr ? 0 : image_->npixels; }
  ImageType type() const { return ImageType{image_ == nullptr ? imTypeAscii : image_->type}; }

  /// The largest grey value that is declared. Pixels may exceed it.
  int maxValue() const { return image_ == nullptr ? 0 : image_->maxValue; }
  void setMaxValue(int value) {
    if (image_ != nullptr)
      image_->maxValue = value;
  }

  /// The pixels of a band, pixel (x, y) at x + y * ncols(). Debug builds check the ranges.
  std::span<int> pixels(int band = 0) { return {bandAt(band), count()}; }
  std::span<const int> pixels(int band = 0) const { return {bandAt(band), count()}; }
  int &at(int x, int y, int band = 0) { return bandAt(band)[index(x, y)]; }
  int at(int x, int y, int band = 0) const { return bandAt(band)[index(x, y)]; }

  /// A copy, without the adjacency of arc weights; copyBand() copies one band, type ascii.
  /// Throws Error: no such band.
  Image copy() const;
  Image copyBand(int band) const;

  /// The record, for the library's operations.
  imImage *get() { return image_.get(); }
  const imImage *get() const { return image_.get(); }

  /// Returns the record, which the caller then owns; this object holds no image any more.
  /// Throws Error: the pixels are borrowed.
  imImagePtr release();

  /// Same size, bands and pixels.
  bool operator==(const Image &other) const;

private:
  static Image ofSize(std::size_t nvalues, int ncols, int nrows, ImageType type);

  std::size_t count() const { return static_cast<std::size_t>(npixels()); }
  int *bandAt(int band) const {
    assert(image_ != nullptr && band >= 0 && band < image_->nbands);
    return image_->band[band];
  }
  int index(int x, int y) const {
    assert(x >= 0 && x < ncols() && y >= 0 && y < nrows());
    return x + image_->row[y];
  }

  std::unique_ptr<imImage, detail::ReleaseImage> image_;
};

/// The image in a P2, P5 or P6 file, or in the bytes of one.
/// Throws FileError: a file that cannot be read or is none of these; see imReadImage.
Image read(const std::string &path);
Image decode(std::string_view bytes);

/// Writes an image in the dialect of its type, or returns the bytes; see imSaveImage. The declared
/// maximum of an image of type ascii is its maxValue, or the largest value where maxValue is 0.
/// Throws FileError: the file cannot be written. Throws Error: a type without a file form.
void write(const Image &image, const std::string &path);
std::string encode(const Image &image);

template <class Value>
Image Image::copyOf(std::span<const Value> values, int ncols, int nrows, ImageType type) {
  static_assert(std::is_integral_v<Value> &&
                    (sizeof(Value) < sizeof(int) || std::is_same_v<Value, int>),
                "a pixel holds any value of the type");
  Image image = ofSize(values.size(), ncols, nrows, type);
  for (int b = 0; b < image.nbands(); ++b) {
    const std::span<int> band = image.pixels(b);
    std::copy_n(values.data() + band.size() * static_cast<std::size_t>(b), band.size(),
                band.data());
    image.setMaxValue(std::max(image.maxValue(), *std::max_element(band.begin(), band.end())));
  }
  return image;
}

} // namespace seedforest

#pragma GCC visibility pop
