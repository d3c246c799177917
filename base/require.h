// A check that operations of every folder make.
#pragma once

#include "base/report.h"

namespace seedforest::detail {

/// Ends with an error that names the operation where the caller gave no such thing: a pointer to
/// data or to a function, or a place for a result.
template <class Pointer>
void requireGiven(const char *operation, const char *what, const Pointer &pointer) {
  if (pointer == nullptr)
    fatal("%s: there is no %s\n", operation, what);
}

} // namespace seedforest::detail
