// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A check that operations of every folder make.
#pragma once

#include "base/report.h"

namespace seedforest::detail {

/// Ends with an error that names the operation where the pointer is null: to data, to a function or
/// to a place for a result.
template <class Pointer>
void requireGiven(const char *operation, const char *what, const Pointer &pointer) {
  if (pointer == nullptr)
    fatal("%s: there is no %s\n", operation, what);
}

} // namespace seedforest::detail
