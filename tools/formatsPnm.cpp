// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// PNM. Files of 8 bits and P2 go to the library's reader and writer; P5 and P6 with a larger
// maximum have two bytes for each sample, most significant first.

#include "codecs.h"

#include <cctype>
#include <charconv>
#include <optional>

namespace seedforest::tools {

namespace {

struct Header {
  std::int32_t ncols = 0;
  std::int32_t nrows = 0;
  std::int32_t maxValue = 0;
  std::size_t size = 0; // in bytes, the one white space before the samples included
};

// Skips white space, and comments up to the end of their line.
std::size_t skipBlank(std::string_view bytes, std::size_t at) {
  while (at < bytes.size() &&
         (bytes[at] == '#' || std::isspace(static_cast<unsigned char>(bytes[at]))))
    at = bytes[at] == '#' ? std::min(bytes.find('\n', at), bytes.size()) : at + 1;
  return at;
}

// Nothing where this is no header of three numbers.
std::optional<Header> headerOf(std::string_view bytes) {
  Header header;
  std::size_t at = 2;
  for (std::int32_t *field : {&header.ncols, &header.nrows, &header.maxValue}) {
    at = skipBlank(bytes, at);
    at += at < bytes.size() && bytes[at] == '+' ? 1 : 0; // which the library's reader takes, too
    const auto scanned = std::from_chars(bytes.data() + at, bytes.data() + bytes.size(), *field);
    if (scanned.ec != std::errc())
      return std::nullopt;
    at = static_cast<std::size_t>(scanned.ptr - bytes.data());
  }
  header.size = std::min(at + 1, bytes.size());
  return header;
}

Decoded decodeWide(std::string_view bytes, const Header &header) {
  const int nbands = bytes[1] == '6' ? 3 : 1;
  const std::string_view samples = bytes.substr(header.size);
  const Shape shape = {static_cast<std::uint64_t>(header.ncols),
                       static_cast<std::uint64_t>(header.nrows), nbands, 16};
  Decoded decoded = {imageFor(shape, samples.size(), 1)};
  Image &image = decoded.image;
  image.setMaxValue(static_cast<int>(header.maxValue));
  const std::size_t rowSize = static_cast<std::size_t>(image.ncols()) * nbands * 2;
  const auto *from = reinterpret_cast<const unsigned char *>(samples.data());
  for (int y = 0; y < image.nrows(); ++y, from += rowSize)
    storeSamples<BigEndian16>(from, nbands, image, {0, y, image.ncols(), 0, nbands});
  return decoded;
}

} // namespace

Decoded decodePnm(std::string_view bytes) {
  const std::optional<Header> header = headerOf(bytes);
  const bool isText = bytes[1] == '2';
  if (header && !isText && header->maxValue > 255 && header->maxValue <= 65535)
    return decodeWide(bytes, *header);
  // The library takes missing values of a P2 for 0, which must not make a large image of nothing.
  constexpr std::int64_t harmless = 1 << 20;
  const std::int64_t pixels = header ? std::int64_t{header->ncols} * header->nrows : 0;
  if (isText && pixels > harmless && pixels > static_cast<std::int64_t>(bytes.size()))
    throw FileError(std::to_string(bytes.size()) + " bytes cannot hold " + std::to_string(pixels) +
                    " pixels");
  return {decode(bytes)};
}

std::string encodePnm(const Image &image, int bits) {
  const int nbands = image.nbands();
  const std::string size = std::to_string(image.ncols()) + " " + std::to_string(image.nrows());
  std::string bytes =
      std::string(nbands == 3 ? "P6\n" : "P5\n") + size + (bits == 8 ? "\n255\n" : "\n65535\n");
  const std::size_t rowSize = static_cast<std::size_t>(image.ncols()) * nbands * (bits / 8);
  std::size_t at = bytes.size();
  bytes.resize(at + rowSize * static_cast<std::size_t>(image.nrows()));
  for (int y = 0; y < image.nrows(); ++y, at += rowSize) {
    auto *to = reinterpret_cast<unsigned char *>(bytes.data() + at);
    if (bits == 8)
      packSamples<unsigned char>(image, y, to);
    else
      packSamples<BigEndian16>(image, y, to);
  }
  return bytes;
}

} // namespace seedforest::tools
