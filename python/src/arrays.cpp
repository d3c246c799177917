// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "arrays.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace seedforest::python {

namespace {

constexpr int wanted =
    py::array::c_style | py::array::forcecast | py::detail::npy_api::NPY_ARRAY_ALIGNED_;

template <class Value>
using Contiguous = py::array_t<Value, wanted>;

struct Shape {
  int ncols;
  int nrows;
};

std::string textOf(py::handle object) {
  return py::str(object).cast<std::string>();
}

Shape shapeOf(const py::array &array) {
  const py::ssize_t n = array.ndim();
  if (n != 2 && n != 3)
    throw py::value_error("an image has the shape (rows, columns) or (bands, rows, columns), not " +
                          textOf(array.attr("shape")));
  const py::ssize_t nrows = array.shape(n - 2);
  const py::ssize_t ncols = array.shape(n - 1);
  if (array.size() == 0 || nrows > INT32_MAX / ncols)
    throw py::value_error("there is no image of the shape " + textOf(array.attr("shape")));
  return {static_cast<int>(ncols), static_cast<int>(nrows)};
}

// The array that an object is or converts to; of an array the same one.
py::array arrayFrom(py::handle object) {
  if (Py_TYPE(object.ptr()) != py::detail::npy_api::get().PyArray_Type_ &&
      py::isinstance(object, py::module_::import("numpy.ma").attr("MaskedArray")))
    throw py::value_error("a masked array: fill it first, array.filled(value), and give the mask "
                          "as an argument where there is one");
  return py::module_::import("numpy").attr("asarray")(object);
}

template <class Value>
Contiguous<Value> contiguous(const py::array &array) {
  Contiguous<Value> result =
      py::reinterpret_steal<Contiguous<Value>>(Contiguous<Value>::ensure(array).release());
  if (!result)
    throw std::bad_alloc();
  return result;
}

template <class Value>
std::span<const Value> valuesOf(const Contiguous<Value> &array) {
  return {array.data(), static_cast<std::size_t>(array.size())};
}

int largestOf(std::span<const int> values) {
  int largest = 0;
  for (const int value : values)
    largest = std::max(largest, value);
  return largest;
}

Image borrowed(const py::array &array, Shape shape, py::object &owner) {
  const Contiguous<int> pixels = contiguous<int>(array);
  owner = pixels;
  const std::span<const int> values = valuesOf(pixels);
  // No function of the interface writes to its arguments.
  Image image = Image::borrow({const_cast<int *>(values.data()), values.size()}, shape.ncols,
                              shape.nrows, array.ndim() == 2 ? ImageType::ascii : ImageType::xyz);
  const py::gil_scoped_release release;
  image.setMaxValue(largestOf(values));
  return image;
}

template <class Value>
Image widened(const py::array &array, Shape shape, ImageType type) {
  const Contiguous<Value> pixels = contiguous<Value>(array);
  const py::gil_scoped_release release;
  return Image::copyOf(valuesOf(pixels), shape.ncols, shape.nrows, type);
}

// Values that may not fit are brought to 32 bits first.
template <class Value>
Image narrowed(const py::array &array, Shape shape, ImageType type) {
  const Contiguous<Value> pixels = contiguous<Value>(array);
  for (const Value value : valuesOf(pixels))
    if (!std::in_range<int>(value))
      throw py::value_error("a pixel has 32 bits with a sign, and " + std::to_string(value) +
                            " does not fit");
  return widened<int>(pixels, shape, type);
}

Image converted(const py::array &array, Shape shape) {
  const ImageType type = array.ndim() == 2 ? ImageType::ascii : ImageType::xyz;
  const bool isSigned = array.dtype().kind() == 'i';
  switch (array.itemsize()) {
  case 1:
    return widened<std::int8_t>(array, shape, type);
  case 2:
    return isSigned ? widened<std::int16_t>(array, shape, type)
                    : widened<std::uint16_t>(array, shape, type);
  case 4:
    return narrowed<std::uint32_t>(array, shape, type);
  default:
    return isSigned ? narrowed<std::int64_t>(array, shape, type)
                    : narrowed<std::uint64_t>(array, shape, type);
  }
}

// A table of int32, which the package's Python code makes of what users give.
py::array_t<int> tableFrom(py::handle object, int columns) {
  if (!py::isinstance<py::array_t<int, py::array::c_style>>(object))
    throw py::type_error("not a table of int32");
  auto table = py::reinterpret_borrow<py::array_t<int>>(object);
  if (table.ndim() != 2 || table.shape(1) != columns)
    throw py::type_error("not a table of " + std::to_string(columns) + " columns");
  return table;
}

py::array owning(std::unique_ptr<Image> image) {
  const int *values = image->pixels().data();
  const py::ssize_t shape[] = {image->nrows(), image->ncols()};
  const py::capsule owner(image.get(), [](void *kept) { delete static_cast<Image *>(kept); });
  static_cast<void>(image.release());
  return py::array_t<int>(shape, values, owner);
}

// A new array of another type, band by band.
template <class Value>
py::array copied(const Image &image, int nbands) {
  std::vector<py::ssize_t> shape = {image.nrows(), image.ncols()};
  if (nbands != 1)
    shape.insert(shape.begin(), nbands);
  py::array_t<Value> array(shape);
  Value *target = array.mutable_data();
  {
    const py::gil_scoped_release release;
    for (int b = 0; b < nbands; ++b)
      for (const int value : image.pixels(b))
        *target++ = static_cast<Value>(value);
  }
  return array;
}

bool fitsInBytes(const Image &image) {
  const py::gil_scoped_release release;
  unsigned all = 0;
  for (int b = 0; b < image.nbands(); ++b)
    for (const int value : image.pixels(b))
      all |= static_cast<unsigned>(value);
  return all <= 255;
}

} // namespace

