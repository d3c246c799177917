// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The bucket queue of squared distances.
#pragma once

#include "ift/core/detail/bucketQueue.h"

#include <cstdint>

namespace seedforest::detail {

/// A queue that keeps track of the turns of its search round the circle, and so finds the bucket of
/// a cost of this turn or the next without a division. Entry::cost() is the cost with which an entry
/// waits.
template <class Entry>
class TurningQueue : public BucketQueue<Entry> {
public:
  TurningQueue(std::int64_t nbuckets, int nelems)
      : BucketQueue<Entry>(nbuckets, nelems), nbuckets_(static_cast<std::uint64_t>(nbuckets)) {}

  bool take(Entry &entry) {
    if (!BucketQueue<Entry>::take(entry))
      return false;
    const auto cost = static_cast<unsigned>(entry.cost());
    if (cost - turn_ >= nbuckets_)
      turn_ = cost - cost % nbuckets_;
    return true;
  }

  SEEDFOREST_INLINE void append(int cost, Entry entry) {
    const std::uint64_t ahead = static_cast<unsigned>(cost) - turn_;
    std::uint64_t bucket = ahead;
    if (ahead >= nbuckets_)
      bucket = ahead < 2 * nbuckets_ ? ahead - nbuckets_ : static_cast<unsigned>(cost) % nbuckets_;
    BucketQueue<Entry>::append(static_cast<int>(bucket), entry);
  }

private:
  std::uint64_t nbuckets_;
  std::uint64_t turn_ = 0; // the multiple of nbuckets_ below the cost of the entry taken last
};

} // namespace seedforest::detail
