// The one loop behind every transform, and the queue that it runs on. Internal: the public
// operations are in iftForest.h and its siblings.
//
// Every transform is the same sentence: take the best waiting pixel, offer each neighbour a path
// through it, let a strictly better path conquer. What differs is said by policies:
//
// - Arcs: visit(entry, offer) calls offer(q, k) for each arc of the entry's pixel, in order, or for
//   those that can matter; weight(p, q, k) weighs it.
// - Rule: extend(p, weight) is the cost of the offered path, improves(cost, q) the strict test,
//   conquer(p, q, k, cost) stores what q gains, bucket(cost, q) says where q waits; finish(entry)
//   is told when a pixel is taken, prefetch(arcs, p) a little before; costOf(p) is p's cost.
// - Entries: what waits in the queue, a pixel and what else must be known of it, and how an
//   outdated entry is told from a valid one.
// - Queue: where they wait; PulledBackQueue where keys do not grow along paths.
//
// Ties: within a bucket first in, first out; a pixel conquered anew waits behind all that are in
// its new bucket; an equal cost never conquers. Buckets are served in a circle.
#pragma once

#include "base/buffer.h"
#include "ift/core/detail/queueErrors.h"
#include "ift/core/ifCost.h"
#include "ift/core/ifQueue.h"
#include "ift/core/ifRoots.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <map>
#include <new>

namespace seedforest::detail {

/// The bucket of a key (a cost, or what the largest cost exceeds it by) in a circle of n: the
/// remainder of division, folded into 0 .. n - 1.
inline int circularBucket(std::int64_t key, std::int64_t n) {
  if (key >= 0 && key < n)
    return static_cast<int>(key);
  const std::int64_t remainder = key % n;
  return static_cast<int>(remainder < 0 ? remainder + n : remainder);
}

/// Buckets in a circle, each a first-in first-out list of entries. An element that is to move is
/// simply appended anew, and its old entry left to be skipped when it surfaces: nothing is linked
/// through per-element arrays, so memory is read and written in order.
///
/// Entries live in chunks of one growing pool; a drained chunk is used again. The table of buckets
/// is dense, or an ordered map when there are many more buckets than elements.
template <class Entry>
class BucketQueue {
public:
  /// Ends the process with status 1, after the line of initQueue(), when the buckets cannot be had.
  BucketQueue(std::int64_t nbuckets, int nelems)
      : nbuckets_(nbuckets), dense_(nbuckets <= std::int64_t{4} * nelems + 65536),
        chunkShift_(std::clamp<int>(std::bit_width(static_cast<std::uint64_t>(nelems / nbuckets)),
                                    smallestChunkShift, largestChunkShift)),
        chunkMask_((std::int64_t{1} << chunkShift_) - 1) {
    if (!dense_)
      return;
    const auto count = static_cast<std::size_t>(nbuckets);
    table_.reset(static_cast<Bucket *>(tryAllocateZeroed(count, sizeof(Bucket))));
    occupied_.reset(static_cast<std::uint64_t *>(
        tryAllocateZeroed((count + wordBits - 1) / wordBits, sizeof(std::uint64_t))));
    if (table_ == nullptr || occupied_ == nullptr)
      queueUnavailable('Q');
  }

  /// The bucket from which take() took last, and where its search goes on.
  int current() const { return current_; }

  /// Appends an entry at the tail of bucket b, which is 0 .. nbuckets - 1.
  [[gnu::always_inline]] void append(int b, Entry entry) {
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
    if (position == bucket->last)
      drain(*bucket);
    else if (endsChunk(position))
      bucket->head = firstOf(releaseChunk(position));
    else
      bucket->head = position + 1;
    return true;
  }

  /// Moves the search back to bucket b, where that lies before the current one.
  void pullBack(int b) { current_ = std::min(current_, b); }

