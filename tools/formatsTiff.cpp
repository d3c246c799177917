// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// TIFF, through libtiff: the first page, unsigned or signed integers of 8, 16 or 32 bits, one band
// or three, in stripes or tiles.

#include "codecs.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <memory>
#include <tiffio.h>
#include <vector>

namespace seedforest::tools {

namespace {

// A file in memory, for libtiff's calls, through which nothing is thrown.
struct Memory {
  std::string_view in;
  std::string out = {};
  char error[200] = {}; // the first one
  std::uint64_t at = 0;
  bool isWritten = false;

  std::uint64_t size() const { return isWritten ? out.size() : in.size(); }
  const char *data() const { return isWritten ? out.data() : in.data(); }
};

tmsize_t readPart(thandle_t handle, void *to, tmsize_t count) {
  auto *memory = static_cast<Memory *>(handle);
  const std::uint64_t left = memory->size() - std::min(memory->at, memory->size());
  const auto taken = std::min(static_cast<std::uint64_t>(std::max<tmsize_t>(count, 0)), left);
  if (taken == 0)
    return 0;
  std::copy_n(memory->data() + memory->at, taken, static_cast<char *>(to));
  memory->at += taken;
  return static_cast<tmsize_t>(taken);
}

tmsize_t writePart(thandle_t handle, void *from, tmsize_t count) try {
  auto *memory = static_cast<Memory *>(handle);
  const auto n = static_cast<std::size_t>(count);
  memory->out.resize(std::max<std::size_t>(memory->out.size(), memory->at + n));
  std::copy_n(static_cast<const char *>(from), n, memory->out.data() + memory->at);
  memory->at += n;
  return count;
} catch (const std::exception &) {
  return -1;
}

toff_t seekTo(thandle_t handle, toff_t offset, int from) {
  auto *memory = static_cast<Memory *>(handle);
  memory->at = offset + (from == SEEK_CUR ? memory->at : from == SEEK_END ? memory->size() : 0);
  return memory->at;
}

int closeNothing(thandle_t) {
  return 0;
}

toff_t sizeOf(thandle_t handle) {
  return static_cast<Memory *>(handle)->size();
}

int mapAll(thandle_t handle, void **base, toff_t *size) {
  const auto *memory = static_cast<Memory *>(handle);
  if (memory->isWritten)
    return 0;
  *base = const_cast<char *>(memory->in.data());
  *size = memory->in.size();
  return 1;
}

void unmapNothing(thandle_t, void *, toff_t) {}

[[gnu::format(printf, 3, 0)]] void keepError(thandle_t handle, const char *, const char *format,
                                             std::va_list arguments) {
  auto *memory = static_cast<Memory *>(handle);
  if (memory == nullptr || memory->error[0] != '\0')
    return;
  static_cast<void>(std::vsnprintf(memory->error, sizeof memory->error, format, arguments));
  std::ranges::replace(memory->error, '\n', ' ');
}

[[noreturn]] void refuse(const std::string &why) {
  throw FileError("TIFF: " + why);
}

[[noreturn]] void refuseFor(const Memory &memory) {
  refuse(memory.error[0] == '\0' ? "the file is damaged" : memory.error);
}

struct Close {
  void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TiffPtr = std::unique_ptr<TIFF, Close>;

TiffPtr openTiff(Memory &memory, const char *mode) {
  TIFFSetErrorHandler(nullptr);
  TIFFSetWarningHandler(nullptr);
  TIFFSetErrorHandlerExt(keepError);
  TiffPtr tiff(TIFFClientOpen("in memory", mode, &memory, readPart, writePart, seekTo, closeNothing,
                              sizeOf, mapAll, unmapNothing));
  if (tiff == nullptr)
    refuseFor(memory);
  return tiff;
}

// What the compressions that are read can make of a byte, in bytes at most.
std::uint64_t expansionOf(int compression) {
  switch (compression) {
  case COMPRESSION_NONE:
    return 1;
  case COMPRESSION_PACKBITS:
    return 64;
  case COMPRESSION_LZW: // 12 bits for a text of less than 4096 bytes
    return 2731;
  case COMPRESSION_DEFLATE:
  case COMPRESSION_ADOBE_DEFLATE:
    return 1032;
  case COMPRESSION_JPEG: // a bit for a block of 64
    return 512;
  case COMPRESSION_LZMA:
  case COMPRESSION_ZSTD: // no bound worth the name
    return 65536;
  default:
    refuse("compression " + std::to_string(compression) + " is not read");
  }
}

// A field of the first page; where it is missing its default or, if it has none, this value.
template <class Value>
Value fieldOf(TIFF *tiff, int tag, Value value = 0) {
  TIFFGetFieldDefaulted(tiff, static_cast<std::uint32_t>(tag), &value);
  return value;
}

class Reader {
public:
  explicit Reader(std::string_view bytes)
      : memory_{bytes}, tiff_(openTiff(memory_, "rD")), // stripes are looked at after the size
        bits_(fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_BITSPERSAMPLE)),
        samples_(fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_SAMPLESPERPIXEL)),
        isSigned_(fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_INT),
        isSeparate_(fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_PLANARCONFIG) ==
                    PLANARCONFIG_SEPARATE),
        photometric_(
            fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK)),
        expansion_(expansionOf(fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_COMPRESSION))) {
    requireKind();
  }

  Decoded read() {
    const int nbands = photometric_ == PHOTOMETRIC_RGB ? 3 : 1;
    const Shape shape = {fieldOf<std::uint32_t>(tiff_.get(), TIFFTAG_IMAGEWIDTH),
                         fieldOf<std::uint32_t>(tiff_.get(), TIFFTAG_IMAGELENGTH), nbands,
                         isSigned_ ? std::max<int>(bits_, 16) : bits_};
    Decoded decoded = {imageFor(shape, memory_.size(), expansion_)};
    Image &image = decoded.image;
    if (TIFFIsTiled(tiff_.get()) != 0)
      readTiles(image);
    else
      readStripes(image);
    finish(image);
    if (samples_ > nbands)
      decoded.note = "samples beyond grey or colour were dropped";
    return decoded;
  }

