// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The readers and writers of the companion programs: the input is an image file of any format.

#include "tools/formats.h"

#include "harness.h"
#include "tools/codecs.h"

using namespace seedforest::tools;

// An image that was read is written in each format that holds its values, and read again.
static void checkWriting(const seedforest::Image &image) {
  for (const char *path : {"x.pgm", "x.png", "x.tif"}) {
    std::string bytes;
    if (!succeeds([&] { bytes = encodeImage(image, path); })) {
      check(leastValue(image) < 0 || largestValue(image) > 65535, "an image is not written");
      continue;
    }
    check(decodeImage(bytes).image == image, "what was written is another image");
  }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const std::string_view file(reinterpret_cast<const char *>(bytes), size);
  Decoded decoded;
  if (succeeds([&] { decoded = decodeImage(file); }) && decoded.image.npixels() < 1 << 14)
    checkWriting(decoded.image);
  return 0;
}
