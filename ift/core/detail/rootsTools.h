// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Creation and checks of roots, and their text form.
#pragma once

#include "base/writer.h"
#include "ift/core/ifRoots.h"

#include <cstdint>
#include <string_view>

namespace seedforest::detail {

/// A new record with n entries of zeros; out of memory where n does not fit an int too.
ifRootsPtr createRoots(std::int64_t n);

/// Writes roots as ifSaveRoots() does.
void putRoots(Writer &writer, const imImage *image, int n, const int *pixel, const int *label);

/// The roots in a file's bytes, as ifReadRoots() reads them; `path` only names the file in a line.
ifRootsPtr parseRoots(std::string_view bytes, const char *path, const imImage *image);

/// Ends with an error that names the operation, unless the roots are there and all are pixels of
/// the image.
void requireRoots(const char *operation, const ifRoots *roots, const imImage *image);

} // namespace seedforest::detail
