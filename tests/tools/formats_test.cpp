// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Image files: every format at every depth there and back, and files that are damaged or lie about
// their size. Another library judges the files in judge_formats.py.

#include "formats.h"
#include "support.h"

#include <algorithm>
#include <cstdint>

#ifdef SEEDFOREST_HAVE_JPEG
#include <jpeglib.h>
#endif

namespace {

using namespace seedforest;
using namespace seedforest::tools;

const std::vector<std::string> endings = {
    "pgm",
#ifdef SEEDFOREST_HAVE_PNG
    "png",
#endif
#ifdef SEEDFOREST_HAVE_TIFF
    "tif",
#endif
};

Image randomPicture(std::mt19937 &random, int ncols, int nrows, int nbands, int largest) {
  Image image(ncols, nrows, nbands);
  for (int b = 0; b < nbands; ++b)
    for (int &value : image.pixels(b))
      value = pick(random, 0, largest);
  image.at(0, 0) = largest;
  return image;
}

// The line with which a call throws a FileError; empty where it does not.
template <class Call>
std::string refusalOf(Call call) {
  try {
    call();
  } catch (const FileError &error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    return error.what();
  }
  return "";
}

void expectRefused(const std::string &bytes, const std::string &why) {
  const std::string line = refusalOf([&] { decodeImage(bytes); });
  EXPECT_NE(line.find(why), std::string::npos) << '"' << line << '"';
  EXPECT_NE(line, "") << why;
}

TEST(Formats, ThereAndBack) {
  std::mt19937 random(1);
  for (const std::string &ending : endings)
    for (const int nbands : {1, 3})
      for (const int largest : {1, 255, 256, 65535, 65536, maxInt}) {
        SCOPED_TRACE(ending + " " + std::to_string(nbands) + " " + std::to_string(largest));
        const Image image = randomPicture(random, 11, 6, nbands, largest);
        const std::string path = "x." + ending;
        if (largest > 65535 && ending != "tif") {
          EXPECT_NE(refusalOf([&] { encodeImage(image, path); }).find("65535"), std::string::npos);
          continue;
        }
        const Decoded decoded = decodeImage(encodeImage(image, path));
        EXPECT_TRUE(decoded.image == image);
        EXPECT_EQ(decoded.note, "");
        EXPECT_EQ(decoded.image.maxValue(), largest <= 255 ? 255 : std::max(largest, 65535));
        const ImageType grey = largest <= 255 ? ImageType::grey : ImageType::ascii;
        EXPECT_EQ(decoded.image.type(), nbands == 3 ? ImageType::color : grey);
      }
}

TEST(Formats, WhatCannotBeWritten) {
  Image negative(2, 1);
  negative.at(1, 0) = -1;
  EXPECT_NE(refusalOf([&] { encodeImage(negative, "x.pgm"); }), "");
  const Image image(2, 1);
  for (const std::string path : {"x.jpg", "x", "x.png/y", "x.gif", ".", ""})
    EXPECT_NE(refusalOf([&] { encodeImage(image, path); }), "") << path;
  EXPECT_EQ(encodeImage(image, "-"), encodeImage(image, "a.b/X.PnM"));
}

TEST(Formats, WidePnm) {
  const std::string grey("P5 # two\n2 # bytes\n1\n1000\n\x01\x02\x00\x03", 30);
  const Decoded decoded = decodeImage(grey);
  EXPECT_EQ(decoded.image.at(0, 0), 258);
  EXPECT_EQ(decoded.image.at(1, 0), 3);
  EXPECT_EQ(decoded.image.maxValue(), 1000);
  expectRefused(grey.substr(0, 29), "3 bytes cannot hold 2 x 1 pixels");
  expectRefused("P5 99999 99999 65535\n", "impossible size");
  expectRefused("P6 40000 40000 65535\n", "cannot hold");
  expectRefused("P2 40000 40000 255\n1 2 3", "cannot hold");
  expectRefused("P4 1 1\n0", "no image");
  expectRefused("P5", "");
  expectRefused("", "no image");
}

#ifdef SEEDFOREST_HAVE_TIFF

TEST(Formats, SignedTiff) {
  const std::pair<int, int> fields[] = {{256, 4}, {257, 1}, {258, 8}, {262, 1},
                                        {273, 8}, {279, 4}, {339, 2}}; // width .. sample format
  std::string file("II*\0\x0c\0\0\0\x01\x7f\x80\xff\x07\0", 14);
  for (const auto &[tag, value] : fields)
    for (const int part : {tag, 3, 1, 0, value, 0}) { // 16 bits each, the least significant first
      file += static_cast<char>(part % 256);
      file += static_cast<char>(part / 256);
    }
  const Image image = decodeImage(file + std::string(4, '\0')).image;
  EXPECT_EQ(bandOf(image.get()), (Matrix{{1, 127, -128, -1}}));
  EXPECT_EQ(image.maxValue(), 127);
}

#endif

#ifdef SEEDFOREST_HAVE_JPEG

std::string makeJpeg(int size, bool isProgressive) {
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  unsigned char *bytes = nullptr;
  unsigned long count = 0;
  jpeg_mem_dest(&jpeg, &bytes, &count);
  jpeg.image_width = jpeg.image_height = static_cast<JDIMENSION>(size);
  jpeg.input_components = 3;
  jpeg.in_color_space = JCS_RGB;
  jpeg_set_defaults(&jpeg);
  if (isProgressive)
    jpeg_simple_progression(&jpeg);
  jpeg_start_compress(&jpeg, TRUE);
  std::vector<unsigned char> row(static_cast<std::size_t>(3 * size), 99);
  for (unsigned char *at = row.data(); jpeg.next_scanline < jpeg.image_height; row[0] ^= 255)
    jpeg_write_scanlines(&jpeg, &at, 1);
  jpeg_finish_compress(&jpeg);
  const std::string file(reinterpret_cast<char *>(bytes), count);
  jpeg_destroy_compress(&jpeg);
  std::free(bytes);
  return file;
}

TEST(Formats, Jpeg) {
  for (const bool isProgressive : {false, true}) {
    const Image image = decodeImage(makeJpeg(20, isProgressive)).image;
    EXPECT_EQ(image.nbands(), 3);
    EXPECT_EQ(image.ncols(), 20);
    EXPECT_NEAR(image.at(19, 19, 1), 99, 2);
  }
}

#endif

// Small files of every format.
std::vector<std::string> samples() {
  std::mt19937 random(2);
  std::vector<std::string> files;
  for (const std::string &ending : endings)
    for (const int largest : {255, 65535})
      files.push_back(encodeImage(randomPicture(random, 9, 5, 3, largest), "x." + ending));
#ifdef SEEDFOREST_HAVE_JPEG
  for (const bool isProgressive : {false, true})
    files.push_back(makeJpeg(20, isProgressive));
#endif
  return files;
}

TEST(Formats, TruncatedFiles) {
  for (const std::string &file : samples())
    for (std::size_t size = 0; size + 2 < file.size();
         ++size) { // JPEG can do without its last mark
      const std::string part = file.substr(0, size);
      ASSERT_NE(refusalOf([&] { decodeImage(part); }), "") << size << " of " << file.size();
    }
}

// Any outcome is right but a crash, a line of another kind or memory that the file cannot fill.
TEST(Formats, DamagedFiles) {
  std::mt19937 random(3);
  for (const std::string &file : samples())
    for (int run = 0; run < 300; ++run) {
      std::string damaged = file;
      for (int i = pick(random, 1, 4); i > 0; --i)
        damaged[static_cast<std::size_t>(pick(random, 3, static_cast<int>(file.size()) - 1))] =
            static_cast<char>(pick(random, 0, 255));
      refusalOf([&] { EXPECT_LE(decodeImage(damaged).image.npixels(), 1 << 24); });
    }
}

void put(std::string &bytes, std::size_t at, std::uint32_t value) { // most significant byte first
  for (int i = 0; i < 4; ++i)
    bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (24 - 8 * i));
}

