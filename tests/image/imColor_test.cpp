// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Expected values were worked out with an independent program, in other words than the library's.
#include "image/imColor.h"

#include "support.h"

#include <algorithm>
#include <array>

namespace {

using Colour = std::array<int, 3>;
using Conversion = void (*)(const imImage *, imImage *);

imImagePtr row(const std::vector<Colour> &colours) {
  imImagePtr image(imCreateImage(3, imTypeColor, static_cast<int>(colours.size()), 1));
  for (std::size_t p = 0; p < colours.size(); ++p)
    for (int b = 0; b < 3; ++b)
      image->band[b][p] = colours[p][b];
  return image;
}

Colour pixel(const imImagePtr &image, int p) {
  return {image->band[0][p], image->band[1][p], image->band[2][p]};
}

// In place, so that a pixel must have been read before it is written.
Colour converted(Conversion conversion, Colour colour) {
  const imImagePtr image = row({colour});
  conversion(image.get(), image.get());
  return pixel(image, 0);
}

TEST(Color, BlackGreysPureHuesAndAMixture) {
  const struct {
    Colour rgb, xyz, lab, luv, ycc, hsv;
  } table[] = {
      // clang-format off
      {{0, 0, 0}, {0, 0, 0}, {-16, 0, 0}, {0, 0, 0}, {0, 128, 128}, {361, 0, 0}},
      {{1, 1, 1}, {61, 64, 69}, {2, -1, -1}, {3, 0, 0}, {0, 128, 128}, {361, 0, 64}},
      {{3, 2, 1}, {137, 137, 80}, {7, -1, 4}, {7, 2, 3}, {2, 127, 128}, {30, 10922, 192}},
      {{255, 255, 255}, {15572, 16384, 17838}, {100, -16, -11}, {100, 0, 0}, {255, 128, 128}, {361, 0, 16384}},
      {{255, 0, 0}, {6757, 3484, 316}, {53, 67, 64}, {53, 174, 37}, {76, 90, 240}, {0, 16384, 16384}},
      {{0, 255, 0}, {5858, 11717, 1952}, {87, -98, 77}, {87, -82, 106}, {149, 53, 34}, {120, 16384, 16384}},
      {{0, 0, 255}, {2956, 1182, 15568}, {32, 69, -119}, {32, -9, -129}, {29, 240, 109}, {240, 16384, 16384}},
      {{200, 100, 51}, {8188, 7564, 4127}, {73, 3, 24}, {73, 44, 37}, {124, 91, 175}, {20, 12206, 12850}},
      // clang-format on
  };
  for (const auto &c : table) {
    SCOPED_TRACE(testing::PrintToString(c.rgb));
    EXPECT_EQ(converted(imRgb2xyz, c.rgb), c.xyz);
    EXPECT_EQ(converted(imXyz2lab, c.xyz), c.lab);
    EXPECT_EQ(converted(imRgb2lab, c.rgb), c.lab);
    const std::string printed = printedBy([&c] {
      EXPECT_EQ(converted(imXyz2luv, c.xyz), c.luv);
      EXPECT_EQ(converted(imRgb2luv, c.rgb), c.luv);
    });
    EXPECT_EQ(printed, "in xyz2luv\nin xyz2luv\n");
    EXPECT_EQ(converted(imRgb2ycbcr, c.rgb), c.ycc);
    EXPECT_EQ(converted(imRgb2hsv, c.rgb), c.hsv);
    for (int b = 0; b < 3; ++b) { // truncation takes 1 away at most
      EXPECT_NEAR(converted(imXyz2rgb, c.xyz)[b], c.rgb[b] - 0.5, 0.6);
      EXPECT_NEAR(converted(imHsv2rgb, c.hsv)[b], c.rgb[b] - 0.5, 0.6);
    }
    EXPECT_EQ(converted(imLab2rgb, c.lab), converted(imXyz2rgb, converted(imLab2xyz, c.lab)));
    EXPECT_EQ(converted(imLuv2rgb, c.luv), converted(imXyz2rgb, converted(imLuv2xyz, c.luv)));
  }
}

TEST(Color, EdgesOfTheRules) {
  const struct {
    const char *what;
    Conversion conversion;
    Colour from, to;
  } table[] = {
      {"below 0.005", imXyz2rgb, {25, 0, 0}, {0, 0, 0}},
      {"above 0.005", imXyz2rgb, {26, 0, 0}, {1, 0, 0}},
      {"below 0.995", imXyz2rgb, {5030, 0, 0}, {253, 0, 4}},
      {"above 0.995", imXyz2rgb, {5031, 0, 0}, {255, 0, 4}},
      {"linear roots", imXyz2lab, {145, 145, 145}, {7, -1, -1}},
      {"cube roots", imXyz2lab, {250, 250, 250}, {12, -2, -1}},
      {"linear L", imXyz2luv, {150, 145, 10}, {7, 5, 7}},
      {"cubic L", imXyz2luv, {150, 146, 10}, {8, 5, 8}},
      {"cubic L", imXyz2luv, {300, 300, 300}, {14, 2, 0}},
      {"d of 0", imXyz2luv, {-15, 1, 0}, {0, 0, 0}},
      {"last cube root", imLab2xyz, {7, 0, 0}, {120, 0, 138}},
      {"first line", imLab2xyz, {8, 0, 0}, {137, 0, 157}},
      {"white", imLab2xyz, {100, 0, 0}, {15572, 1, 17838}},
      {"black", imLab2xyz, {-16, 0, 0}, {-275, 0, -315}},
      {"fy above 2", imLab2xyz, {300, -500, 200}, {79811, 14, 91425}},
      {"white", imLuv2xyz, {100, 0, 0}, {15572, 16384, 17838}},
      {"L of 0", imLuv2xyz, {0, 9, 9}, {0, 42, 0}},
      {"red", imLuv2xyz, {53, 175, 37}, {6714, 3448, 336}},
      {"v' near 0", imLuv2xyz, {10, 5, -61}, {0, 184, 0}},
      {"v' small", imLuv2xyz, {10, 5, -60}, {14378, 184, 75419}},
      {"y at 16", imYcbcr2rgb, {16, 128, 128}, {0, 0, 0}},
      {"not clipped", imYcbcr2rgb, {255, 128, 128}, {278, 278, 278}},
      {"red", imYcbcr2rgb, {76, 90, 240}, {248, -6, -6}},
      {"up to 360", imRgb2hsv, {255, 0, 1}, {360, 16384, 16384}},
      {"half to even", imRgb2hsv, {240, 2, 0}, {0, 16384, 15420}},
      {"half to even", imRgb2hsv, {240, 6, 0}, {2, 16384, 15420}},
      {"negative", imRgb2hsv, {-5, -10, -7}, {324, -16384, -321}},
      {"truncated saturation", imRgb2hsv, {100000, 99999, 99998}, {361, 0, 6425098}},
      {"360 is 0", imHsv2rgb, {360, 16384, 16384}, {255, 0, 0}},
      {"sector 0 from above -60", imHsv2rgb, {-59, 16384, 16384}, {255, -250, 0}},
      {"sector 1", imHsv2rgb, {100, 8192, 8192}, {85, 127, 63}},
      {"sector 3", imHsv2rgb, {210, 8192, 16384}, {127, 191, 255}},
      {"sector 5", imHsv2rgb, {359, 8192, 16384}, {255, 127, 129}},
      {"saturates", imRgb2hsv, {1, minInt, minInt}, {0, maxInt, 64}},
      {"saturates", imLab2xyz, {minInt, minInt, maxInt}, {minInt, -2369100, minInt}},
      {"saturates", imHsv2rgb, {0, minInt, maxInt}, {33423359, maxInt, maxInt}},
  };
  for (const auto &c : table)
    EXPECT_EQ(converted(c.conversion, c.from), c.to) << c.what << testing::PrintToString(c.from);
}

// The quick forms against the formulas with their divisions, a red at a time.
TEST(Color, AllColoursEqualTheirFormulas) {
  std::vector<Colour> colours(256 * 256);
  long faults = 0;
  const auto expect = [&](Conversion conversion, auto formula) {
    const imImagePtr image = row(colours);
    conversion(image.get(), image.get());
    for (int p = 0; p < image->npixels; ++p)
      for (int k = 0; k < 3; ++k)
        faults += image->band[k][p] != static_cast<int>(formula(k, colours[p]));
  };
  const double xyz[3][3] = {
      {0.412453, 0.35758, 0.180423}, {0.212671, 0.71516, 0.072169}, {0.019334, 0.119193, 0.950227}};
  const double ycc[3][3] = {
      {0.299, 0.587, 0.114}, {-37.797, -74.203, 112}, {112, -93.786, -18.214}};
  for (int red = 0; red < 256; ++red) {
    for (int i = 0; i < 256 * 256; ++i)
      colours[i] = {red, i / 256, i % 256};
    expect(imRgb2xyz, [&](int k, Colour c) {
      return (xyz[k][0] * c[0] + xyz[k][1] * c[1] + xyz[k][2] * c[2]) * 16384 / 255;
    });
    expect(imRgb2ycbcr, [&](int k, Colour c) {
      const double sum = ycc[k][0] * c[0] + ycc[k][1] * c[1] + ycc[k][2] * c[2];
      return k == 0 ? sum : sum / 255 + 128;
    });
    expect(imRgb2hsv, [](int k, Colour c) {
      const auto [r, g, b] = c;
      const double max = std::max({r, g, b});
      const double range = max - std::min({r, g, b});
      const double saturation = max == 0 ? 0 : std::trunc(range * 16384 / max);
      const double turned = r == max   ? (g - b) / range
                            : g == max ? 2 + (b - r) / range
                                       : 4 + (r - g) / range;
      const double hue = std::nearbyint(60 * turned + (turned < 0 ? 360 : 0));
      return k == 0 ? saturation == 0 ? 361 : hue : k == 1 ? saturation : max * 16384 / 255;
    });
  }
  EXPECT_EQ(faults, 0);
}

// Tables are for large images, quick forms for blocks of small values: pixels give the same one by
// one, also next to values that are out of all range.
TEST(Color, CompanyMakesNoDifference) {
  std::mt19937 random(3);
  std::vector<Colour> tame, mixed;
  for (int v = -200; v < 18100; ++v) {
    tame.push_back({v, (v * 7 + 5) % 18001, (v * 11 + 3) % 18001});
    mixed.push_back(tame.back());
    if (v % 100 == 0) // one in each block
      std::generate_n(mixed.back().begin(), 3, [&] { return static_cast<int>(random()); });
  }
  for (const Conversion conversion :
       {imRgb2xyz, imXyz2rgb, imXyz2lab, imLab2xyz, imXyz2luv, imLuv2xyz, imRgb2ycbcr, imYcbcr2rgb,
        imRgb2hsv, imRgb2lab, imLab2rgb, imRgb2luv, imLuv2rgb})
    for (const auto &colours : {tame, mixed})
      printedBy([&] {
        const imImagePtr image = row(colours);
        conversion(image.get(), image.get());
        for (int p = 0; p < image->npixels; ++p)
          ASSERT_EQ(pixel(image, p), converted(conversion, colours[p]));
      });
}

TEST(Color, GreyWithAHueStopsTheWayBack) {
  std::vector<Colour> hsv(1000, {120, 16384, 16384});
  hsv[2] = {361, 0, 16384};
  hsv[3] = {361, 5, 16384}; // no such hue: left alone, as -60 is
  hsv[4] = {-60, 5, 16384};
  hsv[700] = {100, 0, 7};
  const imImagePtr rgb = row(std::vector<Colour>(1000, {1, 2, 3}));
  EXPECT_EQ(errorsOf([&] { imHsv2rgb(row(hsv).get(), rgb.get()); }),
            "in hsv2rgb: saturation is 0 and hue is defined!\n");
  EXPECT_EQ(pixel(rgb, 2), (Colour{255, 255, 255}));
  for (const int p : {0, 1, 5, 127, 128, 639, 640, 699})
    EXPECT_EQ(pixel(rgb, p), (Colour{0, 255, 0})) << p;
  for (const int p : {3, 4, 700, 701, 768, 999})
    EXPECT_EQ(pixel(rgb, p), (Colour{1, 2, 3})) << p;
}

TEST(Color, OnlyTheWaysToRgbFromXyzSetTheMaximum) {
  const imImagePtr image = row({{361, 0, 0}});
  for (const Conversion conversion : {imXyz2rgb, imLab2rgb, imLuv2rgb, imRgb2lab, imHsv2rgb}) {
    image->maxValue = 9;
    conversion(image.get(), image.get());
    EXPECT_EQ(image->maxValue, conversion == imRgb2lab || conversion == imHsv2rgb ? 9 : 255);
  }
}

} // namespace
