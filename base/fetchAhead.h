// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Loops over elements that jump about in what they have already seen. Each jump waits for the memory,
// and keeps the processor from asking for what comes next in order; so that is fetched far ahead.
#pragma once

#include "base/buffer.h"
#include "base/inline.h"

#include <algorithm>
#include <cstdint>

namespace seedforest::detail {

inline constexpr std::int64_t fetchLine = 16;          // ints in a cache line
inline constexpr std::int64_t fetchDistance = 1 << 16; // fits into the second-level cache

/// Calls visit(i) for i = 0 .. n - 1 and fetches the elements of the bands on the way.
template <class Visit, class... Band>
SEEDFOREST_INLINE inline void forEachFetched(int n, Visit visit, const Band *...band) {
  for (std::int64_t i = 0; i < n;) {
    const std::int64_t ahead = std::min<std::int64_t>(i + fetchDistance, n - 1);
    (prefetchAt(band + ahead), ...);
    for (const std::int64_t end = std::min<std::int64_t>(i + fetchLine, n); i < end; ++i)
      visit(static_cast<int>(i));
  }
}

/// The same for i = n - 1 .. 0.
template <class Visit, class... Band>
SEEDFOREST_INLINE inline void forEachFetchedBackwards(int n, Visit visit, const Band *...band) {
  for (std::int64_t i = n; i > 0;) {
    const std::int64_t ahead = std::max<std::int64_t>(i - fetchDistance, 0);
    (prefetchAt(band + ahead), ...);
    for (const std::int64_t end = std::max<std::int64_t>(i - fetchLine, 0); i > end;)
      visit(static_cast<int>(--i));
  }
}

} // namespace seedforest::detail
