// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Path costs and arc weights as they come from Python: the name of a function of the library, the
// address of a compiled one, or a callable.
#pragma once

#include "arrays.h"

#include <map>
#include <string>

namespace seedforest::python {

template <class Function>
using Names = std::map<std::string, Function>;

const Names<ifPathCostFn> &costNames();

/// The function of a name. Throws ValueError, which lists the names.
template <class Function>
Function named(const Names<Function> &names, const py::object &name, const char *what) {
  const auto text = name.cast<std::string>();
  if (const auto found = names.find(text); found != names.end())
    return found->second;
  std::string list;
  for (const auto &[known, function] : names)
    list += (list.empty() ? "'" : ", '") + known + "'";
  throw py::value_error(std::string(what) + " is a function or one of " + list + ", not '" + text +
                        "'");
}

inline bool isAddress(const py::object &object) {
  return py::isinstance<py::int_>(object);
}

template <class Function>
Function atAddress(const py::object &address) {
  return reinterpret_cast<Function>(address.cast<std::uintptr_t>());
}

/// What a callable returns, as a 32-bit integer. Throws the interpreter's exception.
template <class... Arguments>
int called(const py::object &callable, Arguments... arguments) {
  const py::object result = callable(arguments...);
  const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(result.ptr()));
  if (!index)
    throw py::error_already_set();
  int overflow = 0;
  const long long value = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
  if (overflow != 0 || !std::in_range<int>(value))
    throw py::value_error("a cost or weight has 32 bits, and what the function returned does not "
                          "fit");
  return static_cast<int>(value);
}

/// A path cost. An address is that of `int cost(int cost, int weight)`.
struct PathCost {
  explicit PathCost(const py::object &given);
  int operator()(int cost, int weight) const {
    return function != nullptr ? function(cost, weight) : called(callable, cost, weight);
  }

  ifPathCostFn function = nullptr;
  py::object callable;
};

/// The weight of an arc between pixels. An address is that of `int weight(const int *pixels, int p,
/// int q)`, which is given all bands, one after the other.
class ArcWeight {
public:
  ArcWeight(const py::object &given, const Image &image);
  int operator()(const imImage *image, int p, int q) const {
    if (native_ != nullptr)
      return native_(pixels_, p, q);
    return function != nullptr ? function(image, p, q) : called(callable, p, q);
  }

  ifArcWeightFn function = nullptr;
  py::object callable;

private:
  void flatten(const Image &image);

  int (*native_)(const int *, int, int) = nullptr;
  const int *pixels_ = nullptr;
  std::vector<int> flat_;
};

/// Calls use(image, cost, weight), with the lock where one of the functions is Python's; these get a
/// copy of the image, which they cannot change.
template <class Use>
auto withFunctions(const Image &image, const py::object &givenCost, const py::object &givenWeight,
                   Use use) {
  const PathCost cost(givenCost);
  const ArcWeight weight(givenWeight, image);
  if (cost.callable || weight.callable)
    return use(image.copy(), cost, weight);
  const Unlocked work;
  if (cost.function != nullptr && weight.function != nullptr)
    return use(image, cost.function, weight.function);
  return use(image, cost, weight);
}

} // namespace seedforest::python
