// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imIO.h"

#include "base/arith.h"
#include "base/inputFile.h"
#include "base/multiversion.h"
#include "base/outputFile.h"
#include "base/report.h"
#include "base/scan.h"
#include "image/detail/imageTools.h"
#include "image/detail/parseImage.h"
#include "image/detail/writeImage.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace seedforest::detail;

namespace {

struct Header {
  char type = imTypeGrey;
  int ncols = 0;
  int nrows = 0;
  int maxValue = 0;

  int nbands() const { return type == imTypeColor ? 3 : 1; }
  std::size_t samples() const { return std::size_t(ncols) * nrows * nbands(); }
};

bool typeOfMagic(std::string_view magic, char &type) {
  if (magic == "P5")
    type = imTypeGrey;
  else if (magic == "P2")
    type = imTypeAscii;
  else if (magic == "P6")
    type = imTypeColor;
  else
    return false;
  return true;
}

void requireReadable(const Text &text, const char *path) {
  if (text.hasFailed())
    fatal(About::file, "imReadImage: error reading %s\n", path);
}

// Consumes the header and the one character between it and the samples.
Header parseHeader(Text &text, const char *path) {
  Header header;
  const String magic = scanWord(text);
  requireReadable(text, path);
  if (!typeOfMagic(magic, header.type))
    fatal(About::file, "unknown file format; trying to read %s\n", magic.c_str());
  skipSpace(text);
  if (text.hasMore() && *text.at == '#')
    skipLine(text);
  for (int *field : {&header.ncols, &header.nrows, &header.maxValue}) {
    const Scanned scanned = scanInt(text, *field);
    requireReadable(text, path);
    if (scanned != Scanned::exact)
      fatal(About::file,
            "imReadImage: %s: the header does not give width, height and maximum as 32-bit "
            "numbers\n",
            path);
  }
  if (header.ncols < 1 || header.nrows < 1 ||
      std::int64_t{header.ncols} * header.nrows > maxInt / header.nbands())
    fatal(About::file, "imReadImage: %s: impossible size %d x %d\n", path, header.ncols,
          header.nrows);
  if (text.hasMore())
    ++text.at;
  return header;
}

imImagePtr createFor(const Header &header) {
  imImagePtr image = createImage(header.nbands(), header.type, header.ncols, header.nrows);
  image->maxValue = header.maxValue;
  return image;
}

// One scan per pixel. A scan that fails leaves its pixel 0, and the next one continues where it
// stopped: it can succeed only where the failure was a sign without digits, which is consumed.
void scanPixels(Text &text, int *values, std::size_t count) {
  for (std::size_t n = 0; n < count; ++n) {
    n += scanInts(text, values + n, count - n);
    const bool isLast = n + 1 >= count;
    if (isLast || !text.hasMore() || !(isSpace(*text.at) || isSign(*text.at)))
      return;
  }
}

SEEDFOREST_MULTIVERSION void widen(const unsigned char *bytes, int n, int *values) {
  for (int i = 0; i < n; ++i)
    values[i] = bytes[i];
}

SEEDFOREST_MULTIVERSION void deinterleave(const unsigned char *bytes, int n, int *red, int *green,
                                          int *blue) {
  for (int i = 0; i < n; ++i) {
    red[i] = bytes[3 * i];
    green[i] = bytes[3 * i + 1];
    blue[i] = bytes[3 * i + 2];
  }
}

constexpr int pixelsPerChunk = static_cast<int>(Writer::chunk) / 3;

// Returns the number of bytes read, at most one per sample.
std::size_t readSamples(Text &text, imImage *image) {
  const Array<char> bytes = makeArray<char>(std::size_t{pixelsPerChunk} * 3);
  std::size_t total = 0;
  for (int start = 0, n; start < image->npixels; start += n) {
    n = std::min(pixelsPerChunk, image->npixels - start);
    const std::size_t wanted = std::size_t(n) * image->nbands;
    const std::size_t count = copyBytes(text, bytes.get(), wanted);
    total += count;
    if (count < wanted)
      break;
    const auto *samples = reinterpret_cast<const unsigned char *>(bytes.get());
    int *const *band = image->band;
    if (image->nbands == 1)
      widen(samples, n, band[0] + start);
    else
      deinterleave(samples, n, band[0] + start, band[1] + start, band[2] + start);
  }
  return total;
}

imImagePtr readBinary(Text &text, const Header &header, const char *path) {
  const std::size_t samples = header.samples();
  imImagePtr image;
  std::size_t count = 0;
  if (text.certainBytes() >= samples) {
    image = createFor(header);
    count = readSamples(text, image.get());
  } else { // the samples may be fewer than the header says: allocate only as they arrive
    const Bytes bytes = takeBytes(text, samples);
    count = bytes.size;
    if (count == samples) {
      Text inMemory(bytes.view());
      image = createFor(header);
      readSamples(inMemory, image.get());
    }
  }
  if (count < samples)
    fatal(About::file, "error reading file %s; expecting %zu pixels, read %zu\n", path, samples,
          count);
  return image;
}

imImagePtr readAscii(Text &text, const Header &header, const char *path) {
  imImagePtr image = createFor(header);
  scanPixels(text, image->band[0], header.samples());
  requireReadable(text, path);
  return image;
}

SEEDFOREST_MULTIVERSION void narrow(const int *values, int n, char *bytes) {
  for (int i = 0; i < n; ++i)
    bytes[i] = static_cast<char>(values[i]);
}

SEEDFOREST_MULTIVERSION void interleave(const int *red, const int *green, const int *blue, int n,
                                        char *bytes) {
  for (int i = 0; i < n; ++i) {
    bytes[3 * i] = static_cast<char>(red[i]);
    bytes[3 * i + 1] = static_cast<char>(green[i]);
    bytes[3 * i + 2] = static_cast<char>(blue[i]);
  }
}

// The low 8 bits of each value, the bands of a pixel side by side.
void writeBinary(Writer &writer, const imImage *image) {
  int *const *band = image->band;
  for (int start = 0, n; start < image->npixels; start += n) {
    n = std::min(pixelsPerChunk, image->npixels - start);
    if (image->type == imTypeColor)
      interleave(band[0] + start, band[1] + start, band[2] + start, n,
                 writer.room(std::size_t(n) * 3));
    else
      narrow(band[0] + start, n, writer.room(std::size_t(n)));
  }
}

// The values 0 .. 255 as they stand in a P2: five characters wide, and a blank.
constexpr int cellCount = 256;
constexpr int cellWidth = 6;
using Cell = std::array<char, cellWidth>;

constexpr std::array<Cell, cellCount> makeCells() {
  std::array<Cell, cellCount> cells{};
  for (int value = 0; value < cellCount; ++value) {
    cells[value].fill(' ');
    int at = cellWidth - 2;
    for (int rest = value; rest > 0 || at == cellWidth - 2; rest /= 10)
      cells[value][at--] = static_cast<char>('0' + rest % 10);
  }
  return cells;
}
constexpr std::array<Cell, cellCount> cells = makeCells();

// Copying cells takes a quarter of the time of writing numbers.
void writeAscii(Writer &writer, const imImage *image) {
  constexpr int valuesPerLine = 16;
  for (int start = 0, n; start < image->npixels; start += n) {
    n = std::min(valuesPerLine, image->npixels - start);
    const int *value = image->band[0] + start;
    if (allWithin(value, n, 0, cellCount - 1)) {
      char *at = writer.room(std::size_t(n) * cellWidth);
      for (int i = 0; i < n; ++i, at += cellWidth)
        std::memcpy(at, cells[value[i]].data(), cellWidth);
    } else {
      for (int i = 0; i < n; ++i) {
        writer.number(value[i], cellWidth - 1);
        writer.text(" ");
      }
    }
    if (n == valuesPerLine)
      writer.text("\n");
  }
}

} // namespace

