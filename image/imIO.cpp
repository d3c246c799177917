#include "image/imIO.h"

#include "base/arith.h"
#include "base/file.h"
#include "base/report.h"
#include "base/scan.h"
#include "image/detail/imageTools.h"
#include "image/detail/parseImage.h"
#include "image/detail/writeImage.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

enum class HeaderState { unknownMagic, broken, impossibleSize, good };

struct Header {
  HeaderState state = HeaderState::broken;
  std::string_view magic;
  char type = imTypeGrey;
  int ncols = 0;
  int nrows = 0;
  int maxValue = 0;
  std::size_t dataStart = 0; // just behind the header, or past the end of a file that ends there

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

Header parseHeader(std::string_view bytes) {
  Header header;
  Text text(bytes);
  header.magic = scanWord(text);
  if (!typeOfMagic(header.magic, header.type)) {
    header.state = HeaderState::unknownMagic;
    return header;
  }
  skipSpace(text);
  if (text.at != text.end && *text.at == '#')
    text.at = std::find(text.at, text.end, '\n');
  for (int *field : {&header.ncols, &header.nrows, &header.maxValue})
    if (scanInt(text, *field) != Scanned::exact)
      return header;
  const bool fits = header.ncols > 0 && header.nrows > 0 &&
                    std::int64_t{header.ncols} * header.nrows <= maxInt / header.nbands();
  header.state = fits ? HeaderState::good : HeaderState::impossibleSize;
  header.dataStart = static_cast<std::size_t>(text.at - bytes.data()) + 1;
  return header;
}

// Samples of a binary file need no byte behind the last one; what is no image needs none at all. A
// word with a NUL in it counts as whole there, since it is printed no further.
std::size_t wantedBytes(std::string_view start) {
  const Header header = parseHeader(start);
  const bool magicIsWhole =
      header.magic.data() + header.magic.size() != start.data() + start.size() ||
      header.magic.find('\0') != std::string_view::npos;
  if (header.state == HeaderState::unknownMagic && magicIsWhole)
    return 0;
  const bool headerIsWhole = header.state == HeaderState::good && header.dataStart <= start.size();
  if (headerIsWhole && header.type != imTypeAscii)
    return header.dataStart + header.samples();
  return allBytes;
}

void widen(const unsigned char *bytes, int npixels, int *values) {
  for (int p = 0; p < npixels; ++p)
    values[p] = bytes[p];
}

void deinterleave(const unsigned char *bytes, int npixels, int *red, int *green, int *blue) {
  for (int p = 0; p < npixels; ++p) {
    red[p] = bytes[3 * std::size_t(p)];
    green[p] = bytes[3 * std::size_t(p) + 1];
    blue[p] = bytes[3 * std::size_t(p) + 2];
  }
}

void parseSamples(std::string_view data, imImage *image) {
  const auto *bytes = reinterpret_cast<const unsigned char *>(data.data());
  int **band = image->band;
  if (image->type == imTypeAscii) {
    Text text(data);
    scanInts(text, band[0], static_cast<std::size_t>(image->npixels));
  } else if (image->type == imTypeGrey) {
    widen(bytes, image->npixels, band[0]);
  } else {
    deinterleave(bytes, image->npixels, band[0], band[1], band[2]);
  }
}

// The low 8 bits of each value, the bands of a pixel side by side.
void writeBinary(Writer &writer, const imImage *image) {
  const int nbands = image->type == imTypeColor ? 3 : 1;
  const int pixelsPerChunk = static_cast<int>(Writer::chunk) / nbands;
  for (int start = 0; start < image->npixels;) {
    const int count = std::min(pixelsPerChunk, image->npixels - start);
    char *room = writer.room(std::size_t(count) * nbands);
    for (int b = 0; b < nbands; ++b)
      for (int i = 0; i < count; ++i)
        room[i * nbands + b] = static_cast<char>(image->band[b][start + i]);
    start += count;
  }
}

void writeAscii(Writer &writer, const imImage *image) {
  constexpr int valuesPerLine = 16;
  for (int p = 0; p < image->npixels; ++p) {
    writer.number(image->band[0][p], 5);
    writer.text(" ");
    if (p % valuesPerLine == valuesPerLine - 1)
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

imImagePtr parseImage(std::string_view bytes, const char *path, std::string &error) {
  const Header header = parseHeader(bytes);
  const std::string size = std::to_string(header.ncols) + " x " + std::to_string(header.nrows);
  switch (header.state) {
  case HeaderState::unknownMagic:
    error = "unknown file format; trying to read " +
            std::string(header.magic.substr(0, header.magic.find('\0'))) + "\n";
    return nullptr;
  case HeaderState::broken:
    error = "imReadImage: " + std::string(path) +
            ": the header does not give width, height and maximum as 32-bit numbers\n";
    return nullptr;
  case HeaderState::impossibleSize:
    error = "imReadImage: " + std::string(path) + ": impossible size " + size + "\n";
    return nullptr;
  case HeaderState::good:
    break;
  }
  const std::string_view data = bytes.substr(std::min(header.dataStart, bytes.size()));
  if (header.type != imTypeAscii && data.size() < header.samples()) {
    error = "error reading file " + std::string(path) + "; expecting " +
            std::to_string(header.samples()) + " pixels, read " + std::to_string(data.size()) +
            "\n";
    return nullptr;
  }
  imImagePtr image(imCreateImage(header.nbands(), header.type, header.ncols, header.nrows));
  if (image != nullptr) {
    image->maxValue = header.maxValue;
    parseSamples(data, image.get());
  }
  return image;
}

} // namespace seedforest::detail

int imReadImage(const char *path, imImage **image) {
  Bytes bytes;
  if (!loadFile(path, wantedBytes, bytes))
    fatal(About::file, "could not open file %s\n", path);
  std::string error;
  imImagePtr parsed = parseImage(bytes.view(), path, error);
  if (parsed == nullptr)
    fatal(About::file, "%s", error.c_str());
  *image = parsed.release();
  return (*image)->type;
}

void imSaveImage(const char *path, imImage *image) {
  const bool writable = image != nullptr && image->type >= imTypeGrey && image->type <= imTypeColor;
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
