// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Measurements and graphs of regions.

#include "arrays.h"
#include "bindings.h"
#include "functions.h"

#include <atomic>
#include <memory>

namespace seedforest::python {

namespace {

// A graph and whether a call works on it: reading moves the cursors of its lists, so that neither two
// threads nor a weight's own code may use it at once.
struct SharedGraph {
  explicit SharedGraph(RegionGraph made) : graph(std::move(made)) {}

  RegionGraph graph;
  std::atomic<bool> isUsed = false;
};

using GraphPtr = std::unique_ptr<SharedGraph>;

GraphPtr shared(RegionGraph graph) {
  return std::make_unique<SharedGraph>(std::move(graph));
}

class Use {
public:
  explicit Use(SharedGraph &shared) : shared_(shared) {
    if (shared.isUsed.exchange(true))
      throw Error("the graph is in use, by another thread or by the call of this weight");
  }
  ~Use() { shared_.isUsed = false; }
  Use(const Use &) = delete;
  Use &operator=(const Use &) = delete;

  RegionGraph *operator->() const { return &shared_.graph; }

private:
  SharedGraph &shared_;
};

// A weight between regions: the name of a function of the library or a callable of (u, v).
struct RegionWeight {
  explicit RegionWeight(const py::object &given) {
    static const Names<ifGraphWeightFn> names = {{"euclidean", regionWeight::euclidean},
                                                 {"smaller", regionWeight::smaller},
                                                 {"watershed", regionWeight::watershed}};
    if (PyCallable_Check(given.ptr()) != 0)
      callable = given;
    else
      function = named(names, given, "weight");
  }
  int operator()(const ifGraph *graph, int u, int v) const {
    return function != nullptr ? function(graph, u, v) : called(callable, u, v);
  }

