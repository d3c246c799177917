// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Operations on each pixel, colour spaces, pictures.

#include "arrays.h"
#include "bindings.h"

#include <pybind11/stl.h>

#include <array>

namespace seedforest::python {

namespace {

Color colorOf(const std::array<int, 3> &components) {
  return {components[0], components[1], components[2]};
}

void bindColors(py::module_ &module) {
  module.def("rgb2xyz", &rgbToXyz, unlocked());
  module.def("xyz2rgb", &xyzToRgb, unlocked());
  module.def("xyz2lab", &xyzToLab, unlocked());
  module.def("lab2xyz", &labToXyz, unlocked());
  module.def("xyz2luv", &xyzToLuv, unlocked());
  module.def("luv2xyz", &luvToXyz, unlocked());
  module.def("rgb2ycbcr", &rgbToYcbcr, unlocked());
  module.def("ycbcr2rgb", &ycbcrToRgb, unlocked());
  module.def("rgb2hsv", &rgbToHsv, unlocked());
  module.def("hsv2rgb", &hsvToRgb, unlocked());
  module.def("rgb2lab", &rgbToLab, unlocked());
  module.def("lab2rgb", &labToRgb, unlocked());
  module.def("rgb2luv", &rgbToLuv, unlocked());
  module.def("luv2rgb", &luvToRgb, unlocked());
  module.def("gray2rgb", &greyToRgb, unlocked());
}

} // namespace

void bindPixels(py::module_ &module) {
  bindColors(module);
  module.def("threshold", masking(&threshold), unlocked());
  module.def("band_pass", &bandPass, unlocked());
  module.def("negative", &negative, unlocked());
  module.def("complement", masking(&complement), unlocked());
  module.def("shape_difference", masking(&shapeDifference), unlocked());
  module.def("shape_union", masking(&shapeUnion), unlocked());
  module.def("masked", &masked, unlocked());
  module.def("add_border", &addBorder, unlocked());
  module.def("remove_border", &removeBorder, unlocked());
  module.def("upper_envelope", &upperEnvelope, unlocked());
  module.def("lower_envelope", &lowerEnvelope, unlocked());
  module.def("add", &add, unlocked());
  module.def("subtract", &subtract, unlocked());
  module.def("histogram", [](const Image &image, const Image &mask) {
    const std::vector<float> counts = [&] {
      const Unlocked work;
      return histogram(image, mask);
    }();
    return py::array_t<float>(static_cast<py::ssize_t>(counts.size()), counts.data());
  });

  module.def(
      "overlay",
      [](const Image &image, const Image &labels, const std::array<int, 3> &color) {
        return overlay(image, labels, colorOf(color));
      },
      unlocked());
  module.def(
      "highlight",
      [](const Image &image, const Image &mask, const std::array<int, 3> &color) {
        return highlight(image, mask, colorOf(color));
      },
      unlocked());
  module.def("average_colors", &averageColors, unlocked());
  module.def("paint_circles", masking(&paintCircles), unlocked());
}

} // namespace seedforest::python
