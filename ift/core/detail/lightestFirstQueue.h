// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A bucket queue for few buckets whose keys can decrease: it always takes from the lowest bucket that
// is not empty. Where keys are single weights, as in spanning trees, the search moves up and down all
// the time, and most buckets are short; two words of bits find the lowest one without a loop. With
// PulledBackQueue (bucketQueue.h), the spanning tree of pixels takes a third longer.
//
// A bucket is a ring of entries, which doubles when it is full. Outdated entries stay: the caller
// appends only a few for each element.
#pragma once

#include "base/buffer.h"
#include "base/inline.h"
#include "ift/core/detail/queueErrors.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace seedforest::detail {

/// For propagate() (iftPropagate.h). Entry::pixel is the element that waits.
template <class Entry>
class LightestFirstQueue {
public:
  static constexpr int mostBuckets = 4096;

  /// Ends with an error, with the line of initQueue(), when the buckets, or later the entries,
  /// cannot be allocated.
  LightestFirstQueue(int nbuckets, int nelems)
      : nbuckets_(nbuckets), nelems_(nelems),
        ring_(static_cast<Ring *>(
            tryAllocateZeroed(static_cast<std::size_t>(nbuckets), sizeof(Ring)))) {
    if (ring_ == nullptr)
      queueUnavailable('Q');
  }
  ~LightestFirstQueue() {
    for (int b = 0; b < nbuckets_; ++b)
      std::free(ring_[b].entries);
  }
  LightestFirstQueue(const LightestFirstQueue &) = delete;
  LightestFirstQueue &operator=(const LightestFirstQueue &) = delete;

  /// The number of elements; the number of their entries can be larger.
  int nelems() const { return nelems_; }

  /// The bucket from which take() took last.
  int current() const { return current_; }

  /// Appends an entry at the tail of bucket b.
  SEEDFOREST_INLINE void append(int b, Entry entry) {
    Ring &ring = ring_[b];
    if (ring.tail - ring.head == ring.capacity)
      grow(ring);
    ring.entries[ring.tail++ & (ring.capacity - 1)] = entry;
    occupied_[b / wordBits] |= std::uint64_t{1} << b % wordBits;
    words_ |= std::uint64_t{1} << b / wordBits;
  }

  /// Takes the head of the lowest bucket that is not empty. False when all are empty.
  SEEDFOREST_INLINE bool take(Entry &entry) {
    if (words_ == 0)
      return false;
    const int word = std::countr_zero(words_);
    std::uint64_t &bits = occupied_[word];
    current_ = word * wordBits + std::countr_zero(bits);
    Ring &ring = ring_[current_];
    entry = ring.entries[ring.head++ & (ring.capacity - 1)];
    upcoming_ =
        ring.entries[std::min(ring.head + lookahead, ring.tail - 1) & (ring.capacity - 1)].pixel;
    bits &= ~(std::uint64_t{ring.head == ring.tail} << current_ % wordBits);
    words_ &= ~(std::uint64_t{bits == 0} << word);
    return true;
  }

  /// The pixel of an entry that may be taken soon.
  int upcoming() const { return upcoming_; }
  static constexpr int none = -1;

private:
  struct Ring {
    Entry *entries;
    std::size_t head; // counts without going round; the place is the remainder
    std::size_t tail;
    std::size_t capacity; // a power of two, or 0
  };
  static constexpr int wordBits = 64;
  static constexpr std::size_t lookahead = 16; // to prefetch, so that the memory arrives in time

  [[gnu::noinline]] void grow(Ring &ring) {
    const std::size_t before = ring.capacity;
    const std::size_t first = before == 0 ? 0 : ring.head & (before - 1);
    const std::size_t after = std::max<std::size_t>(2 * before, 8);
    ring.entries = static_cast<Entry *>(tryReallocate(ring.entries, after, sizeof(Entry)));
    if (ring.entries == nullptr)
      queueUnavailable('A');
    // What had gone round to the front goes behind the rest.
    std::copy_n(ring.entries, first, ring.entries + before);
    ring.head = first;
    ring.tail = first + before;
    ring.capacity = after;
  }

  int nbuckets_;
  int nelems_;
  int current_ = 0;
  int upcoming_ = none;
  std::uint64_t words_ = 0; // a bit for each word of `occupied_`: it is not 0
  std::uint64_t occupied_[mostBuckets / wordBits] = {}; // a bit for each bucket: it is not empty
  Array<Ring> ring_;
};

} // namespace seedforest::detail
