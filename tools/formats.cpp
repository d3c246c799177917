// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "formats.h"

#include "codecs.h"
#include "program.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <span>

namespace seedforest::tools {

namespace {

#ifdef SEEDFOREST_HAVE_PNG
constexpr DecodeFn fromPng = decodePng;
constexpr EncodeFn toPng = encodePng;
#else
constexpr DecodeFn fromPng = nullptr;
constexpr EncodeFn toPng = nullptr;
#endif
#ifdef SEEDFOREST_HAVE_TIFF
constexpr DecodeFn fromTiff = decodeTiff;
constexpr EncodeFn toTiff = encodeTiff;
#else
constexpr DecodeFn fromTiff = nullptr;
constexpr EncodeFn toTiff = nullptr;
#endif
#ifdef SEEDFOREST_HAVE_JPEG
constexpr DecodeFn fromJpeg = decodeJpeg;
#else
constexpr DecodeFn fromJpeg = nullptr;
#endif

struct Format {
  const char *name;
  std::array<std::string_view, 4> beginnings; // of files; unused ones are empty
  std::array<std::string_view, 4> endings;    // of names
  int mostBits;                               // of a sample
  DecodeFn decode;                            // null where the library was missing
  EncodeFn encode;                            // null, too, where the format is only read
};

std::span<const Format> formats() {
  using namespace std::string_view_literals;
  static const Format all[] = {
      {"PNM", {"P2", "P5", "P6"}, {"pgm", "ppm", "pnm"}, 16, decodePnm, encodePnm},
      {"PNG", {"\x89PNG"}, {"png"}, 16, fromPng, toPng},
      {"TIFF", {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv}, {"tif", "tiff"}, 32, fromTiff, toTiff},
      {"JPEG", {"\xff\xd8\xff"}, {"jpg", "jpeg"}, 8, fromJpeg, nullptr},
  };
  return all;
}

const Format *formatOf(std::string_view bytes) {
  for (const Format &format : formats())
    for (const std::string_view beginning : format.beginnings)
      if (!beginning.empty() && bytes.starts_with(beginning))
        return &format;
  return nullptr;
}

void requireBuilt(const Format &format) {
  if (format.decode == nullptr)
    throw FileError(std::string("this program was built without ") + format.name);
}

// The format that images are written in.
const Format &formatFor(const std::string &path) {
  if (path == "-")
    return formats()[0];
  const std::size_t dot = path.find_last_of("./");
  std::string ending = dot == std::string::npos || path[dot] == '/' ? "" : path.substr(dot + 1);
  std::ranges::transform(ending, ending.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const Format &format : formats())
    if (!ending.empty() && std::ranges::find(format.endings, ending) != format.endings.end()) {
      requireBuilt(format);
      if (format.encode == nullptr)
        throw FileError(std::string(format.name) + " is read, not written; use .png or .tif");
      return format;
    }
  throw FileError("the name must end in .pgm, .ppm, .pnm, .png, .tif or .tiff");
}

// Calls work() with the path before every message.
template <class Work>
auto named(const std::string &path, Work work) {
  const std::string who = path == "-" ? "standard input or output" : path;
  try {
    return work();
  } catch (const FileError &error) {
    throw FileError(who + ": " + error.what());
  }
}

} // namespace

bool isImage(std::string_view bytes) {
  return formatOf(bytes) != nullptr;
}

Decoded decodeImage(std::string_view bytes) {
  const Format *format = formatOf(bytes);
  if (format == nullptr)
    throw FileError("no image that can be read: neither PNM (P2, P5, P6) nor PNG, TIFF or JPEG");
  requireBuilt(*format);
  return format->decode(bytes);
}

std::string encodeImage(const Image &image, const std::string &path) {
  const Format &format = formatFor(path);
  const int largest = largestValue(image);
  const int bits = largest <= 255 ? 8 : largest <= 65535 ? 16 : 32;
  if (leastValue(image) < 0)
    throw FileError("negative values do not fit");
  if (bits > format.mostBits)
    throw FileError("values up to " + std::to_string(largest) + " do not fit " + format.name +
                    ", which holds 65535; use .tif");
  return format.encode(image, bits);
}

Image imageFor(const Shape &shape, std::size_t fileSize, std::uint64_t expansion) {
  const std::string size = std::to_string(shape.ncols) + " x " + std::to_string(shape.nrows);
  if (shape.ncols < 1 || shape.nrows < 1 || shape.ncols > INT_MAX || shape.nrows > INT_MAX ||
      shape.ncols * shape.nrows > INT_MAX)
    throw FileError("impossible size " + size);
  const std::uint64_t bytesNeeded =
      shape.ncols * shape.nrows * static_cast<std::uint64_t>(shape.nbands * shape.bits) / 8;
  if (bytesNeeded / expansion > fileSize)
    throw FileError(std::to_string(fileSize) + " bytes cannot hold " + size + " pixels");
  const bool isGrey = shape.nbands == 1 && shape.bits <= 8;
  const ImageType type = shape.nbands == 3 ? ImageType::color
                         : isGrey          ? ImageType::grey
                                           : ImageType::ascii;
  Image image(static_cast<int>(shape.ncols), static_cast<int>(shape.nrows), shape.nbands, type);
  image.setMaxValue(shape.bits <= 8 ? 255 : 65535);
  return image;
}

int largestValue(const Image &image) {
  int largest = INT_MIN;
  for (int b = 0; b < image.nbands(); ++b)
    largest = std::max(largest, std::ranges::max(image.pixels(b)));
  return largest;
}

int leastValue(const Image &image) {
  int least = INT_MAX;
  for (int b = 0; b < image.nbands(); ++b)
    least = std::min(least, std::ranges::min(image.pixels(b)));
  return least;
}

std::string readInput(const std::string &path) {
  return readFile(inputPath(path));
}

Image readImage(const std::string &path) {
  return readImage(path, readInput(path));
}

Image readImage(const std::string &path, std::string_view bytes) {
  return named(path, [&] {
    Decoded decoded = decodeImage(bytes);
    if (!decoded.note.empty())
      note(path + ": " + decoded.note);
    return std::move(decoded.image);
  });
}

void writeImage(const Image &image, const std::string &path) {
  const std::string bytes = named(path, [&] { return encodeImage(image, path); });
  writeFile(bytes, outputPath(path));
}

void requireFormat(const std::string &path) {
  named(path, [&] { formatFor(path); });
}

std::string inputPath(const std::string &path) {
  return path == "-" ? "/dev/stdin" : path;
}

std::string outputPath(const std::string &path) {
  return path == "-" ? "/dev/stdout" : path;
}

} // namespace seedforest::tools
