// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Fuzzy connectedness without its debug images, for operations that write no files.
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imNeighborhood.h"

#include <functional>

namespace seedforest::detail {

/// As iftFuzzy(), with errors that name `operation`. Writes no file: after each object, calls
/// look(object, costs), unless it is null, with the costs of the object's chains, an ASCII image
/// that `look` may change in all but its pixels.
void connectFuzzy(const char *operation, const imImage *image, imImage *labelOut, imImage *costOut,
                  imNeighborhoodFn adjacency, const ifRoots *seeds, const int *mean,
                  const int *sigma, int nObjects,
                  const std::function<void(int object, imImage *costs)> &look = nullptr);

} // namespace seedforest::detail