  /// The pixel of an entry that will be taken soon, where that is cheap to tell; else none.
  int upcoming() const { return upcoming_; }
  static constexpr int none = -1;

private:
  // Positions of the first and the last entry in the pool. No bucket has chunk 0, so that a table
  // of zeros is one of empty buckets.
  struct Bucket {
    std::int64_t head;
    std::int64_t last;
  };
  static constexpr std::int64_t empty = 0;
  static constexpr std::int64_t chunkSize = 256;
  static constexpr std::int64_t noChunk = 0;
  static constexpr std::int64_t wordBits = 64;
  // A chunk has room for what a bucket might hold: large ones are read fast, small ones waste
  // little where each of many buckets has an entry or two.
  static constexpr int smallestChunkShift = 2;
  static constexpr int largestChunkShift = 8;
  // So many entries ahead, memory asked for now will have arrived.
  static constexpr int lookahead = 16;

  std::int64_t chunkOf(std::int64_t position) const { return position >> chunkShift_; }
  std::int64_t firstOf(std::int64_t chunk) const { return chunk << chunkShift_; }
  bool endsChunk(std::int64_t position) const { return (position & chunkMask_) == chunkMask_; }

  int pixelAhead(std::int64_t position, std::int64_t last) const {
    const std::int64_t ahead = position + lookahead;
    const bool isInChunk = (position & chunkMask_) + lookahead <= chunkMask_;
    const bool isUsed = ahead <= last || (position ^ last) > chunkMask_;
    return isInChunk && isUsed ? pool_[ahead].pixel : none;
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

  // Puts an unused chunk at the tail of bucket b; returns the position of its first entry.
  std::int64_t startChunk(Bucket &bucket, int b) {
    if (freeChunk_ == noChunk)
      growPool();
    const std::int64_t chunk = freeChunk_;
    freeChunk_ = next_[chunk];
    if (bucket.last != empty) {
      next_[chunkOf(bucket.last)] = chunk;
    } else {
      bucket.head = firstOf(chunk);
      if (dense_)
        occupied_[b / wordBits] |= std::uint64_t{1} << b % wordBits;
    }
    return firstOf(chunk);
  }

  // Gives back the chunk around a position; returns the chunk that followed it in its bucket.
  std::int64_t releaseChunk(std::int64_t position) {
    const std::int64_t chunk = chunkOf(position);
    const std::int64_t follower = next_[chunk];
    next_[chunk] = freeChunk_;
    freeChunk_ = chunk;
    return follower;
  }

  // Empties the current bucket, whose last entry has been taken.
  void drain(Bucket &bucket) {
    releaseChunk(bucket.last);
    bucket.last = empty;
    if (dense_)
      occupied_[current_ / wordBits] &= ~(std::uint64_t{1} << current_ % wordBits);
    else
      sparse_.erase(current_);
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
    const std::int64_t words = (nbuckets_ + wordBits - 1) / wordBits;
    std::int64_t word = current_ / wordBits;
    std::uint64_t bits = occupied_[word] & ~std::uint64_t{0} << current_ % wordBits;
    for (std::int64_t seen = 0; bits == 0; ++seen) {
      if (seen == words)
        return nullptr;
      word = word + 1 == words ? 0 : word + 1;
      bits = occupied_[word];
    }
    current_ = static_cast<int>(word * wordBits + std::countr_zero(bits));
    return &table_[current_];
  }

  void growPool() {
    const std::int64_t grown = std::max<std::int64_t>(64, 2 * nchunks_);
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
  bool dense_;
  int chunkShift_;
  std::int64_t chunkMask_; // the place of a position in its chunk
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

/// A queue for transforms whose keys are no path costs but single weights: what is appended before
/// the current bucket is served next.
template <class Entry>
class PulledBackQueue : public BucketQueue<Entry> {
public:
  using BucketQueue<Entry>::BucketQueue;

  void append(int b, Entry entry) {
    BucketQueue<Entry>::append(b, entry);
    BucketQueue<Entry>::pullBack(b);
  }
};

/// Entries for transforms in which paths never get better as they grow and each bucket holds a
/// single cost. Then a pixel that is done cannot be improved, and an entry is outdated exactly when
/// its pixel's cost belongs elsewhere: nothing needs to be stored beside the costs.
struct PlainEntries {
  struct Entry {
    int pixel;
  };
  template <class Rule>
  Entry make(const Rule &, int q, int, int) const {
    return {q};
  }
  bool isDone(int) const { return false; }
  void finish(Entry) {}
  template <class Arcs>
  void prefetch(const Arcs &, int) const {}
  template <class Rule>
  bool isValid(const Rule &rule, Entry entry, int bucket) const {
    return rule.costOf(entry.pixel) == bucket;
  }
};

/// Entries for all other transforms: a cost can meet another one in its bucket, so it is carried
/// along, and what is done is marked. Costs improve strictly, so no pixel waits twice with one
/// cost.
class MarkedEntries {
public:
  /// Ends the process with status 1, after the line of initQueue(), without memory.
  explicit MarkedEntries(int nelems)
      : done_(static_cast<char *>(tryAllocateZeroed(static_cast<std::size_t>(nelems), 1))) {
    if (done_ == nullptr)
      queueUnavailable('A');
  }

  struct Entry {
    int pixel;
    int cost;
  };
  template <class Rule>
  Entry make(const Rule &, int q, int, int cost) const {
    return {q, cost};
  }
  bool isDone(int q) const { return done_[q] != 0; }
  void finish(Entry entry) { done_[entry.pixel] = 1; }
  template <class Arcs>
  [[gnu::always_inline]] void prefetch(const Arcs &arcs, int p) const {
    arcs.prefetch(done_.get(), p);
  }
  template <class Rule>
  bool isValid(const Rule &rule, Entry entry, int) const {
    return !isDone(entry.pixel) && rule.costOf(entry.pixel) == entry.cost;
  }

private:
  Array<char> done_;
};

/// Calls plant(i, p) for each of n seeds, in order, p = pixel[i], but for a pixel that is listed
/// several times only at its last place. `scratch` has an element for each pixel of the image;
/// those of seeds are overwritten.
template <class Plant>
void forEachSeed(const int *pixel, int n, int *scratch, Plant plant) {
  for (int i = 0; i < n; ++i)
    scratch[pixel[i]] = i;
  for (int i = 0; i < n; ++i)
    if (scratch[pixel[i]] == i)
      plant(i, pixel[i]);
}

/// What arcs over an adjacency have in common.
struct WalkedArcs {
  const NeighborWalk *neighbors;

  template <class T>
  [[gnu::always_inline]] void prefetch(const T *band, int p) const {
    neighbors->prefetch(band, p);
  }
};

/// Runs a transform whose seeds are waiting in the queue.
template <class Arcs, class Rule, class Entries, class Queue>
void propagate(const Arcs &arcs, Rule &rule, Entries &entries, Queue &queue) {
  typename Entries::Entry entry;
  while (queue.take(entry)) {
    if (!entries.isValid(rule, entry, queue.current()))
      continue;
    if (queue.upcoming() != queue.none) {
      rule.prefetch(arcs, queue.upcoming());
      entries.prefetch(arcs, queue.upcoming());
    }
    const int p = entry.pixel;
    entries.finish(entry);
    rule.finish(entry);
    arcs.visit(
        entry, [&](int q, int k) __attribute__((always_inline)) {
          if (entries.isDone(q))
            return;
          const auto cost = rule.extend(p, arcs.weight(p, q, k));
          if (!rule.improves(cost, q))
            return;
          rule.conquer(p, q, k, cost);
          queue.append(rule.bucket(cost, q), entries.make(rule, q, k, cost));
        });
  }
}

} // namespace seedforest::detail
