// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "graph/detail/blockArena.h"

#include "base/buffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace seedforest::detail {

void Slab::drop(std::size_t n) {
  if (nBlocks.fetch_sub(n, std::memory_order_acq_rel) == n)
    std::free(this);
}

void *BlockArena::tryAllocateElsewhere(std::size_t size) {
  if (nAlone_ < few) {
    ++nAlone_;
    return std::malloc(size);
  }
  if (nSections_ == 0 && !tryMakeSlab())
    return nullptr;
  new (nextSection_) Slab *(slab_);
  next_ = nextSection_ + unit / 2;
  left_ = section - unit / 2;
  nextSection_ += section;
  --nSections_;
  return tryAllocate(size);
}

bool BlockArena::tryMakeSlab() {
  retireSlab();
  slabSize_ = std::clamp(4 * slabSize_, smallestSlab, largestSlab);
  void *memory = tryReallocate(nullptr, slabSize_, 1);
  if (memory == nullptr)
    return false;
  slab_ = new (memory) Slab{slabSize_ / unit};
  char *begin = static_cast<char *>(memory) + sizeof(Slab);
  const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(begin) % section;
  nextSection_ = begin + (section - misaligned) % section;
  nSections_ =
      static_cast<std::size_t>(static_cast<char *>(memory) + slabSize_ - nextSection_) / section;
  return true;
}

void BlockArena::retireSlab() {
  if (slab_ != nullptr)
    slab_->drop(slabSize_ / unit - nBlocks_);
  slab_ = nullptr;
  nBlocks_ = 0;
  left_ = 0;
}

} // namespace seedforest::detail
