// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The bucket queue of the loop: Dial's queue (R. B. Dial, Algorithm 360, 1969) with lazy deletion.
//
// Buckets form a circle, each a first-in first-out list of entries. An element that moves is
// appended again, and its old entry is skipped when it is taken: there are no links in per-element
// arrays, so memory is read and written in order. When outdated entries could outnumber the
// elements by far, they are dropped.
//
// Entries are stored in chunks of one growing pool; an emptied chunk is used again. The table of
// buckets is an array, or an ordered map when there are many more buckets than elements.
#pragma once

#include "base/buffer.h"
#include "base/inline.h"
#include "ift/core/detail/queueErrors.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <map>
#include <new>
#include <span>

namespace seedforest::detail {

/// The bucket of a key (a cost, or the largest cost minus it) in a circle of n: the remainder of
/// the key divided by n, folded into 0 .. n - 1.
inline int circularBucket(std::int64_t key, std::int64_t n) {
  if (key >= 0 && key < n)
    return static_cast<int>(key);
  const std::int64_t remainder = key % n;
  return static_cast<int>(remainder < 0 ? remainder + n : remainder);
}

/// Entry::pixel is the element that waits.
template <class Entry>
class BucketQueue {
public:
  /// Ends with an error, with the line of initQueue(), when the buckets cannot be allocated.
  BucketQueue(std::int64_t nbuckets, int nelems)
      : nbuckets_(nbuckets), nelems_(nelems), dense_(nbuckets <= std::int64_t{4} * nelems + 65536),
        chunkShift_(std::clamp<int>(std::bit_width(static_cast<std::uint64_t>(nelems / nbuckets)),
                                    smallestChunkShift, largestChunkShift(nelems))),
        chunkMask_((std::int64_t{1} << chunkShift_) - 1),
        grantedChunks_((roomPerElement * nelems >> chunkShift_) + 64) {
    if (!dense_)
      return;
    const auto count = static_cast<std::size_t>(nbuckets);
    table_.reset(static_cast<Bucket *>(tryAllocateZeroed(count, sizeof(Bucket))));
    occupied_.reset(static_cast<std::uint64_t *>(
        tryAllocateZeroed(static_cast<std::size_t>(nwords()), sizeof(std::uint64_t))));
    if (table_ == nullptr || occupied_ == nullptr)
      queueUnavailable('Q');
  }

  /// The number of elements; the number of their entries can be larger.
  int nelems() const { return nelems_; }

  /// The bucket from which take() took last, where its next search starts.
  int current() const { return current_; }

  /// Appends an entry at the tail of bucket b, which is 0 .. nbuckets - 1.
  SEEDFOREST_INLINE void append(int b, Entry entry) {
    Bucket &bucket = bucketAt(b);
    const bool hasRoom = bucket.last != empty && !endsChunk(bucket.last);
    bucket.last = hasRoom ? bucket.last + 1 : startChunk(bucket, b);
    pool_[bucket.last] = entry;
  }

  /// Takes the head of the current bucket or, when that is empty, of the next one in the circle
  /// that is not. False when all are empty.
  bool take(Entry &entry) {
    Bucket *bucket = dense_ ? &table_[current_] : nullptr;
    if (bucket == nullptr || bucket->last == empty) {
      bucket = nextBucket();
      if (bucket == nullptr)
        return false;
    }
    const std::int64_t position = bucket->head;
    entry = pool_[position];
    upcoming_ = pixelAhead(position, bucket->last);
    removeUpTo(*bucket, position);
    return true;
  }

  /// Takes up to `most` of the entries that take() would take next, all from one bucket, as they lie
  /// one behind the other; none when all buckets are empty. The next append() may overwrite them.
  std::span<const Entry> takeRun(int most) {
    Bucket *bucket = currentBucket();
    if (bucket == nullptr)
      bucket = nextBucket();
    if (bucket == nullptr)
      return {};
    const std::span<const Entry> run = runOf(*bucket, most);
    const std::int64_t last = bucket->head + static_cast<std::int64_t>(run.size()) - 1;
    removeUpTo(*bucket, last);
    return run;
  }

  /// The entries that takeRun() would take next, if they are in the current bucket.
  std::span<const Entry> upcomingRun(int most) {
    const Bucket *bucket = currentBucket();
    return bucket == nullptr ? std::span<const Entry>() : runOf(*bucket, most);
  }

  /// The pixel of an entry that will be taken soon, or none.
  int upcoming() const { return upcoming_; }
  static constexpr int none = -1;

  /// Whether outdated entries may outnumber the elements by far.
  bool isCrowded() const { return usedChunks_ > grantedChunks_; }

