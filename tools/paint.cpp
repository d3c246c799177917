// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Pictures of an image with its roots or its regions.

#include "codecs.h"
#include "formats.h"
#include "pixels.h"
#include "program.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <optional>

namespace seedforest::tools {

namespace {

enum class Style { borders, regions, average, roots };

struct Choices {
  std::optional<Style> style = std::nullopt;
  int scale = 1;
};

// Red, green and blue of 0 .. 255; larger values are brought down together.
Image colorsOf(const Image &image) {
  Image colors = image.copy();
  const int largest = std::max(largestValue(image), 255);
  for (int b = 0; b < colors.nbands(); ++b)
    for (int &value : colors.pixels(b))
      value = static_cast<int>(std::int64_t{255} * std::max(value, 0) / largest);
  return colors.nbands() == 3 ? std::move(colors) : greyToRgb(colors);
}

// Each pixel as a square of scale x scale pixels.
Image enlarged(const Image &image, int scale) {
  if (std::max(image.ncols(), image.nrows()) > INT_MAX / scale)
    throw Error("the picture would be too large");
  Image result(image.ncols() * scale, image.nrows() * scale, image.nbands(), image.type());
  for (int b = 0; b < image.nbands(); ++b)
    for (int y = 0; y < result.nrows(); ++y)
      for (int x = 0; x < result.ncols(); ++x)
        result.at(x, y, b) = image.at(x / scale, y / scale, b);
  result.setMaxValue(image.maxValue());
  return result;
}

// A strong colour of a label, the same in every run: neighbouring numbers are far apart on the
// colour circle, by the golden ratio, and change in brightness.
Color colorOf(int label) {
  constexpr std::uint32_t golden = 2654435769; // 2^32 over the golden ratio
  const std::uint32_t turns = static_cast<std::uint32_t>(label) * golden;
  const int hue = static_cast<int>(turns / (std::uint32_t{1} << 16)) * 1536 / 65536;
  const int most = label % 3 == 2 ? 190 : 255;
  const int least = label % 3 == 1 ? 80 : 0;
  const auto wave = [&](int from) {
    const int at = (hue + 1536 - from) % 1536;
    const int height = std::clamp(std::abs(at - 768) - 256, 0, 255);
    return least + (most - least) * height / 255;
  };
  return {wave(0), wave(512), wave(1024)};
}

// Mixes a colour into a pixel, `parts` of four.
void blend(Image &picture, std::size_t p, const Color &color, int parts) {
  const int components[] = {color.red, color.green, color.blue};
  for (int b = 0; b < 3; ++b) {
    int &value = picture.pixels(b)[p];
    value = ((4 - parts) * value + parts * components[b]) / 4;
  }
}

// The label whose border runs through a pixel: its own where the pixel to the right or below has
// another one, or else that pixel's; 0 for none.
int borderAt(const Image &labels, int x, int y) {
  const int own = labels.at(x, y);
  const int right = x + 1 < labels.ncols() ? labels.at(x + 1, y) : own;
  const int below = y + 1 < labels.nrows() ? labels.at(x, y + 1) : own;
  if (right == own && below == own)
    return 0;
  return own != 0 ? own : std::max(right, below);
}

Image paintRegions(Image picture, const Image &labels) {
  std::size_t p = 0;
  for (int y = 0; y < labels.nrows(); ++y)
    for (int x = 0; x < labels.ncols(); ++x, ++p) {
      const int border = borderAt(labels, x, y);
      const int label = border != 0 ? border : labels.at(x, y);
      if (label != 0)
        blend(picture, p, colorOf(label), border != 0 ? 4 : 1);
    }
  return picture;
}

// Crosses of five pixels, or what is left of them beside others.
Image paintSpots(Image picture, const Image &labels) {
  constexpr int cross = 1; // squared radius
  const Image spots = dilate(labels, cross);
  const std::span<const int> label = spots.pixels();
  for (std::size_t p = 0; p < label.size(); ++p)
    if (label[p] > 0)
      blend(picture, p, colorOf(label[p]), 4);
  return picture;
}

Image paint(const Image &image, const Image &labels, Style style) {
  switch (style) {
  case Style::borders:
    return overlay(image, labels);
  case Style::regions:
    return paintRegions(image.copy(), labels);
  case Style::average:
    return averageColors(image, labels);
  case Style::roots:
    return paintSpots(image.copy(), labels);
  }
  return {};
}

void makePicture(const Choices &choices, const Operands &operands) {
  requireFormat(operands[2]);
  const Image image = readImage(operands[0]);
  const std::string second = readInput(operands[1]);
  const bool isLabels = isImage(second);
  const Style style = choices.style.value_or(isLabels ? Style::regions : Style::roots);
  if (isLabels == (style == Style::roots))
    throw Error(operands[1] + (isLabels ? ": a label image, where --style roots takes a roots file"
                                        : ": a roots file, where this style takes a label image"));
  Image labels = isLabels ? asLabels(readImage(operands[1], second), operands[1])
                          : paintRoots(image, decodeRoots(second, image));
  requireSize(image, labels, operands[1]);
  const Image colors = colorsOf(image);
  const int scale = choices.scale;
  if (scale == 1)
    return writeImage(paint(colors, labels, style), operands[2]);
  Image large = enlarged(labels, scale);
  writeImage(paint(enlarged(colors, scale), large, style), operands[2]);
}

Program programFor(Choices &choices) {
  return {"seedforest-paint",
          "IMAGE ROOTS|LABELS PICTURE",
          "Paints the roots in a roots file or the regions of a label image over their image. A\n"
          "label has the same colour in every picture.",
          3,
          3,
          {{"style", "STYLE", "borders, regions (default), average; roots, for a roots file",
            [&](const std::string &text) {
              choices.style = static_cast<Style>(
                  wordIn(text, "--style", {"borders", "regions", "average", "roots"}));
            }},
           {"scale", "K", "enlarge K times (1 .. 64); lines and spots stay thin",
            [&](const std::string &text) { choices.scale = numberIn(text, "--scale", 1, 64); }}}};
}

} // namespace

} // namespace seedforest::tools

int main(int argc, char **argv) {
  using namespace seedforest::tools;
  Choices choices;
  return runProgram(programFor(choices), argc, argv,
                    [&](const Operands &operands) { makePicture(choices, operands); });
}
