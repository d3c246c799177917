// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Inserting many edges: the same lists as by insertEdge() and insertDirectedEdge(), in a time that
// does not grow with their length.
#pragma once

#include "base/buffer.h"
#include "graph/detail/blockArena.h"
#include "graph/graph.h"

#include <cstddef>
#include <cstdint>

namespace seedforest::detail {

/// A set of ordered pairs of numbers >= 0: a hash table with linear probing.
class PairSet {
public:
  /// Adds a pair; false where it is there already.
  bool insert(int a, int b);
  bool contains(int a, int b) const;

private:
  void grow();
  std::size_t findSlot(std::uint64_t key) const;

  Array<std::uint64_t> slots_; // 0 where free
  std::size_t capacity_ = 0;   // a power of two, or 0
  std::size_t size_ = 0;
};

/// Inserts edges into a graph that has none yet and is not changed in other ways meanwhile:
/// undirected ones or directed ones, not both. Ends with an error that names the operation: a
/// vertex outside the graph.
class EdgeInserter {
public:
  EdgeInserter(const char *operation, ifGraph *graph) : operation_(operation), graph_(graph) {}

  /// As insertEdge().
  void insert(int a, int b, int weight);

  /// As insertDirectedEdge().
  void insertDirected(int a, int b, int weight);

private:
  // Lists of no more edges are searched, which is faster than a look into a large table: of two
  // regions that meet, hardly ever both have more neighbours.
  static constexpr int few = 8;

  void requireVertices(int a, int b) const;
  bool isLong(int v) const { return graph_->vertices[v].nEdges > few; }
  bool isListed(int v, int target) const;

  const char *operation_;
  ifGraph *graph_;
  BlockArena arena_;
  PairSet known_; // directed edges of long lists, or undirected ones that are in two long lists
};

} // namespace seedforest::detail
