// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The find operation of union-find, shared by all users of it.
#pragma once

namespace seedforest::detail {

/// findRoot() from an x whose parent is no root: rare, and not inlined, to keep calling loops
/// small.
template <class ParentOf, class SetParent>
[[gnu::noinline]] int compressPath(int x, ParentOf parentOf, SetParent setParent) {
  int root = parentOf(x);
  for (int up = parentOf(root); up != root; up = parentOf(root))
    root = up;
  for (int up = parentOf(x); up != root; up = parentOf(x)) {
    setParent(x, root);
    x = up;
  }
  return root;
}

/// The root of the tree that holds x, in a forest of parent links. Path compression makes every
/// element on the way a child of the root (Tarjan, "Efficiency of a good but not linear set union
/// algorithm", 1975).
///   parentOf   int (int x): x's parent; a root is its own
///   setParent  void (int x, int root)
template <class ParentOf, class SetParent>
int findRoot(int x, ParentOf parentOf, SetParent setParent) {
  const int up = parentOf(x);
  return parentOf(up) == up ? up : compressPath(x, parentOf, setParent);
}

} // namespace seedforest::detail
