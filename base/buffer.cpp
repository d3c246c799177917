// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/buffer.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

namespace seedforest::detail {

namespace {

// Asks for huge pages under a large block. Touching fresh memory in 4 KiB pages costs several times
// the work done on it; small blocks would only waste the rest of a 2 MiB page. A refusal is
// harmless.
void adviseHugePages([[maybe_unused]] void *block, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr std::size_t page = 4096;
  constexpr std::size_t worthwhile = std::size_t{4} << 20;
  if (block == nullptr || bytes < worthwhile)
    return;
  const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(block) % page;
  const std::size_t skip = misaligned == 0 ? 0 : page - misaligned;
  madvise(static_cast<char *>(block) + skip, (bytes - skip) / page * page, MADV_HUGEPAGE);
#endif
}

} // namespace

void *tryAllocateZeroed(std::size_t count, std::size_t size) {
  void *block = std::calloc(std::max<std::size_t>(count, 1), size);
  adviseHugePages(block, count * size);
  return block;
}

void *allocateZeroed(std::size_t count, std::size_t size) {
  void *block = tryAllocateZeroed(count, size);
  if (block == nullptr)
    outOfMemory();
  return block;
}

void *tryReallocate(void *block, std::size_t count, std::size_t size) {
  const bool fits = count <= std::numeric_limits<std::size_t>::max() / size;
  void *grown = fits ? std::realloc(block, std::max<std::size_t>(count * size, 1)) : nullptr;
  if (grown == nullptr)
    std::free(block);
  else
    adviseHugePages(grown, count * size);
  return grown;
}

void *reallocate(void *block, std::size_t count, std::size_t size) {
  block = tryReallocate(block, count, size);
  if (block == nullptr)
    outOfMemory();
  return block;
}

} // namespace seedforest::detail
