// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The bindings, a function for each family. Names and order of arguments are those of the package's
// Python functions, which check and complete them, and describe them.
#pragma once

#include <pybind11/pybind11.h>

namespace seedforest::python {

void bindFiles(pybind11::module_ &module);
void bindFilters(pybind11::module_ &module);
void bindForests(pybind11::module_ &module);
void bindGraphs(pybind11::module_ &module);
void bindPixels(pybind11::module_ &module);
void bindShapes(pybind11::module_ &module);

} // namespace seedforest::python
