// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "graph/unionfind.h"

#include "base/buffer.h"
#include "base/findRoot.h"
#include "base/report.h"
#include "base/require.h"
#include "graph/detail/linkSize.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

using namespace seedforest::detail;

namespace {

thread_local int linkedDataSize = -1;

// Sets linkedDataSize while a merge callback runs. Callbacks may link too, so scopes nest.
class LinkScope {
public:
  explicit LinkScope(int dataSize) : outer_(std::exchange(linkedDataSize, dataSize)) {}
  ~LinkScope() { linkedDataSize = outer_; }
  LinkScope(const LinkScope &) = delete;
  LinkScope &operator=(const LinkScope &) = delete;

private:
  int outer_;
};

void requireElement(const char *operation, const ufUnionFind *uf, int x) {
  if (static_cast<unsigned>(x) >= static_cast<unsigned>(uf->n))
    fatal("%s: element %d is outside the union/find\n", operation, x);
}

} // namespace

void ufStartUnionFind(ufUnionFind *uf, int n, int dataSize) {
  if (uf == nullptr)
    fatal("Union/find was not allocated before ufStartUnionFind \n\n");
  // One block: the elements, and behind them the data of each in turn.
  const auto ints = static_cast<std::size_t>(std::max(dataSize, 0));
  constexpr std::size_t mostInts = (SIZE_MAX - sizeof(ufElement)) / sizeof(int);
  void *block =
      n < 0 || ints > mostInts
          ? nullptr
          : tryAllocateZeroed(static_cast<std::size_t>(n), sizeof(ufElement) + ints * sizeof(int));
  if (block == nullptr)
    fatal(n < 0 ? About::call : About::memory,
          "Could not allocate structure for union/find [%d elements]\n\n", n);
  *uf = {static_cast<ufElement *>(block), n, dataSize, nullptr};
  int *data = reinterpret_cast<int *>(uf->elems + n);
  for (int i = 0; i < n; ++i)
    uf->elems[i] = {i, 0, ints > 0 ? data + static_cast<std::size_t>(i) * ints : nullptr};
}

void ufReleaseUnionFind(ufUnionFind *uf) {
  requireGiven("ufReleaseUnionFind", "union/find", uf);
  std::free(uf->elems);
}

void ufLink(ufUnionFind *uf, int x, int y) {
  requireGiven("ufLink", "union/find", uf);
  requireElement("ufLink", uf, x);
  requireElement("ufLink", uf, y);
  ufElement *elems = uf->elems;
  const bool equal = elems[x].rank == elems[y].rank;
  if (elems[x].rank > elems[y].rank)
    std::swap(x, y);
  elems[x].parent = y;
  if (uf->merge != nullptr) {
    const LinkScope scope(uf->dataSize);
    uf->merge(elems, y, x);
  }
  if (equal)
    ++elems[y].rank;
}

int ufFindSet(ufUnionFind *uf, int x) {
  requireGiven("ufFindSet", "union/find", uf);
  const std::int64_t longest = 2 * std::int64_t{uf->n} + 2; // twice the way up, and the root again
  std::int64_t steps = 0;
  const auto parentOf = [&](int i) {
    requireElement("ufFindSet", uf, i);
    if (++steps > longest) // ufLink() of an element that is no representative can close a circle
      fatal("ufFindSet: the parents of element %d lead in a circle\n", x);
    return uf->elems[i].parent;
  };
  return findRoot(x, parentOf, [uf](int i, int root) { uf->elems[i].parent = root; });
}

namespace seedforest::detail {

int dataSizeOfLink() {
  return linkedDataSize;
}

} // namespace seedforest::detail
