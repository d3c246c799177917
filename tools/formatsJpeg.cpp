// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// JPEG, through libjpeg, for reading. An error of libjpeg jumps out of its calls: they are made by
// inSteps(), whose work owns nothing.

#include "codecs.h"

#include <csetjmp>
#include <cstdio> // jpeglib.h needs it

#include <jerror.h>
#include <jpeglib.h>
#include <vector>

namespace seedforest::tools {

namespace {

constexpr int mostScans = 200; // more make nothing better, and each goes over the whole image

struct Errors : jpeg_error_mgr {
  std::jmp_buf jump;
  char text[JMSG_LENGTH_MAX];
};

// To where inSteps() waits; libjpeg gives no other way out.
[[noreturn]] void jump(Errors &errors) {
  std::longjmp(errors.jump, 1); // NOLINT(cert-err52-cpp)
}

[[noreturn]] void jumpOut(j_common_ptr jpeg) {
  auto *errors = static_cast<Errors *>(jpeg->err);
  errors->format_message(jpeg, errors->text);
  jump(*errors);
}

// Of the faults that libjpeg would paint over, those of the pixels are errors.
void judgeMessage(j_common_ptr jpeg, int level) {
  const int code = jpeg->err->msg_code;
  if (level < 0 && (code == JWRN_HIT_MARKER || code == JWRN_JPEG_EOF ||
                    code == JWRN_HUFF_BAD_CODE || code == JWRN_MUST_RESYNC))
    jumpOut(jpeg);
}

void countScans(j_common_ptr jpeg) {
  if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number <= mostScans)
    return;
  auto *errors = static_cast<Errors *>(jpeg->err);
  std::strcpy(errors->text, "too many scans");
  jump(*errors);
}

class Jpeg {
public:
  explicit Jpeg(std::string_view bytes) : jpeg_() {
    jpeg_.err = jpeg_std_error(&errors_);
    errors_.error_exit = jumpOut;
    errors_.emit_message = judgeMessage;
    progress_.progress_monitor = countScans;
    inSteps([&](j_decompress_ptr jpeg) {
      jpeg_create_decompress(jpeg);
      jpeg->progress = &progress_;
      jpeg_mem_src(jpeg, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
    });
  }
  ~Jpeg() { jpeg_destroy_decompress(&jpeg_); }
  Jpeg(const Jpeg &) = delete;
  Jpeg &operator=(const Jpeg &) = delete;

  /// Calls work(jpeg). It holds nothing that would have to be released where a call in it jumps
  /// away. Throws FileError then.
  template <class Work>
  void inSteps(const Work &work) {
    if (!succeeds(work))
      throw FileError(std::string("JPEG: ") + errors_.text);
  }

  const jpeg_decompress_struct &get() const { return jpeg_; }

private:
  template <class Work>
  bool succeeds(const Work &work) {
    if (setjmp(errors_.jump) != 0) // NOLINT(cert-err52-cpp)
      return false;
    work(&jpeg_);
    return true;
  }

  Errors errors_;
  jpeg_progress_mgr progress_ = {};
  jpeg_decompress_struct jpeg_;
};

} // namespace

Decoded decodeJpeg(std::string_view bytes) {
  constexpr std::uint64_t blocksOfOneBit = 1536; // 64 pixels of three bytes for a bit
  Jpeg file(bytes);
  file.inSteps([](j_decompress_ptr jpeg) {
    jpeg_read_header(jpeg, TRUE);
    const bool isGrey = jpeg->jpeg_color_space == JCS_GRAYSCALE;
    jpeg->out_color_space = isGrey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_calc_output_dimensions(jpeg);
  });
  const jpeg_decompress_struct &header = file.get();
  const int nbands = header.out_color_components;
  Decoded decoded = {
      imageFor({header.image_width, header.image_height, nbands, 8}, bytes.size(), blocksOfOneBit)};
  Image &image = decoded.image;
  std::vector<unsigned char> row(static_cast<std::size_t>(image.ncols()) * nbands);
  file.inSteps([&](j_decompress_ptr jpeg) {
    unsigned char *at = row.data();
    jpeg_start_decompress(jpeg);
    for (int y = 0; y < image.nrows(); ++y) {
      jpeg_read_scanlines(jpeg, &at, 1);
      storeSamples<unsigned char>(at, nbands, image, {0, y, image.ncols(), 0, nbands});
    }
    jpeg_finish_decompress(jpeg);
  });
  return decoded;
}

} // namespace seedforest::tools
