// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Shapes: components, contours, skeletons, shapes that touch.

#include "arrays.h"
#include "bindings.h"

namespace seedforest::python {

void bindShapes(py::module_ &module) {
  module.def("components", &components, unlocked());
  module.def("relabel", &relabel, unlocked());
  module.def("flat_zones", masking(&flatZones), unlocked());
  module.def("inner_border", masking(&innerBorder), unlocked());
  module.def("contours", &contours, unlocked());
  module.def("contour_differences", &contourDifferences, unlocked());
  module.def(
      "skeleton",
      [](const Image &shape, int scale, int side) {
        return skeleton(shape, scale, static_cast<Side>(side));
      },
      unlocked());
  module.def("shape_of", masking(&shapeOf), unlocked());
  module.def("shortest_path", &shortestPath, unlocked());
  module.def("split_touching", &splitTouching, unlocked());
}

} // namespace seedforest::python