std::uint32_t crcOf(std::string_view bytes) {
  std::uint32_t crc = 0xffffffff;
  for (const unsigned char byte : bytes) {
    crc ^= byte;
    for (int i = 0; i < 8; ++i)
      crc = crc >> 1 ^ (crc % 2 == 0 ? 0 : 0xedb88320);
  }
  return ~crc;
}

TEST(Formats, SizesThatTheFileCannotHold) {
  const Image image(9, 5);
  for (const std::string &ending : endings) {
    std::string file = encodeImage(image, "x." + ending);
    if (ending == "png")
      for (const std::uint32_t size : {0x7fffffffU, 30000U}) {
        put(file, 16, size); // width and height in the first chunk, then its checksum
        put(file, 20, size);
        put(file, 29, crcOf(std::string_view(file).substr(12, 17)));
        expectRefused(file, "too short for its size");
      }
    if (ending == "tif")
      for (const std::uint32_t size : {0x7fU, 0x400000U}) { // in the least significant bytes first
        for (const char tag : {'\x00', '\x01'}) { // width, length: entries of 2 + 2 + 4 + 4 bytes
          const std::size_t at = file.rfind(std::string({tag, '\x01', '\x03', '\x00'}));
          ASSERT_NE(at, std::string::npos);
          file[at + 2] = '\x04'; // 32 bits
          put(file, at + 8, size);
        }
        expectRefused(file, size == 0x400000 ? "cannot hold" : "impossible size");
        file = encodeImage(image, "x.tif");
      }
  }
#ifdef SEEDFOREST_HAVE_JPEG
  for (const bool isProgressive : {false, true}) {
    std::string file = makeJpeg(20, isProgressive);
    const std::size_t at = file.find(isProgressive ? "\xff\xc2" : "\xff\xc0");
    put(file, at + 5, 0xf000f000);
    expectRefused(file, "impossible size");
    put(file, at + 5, 0x40004000);
    expectRefused(file, "cannot hold");
  }
#endif
}

} // namespace