  /// Drops every entry for which isCurrent(entry, bucket) is false. The others keep their order.
  template <class IsCurrent>
  void dropOutdated(IsCurrent isCurrent) {
    if (!dense_) {
      for (auto next = sparse_.begin(); next != sparse_.end();) {
        auto &[b, bucket] = *next++; // before the bucket may be erased
        dropOutdatedOf(bucket, b, isCurrent);
      }
      return;
    }
    for (std::int64_t word = 0; word < nwords(); ++word)
      for (std::uint64_t bits = occupied_[word]; bits != 0; bits &= bits - 1) {
        const int b = static_cast<int>(word * wordBits + std::countr_zero(bits));
        dropOutdatedOf(table_[b], b, isCurrent);
      }
  }

protected:
  /// Moves the search back to bucket b if that is before the current one.
  void pullBack(int b) { current_ = std::min(current_, b); }

private:
  // Positions of the first and the last entry in the pool. Chunk 0 is not used, so that a zeroed
  // table is a table of empty buckets.
  struct Bucket {
    std::int64_t head;
    std::int64_t last;
  };
  static constexpr std::int64_t empty = 0;
  static constexpr std::int64_t noChunk = 0;
  static constexpr std::int64_t wordBits = 64;
  // Chunks are about as large as the average bucket: large chunks are read fast, small ones waste
  // little memory where many buckets hold an entry or two. In large images, chunks of a page take 3 %
  // off a watershed.
  static constexpr int smallestChunkShift = 2;
  static constexpr int largestChunkShift(int nelems) { return nelems < 1 << 24 ? 8 : 10; }
  // How many entries ahead to prefetch, so that the memory arrives in time.
  static constexpr int lookahead = 16;
  // The pool may grow to this many entries per element before outdated ones are dropped. The
  // current entries, one per element, need room for at most five: chunks are partly empty.
  static constexpr std::int64_t roomPerElement = 8;

  std::int64_t nwords() const { return (nbuckets_ + wordBits - 1) / wordBits; }
  std::int64_t chunkOf(std::int64_t position) const { return position >> chunkShift_; }
  std::int64_t firstOf(std::int64_t chunk) const { return chunk << chunkShift_; }
  bool endsChunk(std::int64_t position) const { return (position & chunkMask_) == chunkMask_; }

  // The position after another one in the same bucket.
  std::int64_t follower(std::int64_t position) const {
    return endsChunk(position) ? firstOf(next_[chunkOf(position)]) : position + 1;
  }

  // The pixel of the entry `lookahead` places behind a position, in its chunk or in the next one.
  int pixelAhead(std::int64_t position, std::int64_t last) const {
    std::int64_t ahead = position + lookahead;
    if ((position & chunkMask_) + lookahead > chunkMask_) {
      const bool isFollowed = (position ^ last) > chunkMask_;
      if (!isFollowed || lookahead > chunkMask_)
        return none;
      ahead = firstOf(next_[chunkOf(position)]) + (ahead & chunkMask_);
    }
    const bool isUsed = ahead <= last || (ahead ^ last) > chunkMask_;
    return isUsed ? pool_[ahead].pixel : none;
  }

  Bucket &bucketAt(int b) {
    if (dense_)
      return table_[b];
    try {
      return sparse_[b];
    } catch (const std::bad_alloc &) {
      queueUnavailable('Q');
    }
  }

  // The current bucket, or null when it is empty.
  Bucket *currentBucket() {
    if (dense_)
      return table_[current_].last == empty ? nullptr : &table_[current_];
    const auto found = sparse_.find(current_);
    return found == sparse_.end() ? nullptr : &found->second;
  }

  // The entries at the head of a bucket that lie one behind the other.
  std::span<const Entry> runOf(const Bucket &bucket, int most) const {
    const std::int64_t lastInChunk =
        chunkOf(bucket.head) == chunkOf(bucket.last) ? bucket.last : bucket.head | chunkMask_;
    return {&pool_[bucket.head],
            static_cast<std::size_t>(std::min<std::int64_t>(lastInChunk - bucket.head + 1, most))};
  }

  // Removes the entries of the current bucket up to a position in the chunk of its head.
  SEEDFOREST_INLINE void removeUpTo(Bucket &bucket, std::int64_t position) {
    if (position == bucket.last)
      drain(bucket, current_);
    else if (endsChunk(position))
      bucket.head = firstOf(releaseChunk(position));
    else
      bucket.head = position + 1;
  }

  // Appends an unused chunk to bucket b; returns the position of its first entry.
  std::int64_t startChunk(Bucket &bucket, int b) {
    if (freeChunk_ == noChunk)
      growPool();
    const std::int64_t chunk = freeChunk_;
    freeChunk_ = next_[chunk];
    ++usedChunks_;
    if (bucket.last != empty) {
      next_[chunkOf(bucket.last)] = chunk;
    } else {
      bucket.head = firstOf(chunk);
      if (dense_)
        occupied_[b / wordBits] |= std::uint64_t{1} << b % wordBits;
    }
    return firstOf(chunk);
  }

