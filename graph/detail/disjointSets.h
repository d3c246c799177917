// Disjoint sets as a value.
#pragma once

#include "graph/unionfind.h"

namespace seedforest::detail {

/// Disjoint sets that release themselves.
class DisjointSets {
public:
  explicit DisjointSets(int n) { ufStartUnionFind(&uf_, n, 0); }
  ~DisjointSets() { ufReleaseUnionFind(&uf_); }
  DisjointSets(const DisjointSets &) = delete;
  DisjointSets &operator=(const DisjointSets &) = delete;

  /// As ufFindSet(), which is called only where there is a way to shorten.
  int find(int x) {
    if (static_cast<unsigned>(x) < static_cast<unsigned>(uf_.n)) {
      const int up = uf_.elems[x].parent;
      if (uf_.elems[up].parent == up)
        return up;
    }
    return ufFindSet(&uf_, x);
  }

  /// Links the set of x with the set of y, in this order, where they differ.
  void join(int x, int y) {
    const int a = find(x);
    const int b = find(y);
    if (a != b)
      ufLink(&uf_, a, b);
  }

private:
  ufUnionFind uf_;
};

} // namespace seedforest::detail
