// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Files of images and roots, and seeds made from images.

#include "arrays.h"
#include "bindings.h"

#include <pybind11/stl.h>

namespace seedforest::python {

namespace {

// An image without pixels in memory, for functions that need no more than a size.
Image sized(int nrows, int ncols) {
  return {ncols, nrows, 0};
}

// The interpreter's bytes, without its lock.
std::string encoded(const Image &image) {
  const Unlocked work;
  return encode(image);
}

} // namespace

void bindFiles(py::module_ &module) {
  module.def("read", &read, unlocked());
  module.def("decode", &decode, unlocked());
  module.def("write", &write, unlocked());
  module.def("encode", [](const Image &image) { return py::bytes(encoded(image)); });

  module.def(
      "read_roots",
      [](const std::string &path, int nrows, int ncols) {
        return readRoots(path, sized(nrows, ncols));
      },
      unlocked());
  module.def(
      "decode_roots",
      [](const std::string &text, int nrows, int ncols) {
        return decodeRoots(text, sized(nrows, ncols));
      },
      unlocked());
  module.def(
      "write_roots",
      [](const Roots &roots, int nrows, int ncols, const std::string &path) {
        writeRoots(roots, sized(nrows, ncols), path);
      },
      unlocked());
  module.def("encode_roots", [](const Roots &roots, int nrows, int ncols) {
    return py::bytes(encodeRoots(roots, sized(nrows, ncols)));
  });
  module.def("roots_of", &seedforest::rootsOf, unlocked());
  module.def(
      "paint_roots",
      [](const Roots &roots, int nrows, int ncols) {
        return paintRoots(sized(nrows, ncols), roots);
      },
      unlocked());

  module.def(
      "frame_roots",
      [](int nrows, int ncols, std::optional<int> label) {
        const Image image = sized(nrows, ncols);
        return label.has_value() ? frameRoots(image, *label) : frameRoots(image);
      },
      unlocked());
  module.def("regional_maxima", masking(&regionalMaxima), unlocked());
  module.def("regional_minima", masking(&regionalMinima), unlocked());
  module.def("regional_maxima_roots", &regionalMaximaRoots, unlocked());
  module.def("regional_minima_roots", &regionalMinimaRoots, unlocked());
  module.def("h_maxima", masking(&hMaxima), unlocked());
  module.def("h_minima", masking(&hMinima), unlocked());
  module.def("markers", &markers, unlocked());
  module.def("cell_roots", &cellRoots, unlocked());
  module.def(
      "contour_roots",
      [](const Image &shapes, bool byObject) {
        return contourRoots(shapes, byObject ? BorderLabels::objects : BorderLabels::places);
      },
      unlocked());
  module.def("skeleton_roots", &skeletonRoots, unlocked());
  module.def("skeleton_roots_by_curve", &skeletonRootsByCurve, unlocked());
}

} // namespace seedforest::python