  // Frees the chunk that holds a position; returns the chunk that followed it in its bucket.
  std::int64_t releaseChunk(std::int64_t position) {
    const std::int64_t chunk = chunkOf(position);
    const std::int64_t behind = next_[chunk];
    next_[chunk] = freeChunk_;
    freeChunk_ = chunk;
    --usedChunks_;
    return behind;
  }

  // Empties bucket b, which has one chunk left.
  void drain(Bucket &bucket, int b) {
    releaseChunk(bucket.last);
    bucket.last = empty;
    if (dense_)
      occupied_[b / wordBits] &= ~(std::uint64_t{1} << b % wordBits);
    else
      sparse_.erase(b);
  }

  // Moves the current entries of bucket b to its head and frees the chunks behind them.
  template <class IsCurrent>
  void dropOutdatedOf(Bucket &bucket, int b, IsCurrent isCurrent) {
    std::int64_t kept = empty; // the position of the last one
    for (std::int64_t position = bucket.head;; position = follower(position)) {
      if (isCurrent(pool_[position], b)) {
        kept = kept == empty ? bucket.head : follower(kept);
        pool_[kept] = pool_[position];
      }
      if (position == bucket.last)
        break;
    }
    const std::int64_t lastChunk = chunkOf(bucket.last);
    bucket.last = kept == empty ? bucket.head : kept;
    const std::int64_t tail = chunkOf(bucket.last);
    for (std::int64_t chunk = tail; chunk != lastChunk;) {
      chunk = next_[tail];
      next_[tail] = releaseChunk(firstOf(chunk));
    }
    if (kept == empty)
      drain(bucket, b);
  }

  Bucket *nextBucket() {
    if (!dense_) {
      auto next = sparse_.lower_bound(current_);
      if (next == sparse_.end())
        next = sparse_.begin();
      if (next == sparse_.end())
        return nullptr;
      current_ = next->first;
      return &next->second;
    }
    // From the current word, without the bits before the current bucket, once round to that word.
    std::int64_t word = current_ / wordBits;
    std::uint64_t bits = occupied_[word] & ~std::uint64_t{0} << current_ % wordBits;
    for (std::int64_t seen = 0; bits == 0; ++seen) {
      if (seen == nwords())
        return nullptr;
      word = word + 1 == nwords() ? 0 : word + 1;
      bits = occupied_[word];
    }
    current_ = static_cast<int>(word * wordBits + std::countr_zero(bits));
    return &table_[current_];
  }

  void growPool() {
    const std::int64_t grown = nchunks_ < grantedChunks_
                                   ? std::clamp<std::int64_t>(2 * nchunks_, 64, grantedChunks_)
                                   : nchunks_ + nchunks_ / 4;
    pool_.reset(static_cast<Entry *>(
        tryReallocate(pool_.release(), static_cast<std::size_t>(firstOf(grown)), sizeof(Entry))));
    next_.reset(static_cast<std::int64_t *>(
        tryReallocate(next_.release(), static_cast<std::size_t>(grown), sizeof(std::int64_t))));
    if (pool_ == nullptr || next_ == nullptr)
      queueUnavailable('A');
    for (std::int64_t chunk = grown - 1; chunk >= std::max<std::int64_t>(nchunks_, 1); --chunk) {
      next_[chunk] = freeChunk_;
      freeChunk_ = chunk;
    }
    nchunks_ = grown;
  }

  std::int64_t nbuckets_;
  int nelems_;
  bool dense_;
  int chunkShift_;
  std::int64_t chunkMask_; // selects the bits of a position that are its index in the chunk
  std::int64_t grantedChunks_;
  std::int64_t usedChunks_ = 0;
  int current_ = 0;
  int upcoming_ = none;
  Array<Bucket> table_;
  Array<std::uint64_t> occupied_; // a bit for each bucket of the dense table: it is not empty
  std::map<int, Bucket> sparse_;
  Array<Entry> pool_;
  Array<std::int64_t> next_; // the chunk behind each, in its bucket or in the list of free ones
  std::int64_t nchunks_ = 0;
  std::int64_t freeChunk_ = noChunk;
};

/// A queue for transforms whose keys are single weights, not path costs, and can decrease: an
/// append before the current bucket moves the search back to it.
template <class Entry>
class PulledBackQueue : public BucketQueue<Entry> {
public:
  using BucketQueue<Entry>::BucketQueue;

  SEEDFOREST_INLINE void append(int b, Entry entry) {
    BucketQueue<Entry>::append(b, entry);
    BucketQueue<Entry>::pullBack(b);
  }
};

} // namespace seedforest::detail
