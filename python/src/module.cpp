// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "bindings.h"
#include "seedforest/seedforest.hpp"

#include <exception>
#include <utility>

namespace seedforest::python {

namespace {

namespace py = pybind11;

void translate(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(std::move(thrown));
  } catch (const Cancelled &) {
    // The signal's exception stands in the interpreter already.
  } catch (const FileError &error) {
    PyErr_SetString(PyExc_OSError, error.what());
  } catch (const OutOfMemory &error) {
    PyErr_SetString(PyExc_MemoryError, error.what());
  } catch (const Error &error) {
    PyErr_SetString(PyExc_ValueError, error.what());
  }
}

} // namespace

} // namespace seedforest::python

PYBIND11_MODULE(_core, module) {
  using namespace seedforest::python;
  module.doc() = "The compiled part of seedforest. Use the functions of the package.";
  module.attr("version") = SEEDFOREST_VERSION;
  py::register_exception_translator(translate);
  bindFiles(module);
  bindFilters(module);
  bindForests(module);
  bindGraphs(module);
  bindPixels(module);
  bindShapes(module);
}
