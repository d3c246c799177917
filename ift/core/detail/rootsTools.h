// Roots that an operation cannot go on without.
#pragma once

#include "ift/core/ifRoots.h"

namespace seedforest::detail {

/// A new record with n entries of zeros.
ifRootsPtr createRoots(int n);

} // namespace seedforest::detail