private:
  void requireKind() {
    const int format = fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_SAMPLEFORMAT);
    const int compression = fieldOf<std::uint16_t>(tiff_.get(), TIFFTAG_COMPRESSION);
    if (photometric_ == PHOTOMETRIC_YCBCR && compression == COMPRESSION_JPEG) {
      TIFFSetField(tiff_.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
      photometric_ = PHOTOMETRIC_RGB;
    }
    if (format != SAMPLEFORMAT_UINT && format != SAMPLEFORMAT_INT && format != SAMPLEFORMAT_VOID)
      refuse("its samples are no integers");
    if (bits_ != 8 && bits_ != 16 && bits_ != 32)
      refuse(std::to_string(bits_) + " bits a sample are not read; 8, 16 and 32 are");
    const bool isGrey = photometric_ == PHOTOMETRIC_MINISBLACK;
    const bool isWhiteFirst = photometric_ == PHOTOMETRIC_MINISWHITE && !isSigned_ && bits_ < 32;
    if (!isGrey && !isWhiteFirst && photometric_ != PHOTOMETRIC_RGB)
      refuse("its colours are neither grey nor RGB");
    if (samples_ < (photometric_ == PHOTOMETRIC_RGB ? 3 : 1))
      refuse("an RGB image of " + std::to_string(samples_) + " samples a pixel");
  }

  // The samples that lie side by side, and the bands that they are of, in a plane.
  int stride() const { return isSeparate_ ? 1 : samples_; }
  int planes(const Image &image) const { return isSeparate_ ? image.nbands() : 1; }

  // A buffer for what libtiff reads at once, which is part of the image's data or, of a tile, of
  // the file's own: no larger than what the file can hold.
  std::vector<unsigned char> bufferOf(std::uint64_t size, std::uint64_t least) const {
    if (size < least || size / expansion_ > memory_.size() + 1)
      refuse("the file is damaged or too short for its size in pixels");
    return std::vector<unsigned char>(size);
  }

  void store(const unsigned char *from, Image &image, int plane, int x, int y, int count) const {
    using Store = void (*)(const unsigned char *, int, Image &, const Row &);
    const Store forSigned = bits_ == 8 ? storeSamples<Signed8> : storeSamples<std::int16_t>;
    const Store forUnsigned = bits_ == 8 ? storeSamples<std::uint8_t> : storeSamples<std::uint16_t>;
    const Store narrow = isSigned_ ? forSigned : forUnsigned;
    const Row row = {x, y, count, plane, isSeparate_ ? 1 : image.nbands()};
    (bits_ == 32 ? storeSamples<std::int32_t> : narrow)(from, stride(), image, row);
  }

  std::uint64_t bytesOf(std::uint64_t pixels) const {
    return pixels * static_cast<std::uint64_t>(stride()) * (bits_ / 8);
  }

  void readStripes(Image &image) {
    const std::uint64_t rowSize = bytesOf(static_cast<std::uint64_t>(image.ncols()));
    std::vector<unsigned char> row = bufferOf(TIFFScanlineSize64(tiff_.get()), rowSize);
    for (int plane = 0; plane < planes(image); ++plane)
      for (int y = 0; y < image.nrows(); ++y) {
        if (TIFFReadScanline(tiff_.get(), row.data(), static_cast<std::uint32_t>(y),
                             static_cast<std::uint16_t>(plane)) != 1)
          refuseFor(memory_);
        store(row.data(), image, plane, 0, y, image.ncols());
      }
  }

  void readTiles(Image &image) {
    const auto width = fieldOf<std::uint32_t>(tiff_.get(), TIFFTAG_TILEWIDTH);
    const auto height = fieldOf<std::uint32_t>(tiff_.get(), TIFFTAG_TILELENGTH);
    if (width == 0 || height == 0 || width > 0x7fffffff || height > 0x7fffffff)
      refuse("impossible tiles");
    std::vector<unsigned char> tile = bufferOf(TIFFTileSize64(tiff_.get()), bytesOf(width));
    for (int plane = 0; plane < planes(image); ++plane)
      for (std::int64_t y = 0; y < image.nrows(); y += height)
        for (std::int64_t x = 0; x < image.ncols(); x += width) {
          const std::uint32_t number =
              TIFFComputeTile(tiff_.get(), static_cast<std::uint32_t>(x),
                              static_cast<std::uint32_t>(y), 0, static_cast<std::uint16_t>(plane));
          const auto wanted = static_cast<tmsize_t>(tile.size());
          if (TIFFReadEncodedTile(tiff_.get(), number, tile.data(), wanted) != wanted)
            refuseFor(memory_);
          storeTile(tile, image, plane, static_cast<int>(x), static_cast<int>(y));
        }
  }

  void storeTile(const std::vector<unsigned char> &tile, Image &image, int plane, int x, int y) {
    const auto width = fieldOf<std::uint32_t>(tiff_.get(), TIFFTAG_TILEWIDTH);
    const auto height = fieldOf<std::uint32_t>(tiff_.get(), TIFFTAG_TILELENGTH);
    const std::uint64_t rowSize = bytesOf(width);
    const auto count = static_cast<int>(std::min<std::int64_t>(width, image.ncols() - x));
    const auto rows = static_cast<int>(std::min<std::int64_t>(height, image.nrows() - y));
    if (tile.size() < rowSize * static_cast<std::uint64_t>(rows))
      refuse("impossible tiles");
    for (int i = 0; i < rows; ++i)
      store(tile.data() + rowSize * static_cast<std::uint64_t>(i), image, plane, x, y + i, count);
  }

  void finish(Image &image) const {
    if (bits_ == 32 && !isSigned_ && leastValue(image) < 0)
      refuse("values beyond 2147483647 are not read");
    if (photometric_ == PHOTOMETRIC_MINISWHITE)
      for (int &value : image.pixels())
        value = image.maxValue() - value;
    if (bits_ == 32 || isSigned_)
      image.setMaxValue(std::max(largestValue(image), 0));
  }

  Memory memory_;
  TiffPtr tiff_;
  int bits_;
  int samples_;
  bool isSigned_;
  bool isSeparate_;
  int photometric_;
  std::uint64_t expansion_;
};

