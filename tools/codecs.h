// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The formats one by one, for formats.cpp: each file's samples to and from the bands of an image.
// A format whose library was not there at the build has no functions.
#pragma once

#include "formats.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace seedforest::tools {

using DecodeFn = Decoded (*)(std::string_view bytes);

/// `bits` are 8, 16 or 32 and hold all values, which are at least 0.
using EncodeFn = std::string (*)(const Image &image, int bits);

Decoded decodePnm(std::string_view bytes);
std::string encodePnm(const Image &image, int bits);
Decoded decodePng(std::string_view bytes);
std::string encodePng(const Image &image, int bits);
Decoded decodeTiff(std::string_view bytes);
std::string encodeTiff(const Image &image, int bits);
Decoded decodeJpeg(std::string_view bytes);

/// Size and kind of an image in a file.
struct Shape {
  std::uint64_t ncols;
  std::uint64_t nrows;
  int nbands;
  int bits;
};

/// An image of zeros of that shape.
///   expansion  a bound of the decoded bytes for each byte of the file
/// Throws FileError: no pixels, more than 2^31 - 1, or more than that many bytes of a file can hold.
Image imageFor(const Shape &shape, std::size_t fileSize, std::uint64_t expansion);

/// Largest value of all bands; and the least.
int largestValue(const Image &image);
int leastValue(const Image &image);

/// A sample of 16 bits, most significant byte first.
struct BigEndian16 {
  unsigned char high = 0;
  unsigned char low = 0;
  BigEndian16() = default;
  explicit BigEndian16(int value)
      : high(static_cast<unsigned char>(value >> 8)), low(static_cast<unsigned char>(value)) {}
  operator int() const { return high << 8 | low; }
};

/// A sample of 8 bits with a sign.
struct Signed8 {
  unsigned char bits = 0;
  operator int() const { return bits < 128 ? bits : bits - 256; }
};

/// A rectangle's row of pixels in an image, for copying samples: bands firstBand and following.
struct Row {
  int x;
  int y;
  int count;
  int firstBand;
  int nbands;
};

/// Copies samples that lie `stride` apart from pixel to pixel, those of a pixel's bands side by
/// side.
template <class Sample>
void storeSamples(const unsigned char *from, int stride, Image &image, const Row &row) {
  for (int b = 0; b < row.nbands; ++b) {
    int *to = &image.at(row.x, row.y, row.firstBand + b);
    const unsigned char *at = from + sizeof(Sample) * static_cast<std::size_t>(b);
    for (int i = 0; i < row.count; ++i, at += sizeof(Sample) * static_cast<std::size_t>(stride)) {
      Sample sample;
      std::memcpy(&sample, at, sizeof sample);
      to[i] = sample;
    }
  }
}

/// The samples of a row of an image, those of a pixel's bands side by side.
template <class Sample>
void packSamples(const Image &image, int y, unsigned char *to) {
  const int nbands = image.nbands();
  for (int b = 0; b < nbands; ++b) {
    const int *from = &image.pixels(b)[static_cast<std::size_t>(y) * image.ncols()];
    unsigned char *at = to + sizeof(Sample) * static_cast<std::size_t>(b);
    for (int x = 0; x < image.ncols(); ++x, at += sizeof(Sample) * nbands) {
      const Sample sample = static_cast<Sample>(from[x]);
      std::memcpy(at, &sample, sizeof sample);
    }
  }
}

} // namespace seedforest::tools
