// Roots that an operation cannot go on without.
#pragma once

#include "ift/core/ifRoots.h"

namespace seedforest::detail {

/// A new record with n entries of zeros.
ifRootsPtr createRoots(int n);

/// Ends with an error that names the operation, unless the roots are there and all are pixels of the
/// image.
void requireRoots(const char *operation, const ifRoots *roots, const imImage *image);

} // namespace seedforest::detail
