// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Forest transforms, distance transforms, spanning trees, proofs.

#include "arrays.h"
#include "bindings.h"
#include "functions.h"

#include <pybind11/stl.h>

namespace seedforest::python {

namespace {

// A mask is an image or None.
class OptionalImage {
public:
  explicit OptionalImage(const py::object &object) {
    if (!object.is_none())
      image_ = imageOf(object, owner_);
  }
  const Image *get() const { return image_ ? &image_ : nullptr; }

private:
  py::object owner_;
  Image image_;
};

ForestOptions optionsOf(const Adjacency &adjacency, bool greatest, std::optional<int> maxCost,
                        const OptionalImage &mask) {
  return {adjacency, greatest ? Best::greatest : Best::least, maxCost, mask.get()};
}

Forest watershedOf(const Image &image, const Roots &roots, const Adjacency &adjacency,
                   std::optional<int> maxCost, const py::object &mask) {
  const OptionalImage inside(mask);
  const ForestOptions options = optionsOf(adjacency, false, maxCost, inside);
  const Unlocked work;
  return watershed(image, roots, options);
}

Forest forestOf(const Image &image, const Roots &roots, const py::object &cost,
                const py::object &weight, const Adjacency &adjacency, bool greatest,
                std::optional<int> maxCost, const py::object &mask) {
  const OptionalImage inside(mask);
  const ForestOptions options = optionsOf(adjacency, greatest, maxCost, inside);
  return withFunctions(image, cost, weight, [&](const Image &pixels, auto &c, auto &w) {
    return forest(pixels, roots, c, w, options);
  });
}

Forest scaledForestOf(const Image &image, const Roots &roots, const py::object &cost,
                      const py::object &weight, const Adjacency &adjacency,
                      const py::object &mask) {
  const OptionalImage inside(mask);
  const ForestOptions options = optionsOf(adjacency, false, std::nullopt, inside);
  return withFunctions(image, cost, weight, [&](const Image &pixels, auto &c, auto &w) {
    return scaledForest(pixels, roots, c, w, options);
  });
}

SpanningTree spanningTreeOf(const Image &image, const py::object &weight,
                            const Adjacency &adjacency) {
  return withFunctions(image, py::str("max"), weight, [&](const Image &pixels, auto &, auto &w) {
    return spanningTree(pixels, w, adjacency);
  });
}

// The pixel and the sentence, or None.
py::object told(const std::optional<Violation> &violation) {
  if (!violation.has_value())
    return py::none();
  return py::make_tuple(violation->pixel, violation->sentence);
}

py::object verifyOf(Image &labels, Image &costs, Image &predecessors, const Image &image,
                    const Roots &roots, const py::object &cost, const py::object &weight,
                    const Adjacency &adjacency, bool greatest, std::optional<int> maxCost,
                    const py::object &mask) {
  const OptionalImage inside(mask);
  const ForestOptions options = optionsOf(adjacency, greatest, maxCost, inside);
  const Forest grown = {std::move(labels), std::move(costs), std::move(predecessors)};
  return told(withFunctions(image, cost, weight, [&](const Image &pixels, auto &c, auto &w) {
    return verify(grown, pixels, roots, c, w, options);
  }));
}

py::object verifyWatershed(Image &labels, Image &costs, Image &predecessors, const Image &image,
                           const Roots &roots, const Adjacency &adjacency, const py::object &mask) {
  const OptionalImage inside(mask);
  const ForestOptions options = optionsOf(adjacency, false, std::nullopt, inside);
  const Forest grown = {std::move(labels), std::move(costs), std::move(predecessors)};
  const auto violation = [&] {
    const Unlocked work;
    return verify(grown, image, roots, options);
  }();
  return told(violation);
}

// The path as a column of pixels.
py::array pathOf(const py::object &predecessors, int pixel) {
  py::object owner;
  Forest forest;
  forest.predecessors = imageOf(predecessors, owner);
  return tableOf(forest.path(pixel), 1);
}

py::class_<ArcWeights> bindWeights(py::module_ &module) {
  const auto weighing = [](ArcWeights (*function)(const Image &, const Adjacency &)) {
    return [function](const Image &image, const Adjacency &adjacency) {
      return function(image, adjacency);
    };
  };
  module.def("euclidean_weights", weighing(&euclideanWeights), unlocked());
  module.def("gaussian_weights", weighing(&gaussianWeights), unlocked());
  module.def("step_weights", weighing(&stepWeights), unlocked());
  module.def("watershed_weights", weighing(&watershedWeights), unlocked());
  return py::class_<ArcWeights>(module, "ArcWeights")
      .def_property_readonly("shape",
                             [](const ArcWeights &weights) {
                               const Image &image = weights.image;
                               return py::make_tuple(image.nbands(), image.nrows(), image.ncols());
                             })
      .def("array", [](const ArcWeights &weights,
                       const py::args &) { return arrayOf(weights.image.copy()); })
      .def("forest",
           [](const ArcWeights &weights, const Roots &roots, const py::object &cost, int maxCost) {
             const ifPathCostFn function = named(costNames(), cost, "cost");
             const Unlocked work;
             return forest(weights, roots, function, maxCost);
           })
      .def("scaled_forest", [](const ArcWeights &weights, const Roots &roots,
                               const py::object &cost, const Image &mask) {
        const ifPathCostFn function = named(costNames(), cost, "cost");
        const Unlocked work;
        return scaledForest(weights, roots, function, mask);
      });
}

} // namespace

void bindForests(py::module_ &module) {
  module.def("watershed", &watershedOf);
  module.def("forest", &forestOf);
  module.def("scaled_forest", &scaledForestOf);
  module.def("verify", &verifyOf);
  module.def("verify_watershed", &verifyWatershed);
  module.def("path", &pathOf);
  bindWeights(module);
  module.def(
      "distance_forest",
      [](int nrows, int ncols, const Roots &roots, const Adjacency &adjacency) {
        return distanceTransform(Image(ncols, nrows, 0), roots, adjacency);
      },
      unlocked());
  module.def(
      "nearest_roots",
      [](int nrows, int ncols, const Roots &roots) {
        return exactDistanceTransform(Image(ncols, nrows, 0), roots);
      },
      unlocked());
  module.def(
      "nearest_outside",
      [](const Image &shape) {
        return exactDistanceTransform(shape, seedforest::rootsOf(complement(shape)));
      },
      unlocked());
  module.def("spanning_tree", &spanningTreeOf);
  module.def(
      "cut",
      [](Image &costs, Image &predecessors, double fraction) {
        return SpanningTree{std::move(costs), std::move(predecessors)}.cut(fraction);
      },
      unlocked());
  const auto displacements = [](const Adjacency &adjacency) {
    std::vector<int> values;
    for (const auto [dx, dy] : adjacency.displacements())
      values.insert(values.end(), {dy, dx});
    return tableOf(values, 2);
  };
  module.def("disc", [displacements](int r2) { return displacements(Adjacency::disc(r2)); });
  module.def("window", [displacements](int r) { return displacements(Adjacency::window(r)); });
}

} // namespace seedforest::python
