// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Memory allocation. Blocks come from malloc and calloc, so that callers can free() the arrays of a
// record; large blocks are put on huge pages where the system grants them. A function that cannot
// allocate ends with an error through outOfMemory(), unless its comment says otherwise.
#pragma once

#include "base/inline.h"
#include "base/report.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace seedforest::detail {

/// A zeroed block for `count` elements of `size` bytes, or null when it cannot be allocated; count
/// 0 gives a block too. Pages are not touched before they are used. Release with free().
void *tryAllocateZeroed(std::size_t count, std::size_t size);

/// The same, never null.
void *allocateZeroed(std::size_t count, std::size_t size);

/// Grows or shrinks a block to `count` elements of `size` bytes, new bytes uninitialised (block may
/// be null, for a fresh one). Null when it cannot be allocated; the old block is freed then.
void *tryReallocate(void *block, std::size_t count, std::size_t size);

/// The same, never null.
void *reallocate(void *block, std::size_t count, std::size_t size);

/// Zeroed ints, for lists that a record hands to its caller.
inline int *allocateInts(std::size_t count) {
  return static_cast<int *>(allocateZeroed(count, sizeof(int)));
}

/// Prefetches the cache line of an address that will soon be read or written.
SEEDFOREST_INLINE inline void prefetchAt([[maybe_unused]] const void *address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

struct Free {
  void operator()(void *block) const { std::free(block); }
};

/// An array that frees itself: for scratch, or until release() hands it to a record.
template <class T>
using Array = std::unique_ptr<T[], Free>;

/// An uninitialised array of `count` elements.
template <class T>
Array<T> makeArray(std::size_t count) {
  static_assert(std::is_trivial_v<T>);
  return Array<T>(static_cast<T *>(reallocate(nullptr, count, sizeof(T))));
}

/// An array of `count` zeroed elements.
template <class T>
Array<T> makeZeroedArray(std::size_t count) {
  static_assert(std::is_trivial_v<T>);
  return Array<T>(static_cast<T *>(allocateZeroed(count, sizeof(T))));
}

/// The allocator of the standard library's containers.
template <class T>
struct Allocator {
  static_assert(alignof(T) <= alignof(std::max_align_t));
  using value_type = T;

  Allocator() = default;
  template <class U>
  Allocator(const Allocator<U> &) noexcept {}

  T *allocate(std::size_t count) { return static_cast<T *>(reallocate(nullptr, count, sizeof(T))); }
  void deallocate(T *block, std::size_t) noexcept { std::free(block); }

  friend bool operator==(const Allocator &, const Allocator &) { return true; }
};

template <class T>
using Vector = std::vector<T, Allocator<T>>;
using String = std::basic_string<char, std::char_traits<char>, Allocator<char>>;

/// A new object that its holder owns.
template <class T, class... Arguments>
std::unique_ptr<T> makeUnique(Arguments &&...arguments) {
  std::unique_ptr<T> made(new (std::nothrow) T(std::forward<Arguments>(arguments)...));
  if (made == nullptr)
    outOfMemory();
  return made;
}

/// A stack that allocates as it grows.
template <class T>
class Stack {
public:
  bool isEmpty() const { return size_ == 0; }

  /// The element pushed last; a further push() may move it.
  T &top() { return data_[size_ - 1]; }

  void push(T value) {
    if (size_ == capacity_) {
      capacity_ = std::max<std::size_t>(2 * capacity_, 64);
      data_.reset(static_cast<T *>(reallocate(data_.release(), capacity_, sizeof(T))));
    }
    data_[size_++] = value;
  }

  T pop() { return data_[--size_]; }

private:
  static_assert(std::is_trivial_v<T>);
  Array<T> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

} // namespace seedforest::detail