template <class Sample>
void writeRows(const Image &image, TIFF *tiff, const Memory &memory) {
  std::vector<unsigned char> row(static_cast<std::size_t>(image.ncols()) * image.nbands() *
                                 sizeof(Sample));
  for (int y = 0; y < image.nrows(); ++y) {
    packSamples<Sample>(image, y, row.data());
    if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) != 1)
      refuseFor(memory);
  }
}

} // namespace

Decoded decodeTiff(std::string_view bytes) {
  return Reader(bytes).read();
}

std::string encodeTiff(const Image &image, int bits) {
  Memory memory = {{}};
  memory.isWritten = true;
  TiffPtr tiff = openTiff(memory, "w");
  const auto set = [&](int tag, int value) {
    TIFFSetField(tiff.get(), static_cast<std::uint32_t>(tag), value);
  };
  set(TIFFTAG_IMAGEWIDTH, image.ncols());
  set(TIFFTAG_IMAGELENGTH, image.nrows());
  set(TIFFTAG_BITSPERSAMPLE, bits);
  set(TIFFTAG_SAMPLESPERPIXEL, image.nbands());
  set(TIFFTAG_PHOTOMETRIC, image.nbands() == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
  set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  set(TIFFTAG_COMPRESSION, COMPRESSION_LZW);
  TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff.get(), 0));
  if (bits == 8)
    writeRows<std::uint8_t>(image, tiff.get(), memory);
  else if (bits == 16)
    writeRows<std::uint16_t>(image, tiff.get(), memory);
  else
    writeRows<std::int32_t>(image, tiff.get(), memory);
  if (TIFFFlush(tiff.get()) != 1)
    refuseFor(memory);
  tiff.reset(); // writes the rest
  return std::move(memory.out);
}

} // namespace seedforest::tools
