// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imIO.h"

#include "image/detail/parseImage.h"
#include "support.h"

#include <algorithm>

using namespace std::string_literals;

namespace {

using seedforest::detail::parseImage;

imImagePtr parse(std::string_view bytes) {
  seedforest::detail::Text text(bytes);
  return parseImage(text, "file");
}

// The line of the error that reading the text ends in.
std::string errorOf(seedforest::detail::Text &&text) {
  const seedforest::ThrowingErrors throwing;
  try {
    parseImage(text, "file");
  } catch (const seedforest::Error &error) {
    return std::string(error.what()) + "\n";
  }
  return "none";
}

TEST(ReadImage, Ascii) {
  // the maximum is as declared, whatever the pixels hold
  const char *file = "P2\n# one comment\n3 2\n5\n1 -2\t300\n 99999999999 0007\n8 9";
  expectImage("", parse(file).release(), imTypeAscii, 5, {{{1, -2, 300}, {maxInt, 7, 8}}});
  // 0 from the first place without a number; a lone sign costs one pixel
  for (const char *samples : {"4 5", "4 5 x6", "4 5 -x6", "4 5 - +"})
    EXPECT_EQ(bandOf(parse("P2 4 1 9 "s + samples)), (Matrix{{4, 5, 0, 0}})) << samples;
  for (const char *samples : {"4 - -7", "4+\n-7 - 8"})
    EXPECT_EQ(bandOf(parse("P2 4 1 9 "s + samples)), (Matrix{{4, 0, -7, 0}})) << samples;
}

TEST(ReadImage, Binary) {
  const std::string grey = "P5 # not white space first, so no comment here\n"
                           "2 2 7\n\0\xff\n9 and more"s;
  expectImage("grey", parse(grey).release(), imTypeGrey, 7, {{{0, 255}, {10, 57}}});
  // exactly one character separates header and samples, and a sample is one byte for any maximum
  EXPECT_EQ(bandOf(parse("P5 2 1 65535\r\nA")), (Matrix{{'\n', 'A'}}));
  expectImage("colour", parse("P6\n2 1\n9\nabcdef").release(), imTypeColor, 9,
              {{{'a', 'd'}}, {{'b', 'e'}}, {{'c', 'f'}}});
}

TEST(ReadImage, FaultyFiles) {
  const struct {
    std::string bytes;
    std::string error; // of our own lines only a part
  } cases[] = {
      {"", "unknown file format; trying to read \n"},
      {"P3 1 1 255 1 2 3", "unknown file format; trying to read P3\n"},
      {std::string(100000, 'w'), "unknown file format; trying to read " + std::string(100000, 'w')},
      {"P5", "imReadImage: file"},
      {"P5 # endless comment 1 1 255 x", "imReadImage: file"},
      {"P5\n#one\n#two\n1 1 255\nx", "imReadImage: file"},
      {"P2 1 1 4294967296 0", "imReadImage: file"},
      {"P2 99999999999 1 1 0", "imReadImage: file"},
      {"P5 0 1 255\n", "imReadImage: file: impossible size 0 x 1"},
      {"P5 65536 32768 255\n", "imReadImage: file: impossible size"},
      {"P6 32768 32768 255\n", "imReadImage: file: impossible size"},
      {"P5 60000 30000 255\nabc", "error reading file file; expecting 1800000000 pixels, read 3\n"},
      {"P6 2 1 255\nabcde", "error reading file file; expecting 6 pixels, read 5\n"},
  };
  for (const auto &c : cases) {
    const std::string error = errorOf(seedforest::detail::Text(c.bytes));
    EXPECT_EQ(error.substr(0, c.error.size()), c.error);
    EXPECT_EQ(errorOf(Pieces(c.bytes, 2)), error);
  }
}

// In whatever pieces a file comes, it is read no further than to its last pixel, or to what ends
// its numbers.
TEST(ReadImage, NoFurtherThanNeeded) {
  for (const std::string bytes :
       {"P2 # a comment\n3 1 9\n1 2 33\n", "P2\n#a\n3 1 9 - x", "P5 3 1 9\nabc", "P6 1 1 9\nabc"})
    for (std::size_t size = 1; size <= bytes.size(); ++size) {
      const std::string more = bytes + std::string(99, '7');
      Pieces pieces(more, size);
      EXPECT_EQ(bandOf(parseImage(pieces, "file")), bandOf(parse(bytes))) << bytes;
      EXPECT_LT(pieces.asked(), bytes.size() + size) << bytes;
    }
}

TEST(ReadImage, AnErrorIsNotTheEnd) {
  for (const std::string bytes : {"P", "P5 1", "P2 1 1 9 ", "P2 2 1 9 1 "})
    EXPECT_EQ(errorOf(Pieces(bytes, 3, true)), "imReadImage: error reading file\n") << bytes;
  EXPECT_EQ(errorOf(Pieces("P5 3 1 9 ab", 3, true)),
            "error reading file file; expecting 3 pixels, read 2\n");
}

TEST(SaveImage, Bytes) {
  const TemporaryFolder folder;
  const std::string path = folder.path("image");
  const auto saved = [&path](const imImagePtr &image) {
    imSaveImage(path.c_str(), image.get());
    return contentsOf(path);
  };
  EXPECT_EQ(saved(makeImage({{300, -1, 7}}, imTypeGrey)), "P5\n3 1\n255\n\x2c\xff\x07");
  EXPECT_EQ(saved(makeImage({{300, -1}, {123456, 0}})),
            "P2\n2 2\n123456\n  300    -1 123456     0 ");
  const imImagePtr line = makeImage({std::vector<int>(16, 1)});
  EXPECT_EQ(saved(line).substr(94), "    1     1 \n"); // a line holds 16 values
  EXPECT_EQ(saved(parse("P6 2 1 9 abcdef")), "P6\n2 1\n255\nabcdef");
  for (const int maximum : {8, -3}) { // a maximum of 0 is set, to 0 at least
    const imImagePtr image = makeImage({{-3, maximum}});
    image->maxValue = 0;
    EXPECT_EQ(saved(image).substr(0, 8), "P2\n2 1\n" + std::to_string(std::max(maximum, 0)));
    EXPECT_EQ(image->maxValue, std::max(maximum, 0));
    image->maxValue = -9; // another stays
    EXPECT_EQ(saved(image).substr(0, 9), "P2\n2 1\n-9");
  }
  const imImagePtr work = blank(1, 1, 1, imTypeWork); // of no file form
  EXPECT_EQ(errorsOf([&] { EXPECT_EQ(saved(work), ""); }), "Could not write image. Unknown type.");
}

TEST(SaveImage, FatalErrors) {
  const imImagePtr image = blank(3, 3, 1, imTypeGrey);
  EXPECT_FATAL(imSaveImage("/dev/full", image.get()), "^error writing image /dev/full\n$");
  image->type = imTypeColor;
  EXPECT_FATAL(imSaveImage("/dev/null", image.get()), "imSaveImage");
}

} // namespace
