// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Disjoint sets (union-find) as a class.
#pragma once

#include "base/findRoot.h"
#include "graph/unionfind.h"

namespace seedforest::detail {

/// Disjoint sets, released by the destructor.
class DisjointSets {
public:
  explicit DisjointSets(int n) { ufStartUnionFind(&uf_, n, 0); }
  ~DisjointSets() { ufReleaseUnionFind(&uf_); }
  DisjointSets(const DisjointSets &) = delete;
  DisjointSets &operator=(const DisjointSets &) = delete;

  /// The representative of the set of x, which is an element.
  int find(int x) {
    ufElement *elems = uf_.elems;
    return findRoot(
        x, [elems](int i) { return elems[i].parent; },
        [elems](int i, int root) { elems[i].parent = root; });
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
