// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// PNG, through libpng. An error of libpng jumps out of its calls: they are made by inSteps(), whose
// work owns nothing.

#include "codecs.h"

#include <csetjmp>
#include <cstdio>
#include <exception>
#include <png.h>
#include <vector>

namespace seedforest::tools {

namespace {

// Nothing is thrown through libpng: its calls have no place where that could go.
struct Stream {
  std::string_view in;
  std::string out = {};
  char error[200] = {};
};

void keepError(png_structp png, png_const_charp text) {
  char *error = static_cast<Stream *>(png_get_error_ptr(png))->error;
  static_cast<void>(std::snprintf(error, sizeof Stream::error, "PNG: %s", text));
  png_longjmp(png, 1);
}

void dropWarning(png_structp, png_const_charp) {}

void take(png_structp png, png_bytep to, std::size_t count) {
  auto *stream = static_cast<Stream *>(png_get_io_ptr(png));
  if (count > stream->in.size())
    png_error(png, "the file ends too early");
  std::memcpy(to, stream->in.data(), count);
  stream->in.remove_prefix(count);
}

bool isAppended(std::string &bytes, const png_byte *from, std::size_t count) {
  try {
    bytes.append(reinterpret_cast<const char *>(from), count);
    return true;
  } catch (const std::exception &) {
    return false;
  }
}

void append(png_structp png, png_bytep from, std::size_t count) {
  if (!isAppended(static_cast<Stream *>(png_get_io_ptr(png))->out, from, count))
    png_error(png, "could not allocate memory!");
}

void flushNothing(png_structp) {}

// libpng's records for reading or for writing.
class Png {
public:
  enum class Mode { read, write };

  Png(Stream &stream, Mode mode) : stream_(stream), isReader_(mode == Mode::read) {
    const auto create = isReader_ ? png_create_read_struct : png_create_write_struct;
    png_ = create(PNG_LIBPNG_VER_STRING, &stream, keepError, dropWarning);
    info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    if (isReader_ && info_ != nullptr)
      png_set_read_fn(png_, &stream, take);
    else if (info_ != nullptr)
      png_set_write_fn(png_, &stream, append, flushNothing);
  }
  ~Png() {
    if (isReader_)
      png_destroy_read_struct(&png_, &info_, nullptr);
    else
      png_destroy_write_struct(&png_, &info_);
  }
  Png(const Png &) = delete;
  Png &operator=(const Png &) = delete;

  /// Calls work(png, info). It holds nothing that would have to be released where a call in it
  /// jumps away. Throws FileError then.
  template <class Work>
  void inSteps(const Work &work) {
    if (info_ == nullptr)
      throw OutOfMemory("could not allocate memory!");
    if (!succeeds(work))
      throw FileError(stream_.error);
  }

private:
  template <class Work>
  bool succeeds(const Work &work) {
    if (setjmp(png_jmpbuf(png_)) != 0) // NOLINT(cert-err52-cpp): libpng gives no other way out
      return false;
    work(png_, info_);
    return true;
  }

  Stream &stream_;
  bool isReader_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

struct Kind {
  Shape shape;
  int samplesPerPixel;
  int passes;
  bool hasAlpha;
  std::size_t rowSize; // in bytes, as libpng hands rows out
};

// Samples come as 8 or 16 bits, palettes as colours.
Kind startReading(Png &file, std::size_t fileSize) {
  constexpr std::uint64_t deflate = 1032; // of its output, the most bytes for one of its input
  Kind kind = {};
  file.inSteps([&](png_structp png, png_infop info) {
    png_set_user_limits(png, 0x7fffffff, 0x7fffffff);
    png_read_info(png, info);
    const int color = png_get_color_type(png, info);
    const bool isColored = (color & PNG_COLOR_MASK_COLOR) != 0;
    kind.shape = {png_get_image_width(png, info), png_get_image_height(png, info),
                  isColored ? 3 : 1, png_get_bit_depth(png, info) == 16 ? 16 : 8};
    kind.hasAlpha =
        (color & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    const std::uint64_t packed = png_get_rowbytes(png, info);
    if (packed > (fileSize + 1) * deflate / kind.shape.nrows)
      png_error(png, "the file is too short for its size in pixels");
    png_set_expand(png);
    png_set_strip_alpha(png);
    kind.passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    kind.samplesPerPixel = png_get_channels(png, info);
    kind.rowSize = png_get_rowbytes(png, info);
  });
  return kind;
}

} // namespace

Decoded decodePng(std::string_view bytes) {
  constexpr std::uint64_t deflateOfBits = 24768; // 24 * 1032: a palette's bit becomes 3 bytes
  Stream stream = {bytes};
  Png file(stream, Png::Mode::read);
  const Kind kind = startReading(file, bytes.size());
  Decoded decoded = {imageFor(kind.shape, bytes.size(), deflateOfBits)};
  Image &image = decoded.image;
  if (kind.samplesPerPixel != image.nbands())
    throw FileError("PNG: " + std::to_string(kind.samplesPerPixel) + " samples a pixel");
  // The passes of an interlaced image each fill in some pixels of a row.
  const std::size_t heldRows = kind.passes > 1 ? static_cast<std::size_t>(image.nrows()) : 1;
  std::vector<unsigned char> rows(heldRows * kind.rowSize);
  const auto store =
      kind.shape.bits == 16 ? storeSamples<BigEndian16> : storeSamples<unsigned char>;
  file.inSteps([&](png_structp png, png_infop) {
    for (int pass = 0; pass < kind.passes; ++pass)
      for (int y = 0; y < image.nrows(); ++y) {
        unsigned char *row =
            rows.data() + (heldRows > 1 ? static_cast<std::size_t>(y) : 0) * kind.rowSize;
        png_read_row(png, row, nullptr);
        if (pass + 1 == kind.passes)
          store(row, image.nbands(), image, {0, y, image.ncols(), 0, image.nbands()});
      }
    png_read_end(png, nullptr);
  });
  if (kind.hasAlpha)
    decoded.note = "transparency was dropped";
  return decoded;
}

std::string encodePng(const Image &image, int bits) {
  Stream stream = {{}};
  Png file(stream, Png::Mode::write);
  const auto width = static_cast<png_uint_32>(image.ncols());
  const auto height = static_cast<png_uint_32>(image.nrows());
  const int color = image.nbands() == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY;
  std::vector<unsigned char> row(static_cast<std::size_t>(width) * image.nbands() * (bits / 8));
  const auto pack = bits == 16 ? packSamples<BigEndian16> : packSamples<unsigned char>;
  file.inSteps([&](png_structp png, png_infop info) {
    constexpr int fast = 2; // measured: in a seventh of the default level's time, 18 % larger
    png_set_user_limits(png, 0x7fffffff, 0x7fffffff);
    png_set_compression_level(png, fast);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB | PNG_FILTER_UP);
    png_set_IHDR(png, info, width, height, bits, color, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < image.nrows(); ++y) {
      pack(image, y, row.data());
      png_write_row(png, row.data());
    }
    png_write_end(png, info);
  });
  return std::move(stream.out);
}

} // namespace seedforest::tools