namespace seedforest::detail {

void writeImage(Writer &writer, imImage *image) {
  const bool ascii = image->type == imTypeAscii;
  if (ascii && image->maxValue == 0)
    image->maxValue = largestValue(image, 0);
  writer.text(ascii ? "P2\n" : image->type == imTypeGrey ? "P5\n" : "P6\n");
  writer.number(image->ncols);
  writer.text(" ");
  writer.number(image->nrows);
  writer.text("\n");
  writer.number(ascii ? image->maxValue : 255);
  writer.text("\n");
  if (ascii)
    writeAscii(writer, image);
  else
    writeBinary(writer, image);
}

imImagePtr parseImage(Text &text, const char *path) {
  const Header header = parseHeader(text, path);
  return header.type == imTypeAscii ? readAscii(text, header, path)
                                    : readBinary(text, header, path);
}

} // namespace seedforest::detail

int imReadImage(const char *path, imImage **image) {
  requireGiven("imReadImage", "path", path);
  requireGiven("imReadImage", "place for the image", image);
  InputFile file(path);
  if (!file.isOpen())
    fatal(About::file, "could not open file %s\n", path);
  *image = parseImage(file, path).release();
  return (*image)->type;
}

void imSaveImage(const char *path, imImage *image) {
  const bool writable = image != nullptr && image->type >= imTypeGrey && image->type <= imTypeColor;
  requireGiven("imSaveImage", "path", path);
  requireBands("imSaveImage", image, !writable ? 0 : image->type == imTypeColor ? 3 : 1);
  OutputFile file(path);
  if (!file.isOpen())
    fatal(About::file, "could not open file %s for writing\n", path);
  if (writable)
    writeImage(file.writer(), image);
  else
    warn("Could not write image. Unknown type.");
  if (!file.close())
    fatal(About::file, "error writing image %s\n", path);
}
