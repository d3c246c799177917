// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// NumPy arrays as the interface's values, and back. An image is an array of shape (rows, columns) or
// (bands, rows, columns). Arrays of 8-bit values are images of type grey or color, with the same
// arithmetic as a P5 or P6 file; others hold any values.
#pragma once

#include "seedforest/seedforest.hpp"
#include "unlocked.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <utility>

namespace seedforest::python {

namespace py = pybind11;

/// The arguments of every binding that works without the lock.
using unlocked = py::call_guard<Unlocked>;

/// An image that uses the memory of an int32 array, which `owner` keeps alive, or has a converted
/// copy. maxValue is the largest value, 255 for 8 bits.
/// Throws TypeError: values that are no integers. Throws ValueError: another shape, no pixel, a
/// value beyond 32 bits, a masked array.
Image imageOf(py::handle object, py::object &owner);

/// An array that owns the image's memory, or for several bands a copy of it; int32, and uint8 for
/// types grey and color whose values fit.
py::array arrayOf(Image &&image);

/// An image whose pixels are 0 or something else, as an array of booleans.
struct Mask {
  Image image;
};
py::array arrayOf(Mask &&mask);

/// Roots are a table of int32 with the columns pixel, label and value.
Roots rootsOf(py::handle object);
py::array arrayOf(const Roots &roots);

/// 4, 8 or a table of displacements with the columns row and column.
Adjacency adjacencyOf(py::handle object);

/// A new table of int32 whose rows have `columns` entries.
py::array tableOf(const std::vector<int> &values, int columns);

/// A function that returns a mask, as a binding that returns an array of booleans.
template <class... Arguments>
auto masking(Image (*function)(Arguments...)) {
  return [function](Arguments... arguments) {
    return Mask{function(std::forward<Arguments>(arguments)...)};
  };
}

template <class... Parts>
py::handle tupleOf(Parts &&...parts) {
  return py::make_tuple(std::move(parts)...).release();
}

} // namespace seedforest::python

namespace pybind11::detail {

/// What only goes out.
template <class Value>
struct OutCaster {
  template <class T>
  using cast_op_type = T;
  static constexpr auto name = const_name("numpy.ndarray");
};

template <>
struct type_caster<seedforest::Image> {
  PYBIND11_TYPE_CASTER(seedforest::Image, const_name("numpy.ndarray"));

  bool load(handle source, bool) {
    value = seedforest::python::imageOf(source, owner_);
    return true;
  }
  static handle cast(seedforest::Image &&image, return_value_policy, handle) {
    return seedforest::python::arrayOf(std::move(image)).release();
  }

private:
  object owner_;
};

template <>
struct type_caster<seedforest::Roots> {
  PYBIND11_TYPE_CASTER(seedforest::Roots, const_name("numpy.ndarray"));

  bool load(handle source, bool) {
    value = seedforest::python::rootsOf(source);
    return true;
  }
  static handle cast(seedforest::Roots &&roots, return_value_policy, handle) {
    return seedforest::python::arrayOf(roots).release();
  }
};

template <>
struct type_caster<seedforest::Adjacency> {
  template <class T>
  using cast_op_type = movable_cast_op_type<T>;
  static constexpr auto name = const_name("connectivity");

  bool load(handle source, bool) {
    value_ = seedforest::python::adjacencyOf(source);
    return true;
  }
  operator seedforest::Adjacency *() { return &value_; }
  operator seedforest::Adjacency &() { return value_; }
  operator seedforest::Adjacency &&() && { return std::move(value_); }

private:
  seedforest::Adjacency value_ = seedforest::Adjacency::of({});
};

template <>
struct type_caster<seedforest::python::Mask> : OutCaster<seedforest::python::Mask> {
  static handle cast(seedforest::python::Mask &&mask, return_value_policy, handle) {
    return seedforest::python::arrayOf(std::move(mask)).release();
  }
};

template <>
struct type_caster<seedforest::Forest> : OutCaster<seedforest::Forest> {
  static handle cast(seedforest::Forest &&forest, return_value_policy, handle) {
    return seedforest::python::tupleOf(std::move(forest.labels), std::move(forest.costs),
                                       std::move(forest.predecessors));
  }
};

template <>
struct type_caster<seedforest::NearestRoots> : OutCaster<seedforest::NearestRoots> {
  static handle cast(seedforest::NearestRoots &&nearest, return_value_policy, handle) {
    return seedforest::python::tupleOf(
        std::move(nearest.labels), std::move(nearest.squaredDistances), std::move(nearest.pixels));
  }
};

template <>
struct type_caster<seedforest::Filtered> : OutCaster<seedforest::Filtered> {
  static handle cast(seedforest::Filtered &&filtered, return_value_policy, handle) {
    return seedforest::python::tupleOf(std::move(filtered.image), std::move(filtered.labels));
  }
};

template <>
struct type_caster<seedforest::Connectedness> : OutCaster<seedforest::Connectedness> {
  static handle cast(seedforest::Connectedness &&connected, return_value_policy, handle) {
    return seedforest::python::tupleOf(std::move(connected.labels), std::move(connected.costs));
  }
};

template <>
struct type_caster<seedforest::Components> : OutCaster<seedforest::Components> {
  static handle cast(seedforest::Components &&components, return_value_policy, handle) {
    return seedforest::python::tupleOf(std::move(components.labels), components.count);
  }
};

template <>
struct type_caster<seedforest::Skeleton> : OutCaster<seedforest::Skeleton> {
  static handle cast(seedforest::Skeleton &&skeleton, return_value_policy, handle) {
    return seedforest::python::tupleOf(std::move(skeleton.squaredDistances), skeleton.largestScale);
  }
};

template <>
struct type_caster<seedforest::SpanningTree> : OutCaster<seedforest::SpanningTree> {
  static handle cast(seedforest::SpanningTree &&tree, return_value_policy, handle) {
    return seedforest::python::tupleOf(std::move(tree.costs), std::move(tree.predecessors));
  }
};

} // namespace pybind11::detail