Image imageOf(py::handle object, py::object &owner) {
  const py::array array = arrayFrom(object);
  const Shape shape = shapeOf(array);
  const char kind = array.dtype().kind();
  if (kind != 'b' && kind != 'i' && kind != 'u')
    throw py::type_error("pixels are whole numbers, not " + textOf(array.dtype()) +
                         ": scale and convert them first, for example "
                         "(255 * image).round().astype(numpy.uint8)");
  if (kind == 'i' && array.itemsize() == 4)
    return borrowed(array, shape, owner);
  if (kind == 'b')
    return widened<std::uint8_t>(array, shape,
                                 array.ndim() == 2 ? ImageType::ascii : ImageType::xyz);
  if (kind == 'u' && array.itemsize() == 1) {
    const bool isColor = array.ndim() == 3 && array.shape(0) == 3;
    Image image = widened<std::uint8_t>(array, shape, isColor ? ImageType::color : ImageType::grey);
    image.setMaxValue(255);
    return image;
  }
  return converted(array, shape);
}

py::array arrayOf(Image &&image) {
  const bool isPicture = image.type() == ImageType::grey || image.type() == ImageType::color;
  if (isPicture && fitsInBytes(image))
    return copied<std::uint8_t>(image, image.nbands());
  if (image.nbands() > 1)
    return copied<int>(image, image.nbands());
  return owning(std::make_unique<Image>(std::move(image)));
}

py::array arrayOf(Mask &&mask) {
  return copied<bool>(mask.image, 1);
}

Roots rootsOf(py::handle object) {
  const py::array_t<int> table = tableFrom(object, 3);
  Roots roots;
  for (const int *row = table.data(), *end = row + table.size(); row != end; row += 3)
    roots.push_back({row[0], row[1], row[2]});
  return roots;
}

py::array arrayOf(const Roots &roots) {
  std::vector<int> values;
  values.reserve(3 * roots.size());
  for (const Root root : roots)
    values.insert(values.end(), {root.pixel, root.label, root.value});
  return tableOf(values, 3);
}

Adjacency adjacencyOf(py::handle object) {
  if (PyLong_Check(object.ptr())) {
    const long n = PyLong_AsLong(object.ptr());
    PyErr_Clear();
    if (n == 4 || n == 8)
      return n == 4 ? Adjacency::four() : Adjacency::eight();
    throw py::value_error("connectivity is 4, 8 or a table of displacements, not " +
                          textOf(object));
  }
  const py::array_t<int> table = tableFrom(object, 2);
  std::vector<Displacement> list;
  for (const int *row = table.data(), *end = row + table.size(); row != end; row += 2)
    list.push_back({row[1], row[0]});
  return Adjacency::of(std::move(list));
}

py::array tableOf(const std::vector<int> &values, int columns) {
  const py::ssize_t shape[] = {static_cast<py::ssize_t>(values.size()) / columns, columns};
  return py::array_t<int>(shape, values.data());
}

} // namespace seedforest::python
