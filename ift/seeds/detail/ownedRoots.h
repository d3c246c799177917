// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Roots of skeletons that release themselves.
#pragma once

#include "base/buffer.h"
#include "ift/core/ifRoots.h"

#include <cstddef>
#include <utility>

namespace seedforest::detail {

/// A record that owns its arrays.
struct OwnedRoots2 : ifRoots2 {
  OwnedRoots2() : ifRoots2{} {}
  ~OwnedRoots2() { ifReleaseRoots2(this); }
  OwnedRoots2(const OwnedRoots2 &) = delete;
  OwnedRoots2 &operator=(const OwnedRoots2 &) = delete;

  /// Gives the empty record arrays of `count` zeros, none of them in use.
  void allocate(std::size_t count) {
    pixel = allocateInts(count);
    label = allocateInts(count);
    value = allocateInts(count);
    extra = allocateInts(count);
  }

  /// Hands the arrays over.
  ifRoots2 release() { return std::exchange(static_cast<ifRoots2 &>(*this), {}); }
};

} // namespace seedforest::detail
