#include "graph/unionfind.h"

#include "base/buffer.h"
#include "base/report.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

using namespace seedforest::detail;

namespace {

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
  void *block = n < 0 ? nullptr
                      : tryAllocateZeroed(static_cast<std::size_t>(n),
                                          sizeof(ufElement) + ints * sizeof(int));
  if (block == nullptr)
    fatal(About::memory, "Could not allocate structure for union/find [%d elements]\n\n", n);
  *uf = {static_cast<ufElement *>(block), n, dataSize, nullptr};
  int *data = reinterpret_cast<int *>(uf->elems + n);
  for (int i = 0; i < n; ++i)
    uf->elems[i] = {i, 0, ints > 0 ? data + static_cast<std::size_t>(i) * ints : nullptr};
}

void ufReleaseUnionFind(ufUnionFind *uf) {
  std::free(uf->elems);
}

void ufLink(ufUnionFind *uf, int x, int y) {
  requireElement("ufLink", uf, x);
  requireElement("ufLink", uf, y);
  ufElement *elems = uf->elems;
  const bool equal = elems[x].rank == elems[y].rank;
  if (elems[x].rank > elems[y].rank)
    std::swap(x, y);
  elems[x].parent = y;
  if (uf->merge != nullptr)
    uf->merge(elems, y, x);
  if (equal)
    ++elems[y].rank;
}

int ufFindSet(ufUnionFind *uf, int x) {
  requireElement("ufFindSet", uf, x);
  ufElement *elems = uf->elems;
  int root = x;
  for (int steps = 0; elems[root].parent != root; ++steps) {
    root = elems[root].parent;
    requireElement("ufFindSet", uf, root);
    if (steps >= uf->n) // a link of what was no representative may have closed a circle
      fatal("ufFindSet: the parents of element %d lead in a circle\n", x);
  }
  while (x != root) {
    const int up = elems[x].parent;
    elems[x].parent = root;
    x = up;
  }
  return root;
}