  ifGraphWeightFn function = nullptr;
  py::object callable;
};

template <class Use>
auto withWeight(const py::object &given, Use use) {
  const RegionWeight weight(given);
  if (weight.callable)
    return use(weight);
  const Unlocked work;
  return use(weight.function);
}

// A binding of a function that makes one graph of another.
template <class Make>
auto making(Make make) {
  return [make](SharedGraph &from) { return shared(make(Use(from))); };
}

template <class Make>
auto makingWith(Make make) {
  return [make](SharedGraph &from, const Image &image) { return shared(make(Use(from), image)); };
}

// Columns: the edge's ends and its weight; each edge once.
py::array edgesOf(SharedGraph &from) {
  const Use graph(from);
  std::vector<int> values;
  for (int u = 0; u < graph->size(); ++u)
    for (const auto [v, weight] : graph->edges(u))
      if (v >= u)
        values.insert(values.end(), {u, v, weight});
  return tableOf(values, 3);
}

py::array neighborsOf(SharedGraph &from, int vertex) {
  std::vector<int> values;
  for (const auto [target, weight] : Use(from)->edges(vertex))
    values.insert(values.end(), {target, weight});
  return tableOf(values, 2);
}

py::array dataOf(SharedGraph &from) {
  const Use graph(from);
  const int columns = graph->get() == nullptr ? 0 : graph->get()->dataSize;
  const py::ssize_t shape[] = {graph->size(), columns};
  py::array_t<int> array(shape);
  int *target = array.mutable_data();
  for (int v = 0; v < graph->size(); ++v)
    target = std::ranges::copy(graph->data(v), target).out;
  return array;
}

void setData(SharedGraph &to, const py::array_t<int> &array) {
  const Use graph(to);
  const py::ssize_t columns = graph->get() == nullptr ? 0 : graph->get()->dataSize;
  if (array.ndim() != 2 || array.shape(0) != graph->size() || array.shape(1) != columns)
    throw py::value_error("data has a row for each vertex and as many columns as before");
  const auto values = array.unchecked<2>();
  for (int v = 0; v < graph->size(); ++v)
    for (py::ssize_t i = 0; i < columns; ++i)
      graph->data(v)[static_cast<std::size_t>(i)] = values(v, i);
}

GraphPtr forestOf(SharedGraph &from, const Roots &roots, const py::object &cost,
                  const py::object &weight, int maxCost) {
  const Use graph(from);
  const PathCost pathCost(cost);
  if (pathCost.callable) {
    const RegionWeight regionWeight(weight);
    return shared(graph->forest(roots, pathCost, regionWeight, maxCost));
  }
  return withWeight(
      weight, [&](auto &w) { return shared(graph->forest(roots, pathCost.function, w, maxCost)); });
}

void bindMerging(py::class_<SharedGraph> &graph) {
  graph.def("spanning_tree", [](SharedGraph &from, const py::object &weight) {
    const Use used(from);
    return withWeight(weight, [&](auto &w) { return shared(used->spanningTree(w)); });
  });
  graph.def(
      "merge_to", [](SharedGraph &from, int n) { return Use(from)->mergeTo(n); }, unlocked());
  graph.def(
      "merge_below", [](SharedGraph &from, int weight) { return Use(from)->mergeBelow(weight); },
      unlocked());
  graph.def(
      "cut_into", [](SharedGraph &from, int n) { return Use(from)->cutInto(n); }, unlocked());
  graph.def(
      "cut_above", [](SharedGraph &from, int weight) { return Use(from)->cutAbove(weight); },
      unlocked());
  graph.def("remove_small", [](SharedGraph &from, int area, const py::object &weight) {
    const Use used(from);
    return withWeight(weight, [&](auto &w) { return used->removeSmall(area, w); });
  });
  graph.def("merge_similar", [](SharedGraph &from, int threshold, const py::object &weight) {
    const Use used(from);
    return withWeight(weight, [&](auto &w) { return used->mergeSimilar(threshold, w); });
  });
  graph.def(
      "merge_similar_colors",
      [](SharedGraph &from, const Image &image, int distance) {
        return Use(from)->mergeSimilarColors(image, distance);
      },
      unlocked());
  graph.def("forest", &forestOf);
}

void bindGraph(py::class_<SharedGraph> &graph) {
  graph.def(py::init([](int n, int dataSize) { return shared(RegionGraph(n, dataSize)); }));
  graph.def("size", [](SharedGraph &from) { return Use(from)->size(); });
  graph.def("copy", making([](const Use &from) { return from->copy(); }), unlocked());
  graph.def("edges", &edgesOf);
  graph.def("neighbors", &neighborsOf);
  graph.def("insert_edge", [](SharedGraph &from, int u, int v, int weight) {
    Use(from)->insertEdge(u, v, weight);
  });
  graph.def("remove_edge", [](SharedGraph &from, int u, int v) { Use(from)->removeEdge(u, v); });
  graph.def("data", &dataOf);
  graph.def("set_data", &setData);
  graph.def(
      "labels", [](SharedGraph &from) { return Use(from)->labels(); }, unlocked());
  graph.def("with_averages", makingWith([](const Use &from, const Image &image) {
              return from->withAverages(image);
            }),
            unlocked());
  graph.def("with_volumes", makingWith([](const Use &from, const Image &image) {
              return from->withVolumes(image);
            }),
            unlocked());
  graph.def("with_rescaled", making([](const Use &from) { return from->withRescaled(); }),
            unlocked());
  graph.def("with_areas", making([](const Use &from) { return from->withAreas(); }), unlocked());
  graph.def("with_gradients", making([](const Use &from) { return from->withGradients(); }),
            unlocked());
  graph.def("collapsed", making([](const Use &from) { return from->collapsed(); }), unlocked());
  graph.def(
      "paint", [](SharedGraph &from) { return Use(from)->paint(); }, unlocked());
}

// Columns: label, area, and the average of each band.
py::array measured(const Image &labels, const Image &image) {
  std::vector<int> values;
  {
    const Unlocked work;
    for (const Region &region : measure(labels, image)) {
      values.insert(values.end(), {region.label, region.area});
      values.insert(values.end(), region.averages.begin(), region.averages.end());
    }
  }
  return tableOf(values, 2 + image.nbands());
}

} // namespace

void bindGraphs(py::module_ &module) {
  module.def("measure", &measured);
  module.def("features", &featuresOf, unlocked());
  module.def("with_feature", &withFeature, unlocked());
  module.def(
      "region_graph", [](const Image &labels) { return shared(RegionGraph(labels)); }, unlocked());
  module.def(
      "region_graph_with",
      [](const Image &labels, const Image &image) { return shared(RegionGraph(labels, image)); },
      unlocked());
  py::class_<SharedGraph> graph(module, "RegionGraph");
  bindGraph(graph);
  bindMerging(graph);
}

} // namespace seedforest::python
