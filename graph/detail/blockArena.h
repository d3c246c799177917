// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Memory for the many small blocks of a graph, its edges and the integers of its vertices, from
// slabs: blocks lie side by side in the order in which they were made, and take no bytes beside
// their own. With a malloc() for each, the graph of a million small regions and its tree took three
// times as long.
//
// A block is released on its own, like one of malloc(), and either kind may stand in the same list.
// Its address tells which it is: malloc() returns multiples of twice a pointer's size, and the
// blocks of a slab lie half of that beside. A slab is divided into sections at multiples of their
// size, each of which begins with a pointer to its slab, so rounding down a block's address leads
// there. The slab counts its blocks, and goes with the last one.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size)
#endif

namespace seedforest::detail {

/// What a slab begins with.
struct Slab {
  std::atomic<std::size_t> nBlocks; ///< not released yet, of as many as could ever be in it

  /// Takes n from the count, and frees the slab where none is left. Atomic, since blocks may have
  /// been moved to lists that other threads release.
  void drop(std::size_t n);
};

/// Makes blocks, for an operation that makes many. They stay when it goes.
class BlockArena {
public:
  static constexpr std::size_t largest = 512; // bytes; others would leave much of a section free

  BlockArena() = default;
  ~BlockArena() { retireSlab(); }
  BlockArena(const BlockArena &) = delete;
  BlockArena &operator=(const BlockArena &) = delete;

  /// An uninitialised block of up to `largest` bytes, aligned for pointers, or null when it cannot
  /// be allocated. Release with BlockReleaser.
  void *tryAllocate(std::size_t bytes) {
    const std::size_t size = (bytes + unit - 1) / unit * unit;
    if (size > left_)
      return tryAllocateElsewhere(size);
    char *block = next_;
    next_ += size;
    left_ -= size;
    ++nBlocks_;
    return block;
  }

private:
  friend class BlockReleaser;

  // Sizes of blocks are multiples of this, and their addresses half of it beside one.
  static constexpr std::size_t unit = 2 * sizeof(void *);
  static_assert(alignof(std::max_align_t) % unit == 0); // so malloc() returns multiples
  static constexpr std::size_t section = 4096;

  // The first few blocks are those of malloc(), so that who needs a single one asks here, too. Then
  // come slabs, the next one four times as large as the one before.
  static constexpr int few = 64;
  static constexpr std::size_t smallestSlab = std::size_t{16} << 10;
  static constexpr std::size_t largestSlab = std::size_t{16} << 20;

  void *tryAllocateElsewhere(std::size_t size);
  bool tryMakeSlab();
  void retireSlab();

  int nAlone_ = 0; // blocks that are in no slab
  Slab *slab_ = nullptr;
  std::size_t slabSize_ = 0;
  std::size_t nBlocks_ = 0;     // made of this slab
  std::size_t nSections_ = 0;   // of the slab that are untouched
  char *nextSection_ = nullptr; // the first of them
  char *next_ = nullptr;        // in the section before
  std::size_t left_ = 0;        // bytes of that section, from there
};

/// Releases blocks of arenas and of malloc(). Blocks of one slab are counted together.
class BlockReleaser {
public:
  BlockReleaser() = default;
  ~BlockReleaser() { flush(); }
  BlockReleaser(const BlockReleaser &) = delete;
  BlockReleaser &operator=(const BlockReleaser &) = delete;

  void release(void *block) {
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    if (address % BlockArena::unit == 0) {
      std::free(block);
      return;
    }
    const std::size_t place = address % BlockArena::section;
    Slab *slab = *reinterpret_cast<Slab **>(static_cast<char *>(block) - place);
    ASAN_POISON_MEMORY_REGION(block, BlockArena::unit); // an access to it is a fault from now on
    if (slab != slab_) {
      flush();
      slab_ = slab;
    }
    ++nBlocks_;
  }

private:
  void flush() {
    if (slab_ != nullptr)
      slab_->drop(nBlocks_);
    nBlocks_ = 0;
  }

  Slab *slab_ = nullptr;
  std::size_t nBlocks_ = 0;
};

} // namespace seedforest::detail
