// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The linker sends this program's calls of malloc, calloc and realloc here (--wrap), and operator
// new goes the same way. What the sanitizers put in their place is called in turn, so they see all.
#include "failingMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

int untilFailure = 0;
bool failed = false;

bool failsNow() {
  if (untilFailure == 0 || --untilFailure > 0)
    return false;
  failed = true;
  return true;
}

} // namespace

void failAllocation(int n) {
  untilFailure = n;
  failed = false;
}

bool allocationFailed() {
  return failed;
}

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *block, std::size_t size);

void *__wrap_malloc(std::size_t size) {
  return failsNow() ? nullptr : __real_malloc(size);
}
void *__wrap_calloc(std::size_t count, std::size_t size) {
  return failsNow() ? nullptr : __real_calloc(count, size);
}
void *__wrap_realloc(void *block, std::size_t size) {
  return failsNow() ? nullptr : __real_realloc(block, size);
}
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}
void *operator new(std::size_t size) {
  if (void *block = operator new(size, std::nothrow))
    return block;
  throw std::bad_alloc();
}
void operator delete(void *block) noexcept {
  std::free(block);
}
void operator delete(void *block, std::size_t) noexcept {
  std::free(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept { // where a constructor throws
  std::free(block);
}
