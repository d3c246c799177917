// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/color.hpp"

#include "base/report.h"
#include "detail/quietly.h"
#include "ift/regions/ifFeatures.h"
#include "image/imColor.h"
#include "image/imVisual.h"
#include "seedforest/pictures.hpp"

namespace seedforest {

using namespace detail;

namespace {

using Conversion = void (*)(const imImage *from, imImage *to);

Image converted(Conversion conversion, const Image &from, ImageType type) {
  return quietly([&] {
    requireBands("a conversion of colours", recordOf(from), 3);
    Image to = like(from, 3, type);
    conversion(from.get(), to.get());
    return to;
  });
}

Image toRgb(Conversion conversion, const Image &from) {
  Image rgb = converted(conversion, from, ImageType::color);
  rgb.setMaxValue(255);
  return rgb;
}

Image toComputed(Conversion conversion, const Image &from) {
  return converted(conversion, from, ImageType::xyz);
}

} // namespace

Image rgbToXyz(const Image &rgb) {
  return toComputed(imRgb2xyz, rgb);
}

Image xyzToRgb(const Image &xyz) {
  return toRgb(imXyz2rgb, xyz);
}

Image xyzToLab(const Image &xyz) {
  return toComputed(imXyz2lab, xyz);
}

Image labToXyz(const Image &lab) {
  return toComputed(imLab2xyz, lab);
}

Image xyzToLuv(const Image &xyz) {
  return toComputed(imXyz2luv, xyz);
}

Image luvToXyz(const Image &luv) {
  return toComputed(imLuv2xyz, luv);
}

Image rgbToYcbcr(const Image &rgb) {
  return toComputed(imRgb2ycbcr, rgb);
}

Image ycbcrToRgb(const Image &ycbcr) {
  return toRgb(imYcbcr2rgb, ycbcr);
}

Image rgbToHsv(const Image &rgb) {
  return toComputed(imRgb2hsv, rgb);
}

Image hsvToRgb(const Image &hsv) {
  return toRgb(imHsv2rgb, hsv);
}

Image rgbToLab(const Image &rgb) {
  return toComputed(imRgb2lab, rgb);
}

Image labToRgb(const Image &lab) {
  return toRgb(imLab2rgb, lab);
}

Image rgbToLuv(const Image &rgb) {
  return toComputed(imRgb2luv, rgb);
}

Image luvToRgb(const Image &luv) {
  return toRgb(imLuv2rgb, luv);
}

Image greyToRgb(const Image &grey) {
  return quietly([&] {
    Image rgb = like(grey, 3, ImageType::color);
    imPgm2rgb(grey.get(), rgb.get());
    rgb.setMaxValue(255);
    return rgb;
  });
}

Image overlay(const Image &image, const Image &labels, const Color &color) {
  return quietly([&] {
    return made(imShowSegm(recordOf(image), recordOf(labels), color.red, color.green, color.blue));
  });
}

Image highlight(const Image &image, const Image &mask, const Color &color) {
  return quietly([&] {
    return made(
        imHighlightElements(recordOf(image), recordOf(mask), color.red, color.green, color.blue));
  });
}

Image averageColors(const Image &image, const Image &labels) {
  return quietly([&] {
    Image result = alike(image);
    ifAverageColor(image.get(), result.get(), recordOf(labels));
    result.setMaxValue(image.maxValue());
    return result;
  });
}

Image paintCircles(const Image &squaredRadii) {
  return quietly([&] { return made(imPaintCircles(recordOf(squaredRadii))); });
}

} // namespace seedforest
