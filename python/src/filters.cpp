// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Morphology, connected filters, fuzzy connectedness.

#include "arrays.h"
#include "bindings.h"

#include <pybind11/stl.h>

namespace seedforest::python {

void bindFilters(py::module_ &module) {
  module.def("dilation", &dilate, unlocked());
  module.def("erosion", &erode, unlocked());
  module.def("opening", &open, unlocked());
  module.def("closing", &close, unlocked());
  module.def(
      "alternating_filter",
      [](const Image &image, int steps, bool closeFirst) {
        return alternatingFilter(image, steps, closeFirst ? First::close : First::open);
      },
      unlocked());
  module.def("gradient", &gradient, unlocked());

  module.def(
      "reconstruction",
      [](const Image &image, const Image &marker, bool dual) {
        return dual ? reconstructDual(image, marker) : reconstruct(image, marker);
      },
      unlocked());
  module.def(
      "reconstruction_from_roots",
      [](const Image &image, const Roots &roots, bool dual, bool local) {
        if (local)
          return dual ? reconstructDualLocally(image, roots) : reconstructLocally(image, roots);
        return dual ? reconstructDual(image, roots) : reconstruct(image, roots);
      },
      unlocked());
  module.def("area_opening", &areaOpen, unlocked());
  module.def("area_closing", &areaClose, unlocked());
  module.def("level", py::overload_cast<const Image &, const Image &>(&level), unlocked());
  module.def("level_from_roots",
             py::overload_cast<const Image &, const Image &, const Roots &>(&level), unlocked());

  module.def(
      "fuzzy_connectedness",
      [](const Image &image, const Roots &roots, const std::vector<std::pair<int, int>> &list,
         const Adjacency &adjacency) {
        std::vector<FuzzyObject> objects;
        objects.reserve(list.size());
        for (const auto &[mean, sigma] : list)
          objects.push_back({mean, sigma});
        return fuzzyConnectedness(image, roots, objects, adjacency);
      },
      unlocked());
  module.def("fuzzy_connectedness_of_links",
             [](const py::sequence &list, const Roots &roots, const Adjacency &adjacency) {
               std::vector<Image> links;
               std::vector<py::object> owners(list.size());
               for (std::size_t o = 0; o < owners.size(); ++o)
                 links.push_back(imageOf(py::object(list[o]), owners[o]));
               const Unlocked work;
               return fuzzyConnectedness(links, roots, adjacency);
             });
}

} // namespace seedforest::python
