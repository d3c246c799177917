// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "graph/detail/edgeInserter.h"
#include "graph/detail/graphTools.h"

#include <algorithm>
#include <utility>

namespace seedforest::detail {

namespace {

// The pair as one number that is not 0.
std::uint64_t keyOf(int a, int b) {
  return (static_cast<std::uint64_t>(a) << 32 | static_cast<std::uint64_t>(b)) + 1;
}

// Spreads the bits of a key: multiplications by odd numbers without a pattern, and shifts.
std::uint64_t scramble(std::uint64_t key) {
  key = (key ^ (key >> 32)) * 0x9E3779B97F4A7C15U;
  key = (key ^ (key >> 29)) * 0xD1B54A32D192ED03U;
  return key ^ (key >> 32);
}

} // namespace

std::size_t PairSet::findSlot(std::uint64_t key) const {
  std::size_t slot = scramble(key) & (capacity_ - 1);
  while (slots_[slot] != 0 && slots_[slot] != key)
    slot = (slot + 1) & (capacity_ - 1);
  return slot;
}

void PairSet::grow() {
  const std::size_t before = capacity_;
  const Array<std::uint64_t> old = std::move(slots_);
  capacity_ = before == 0 ? 64 : 2 * before;
  slots_ = makeZeroedArray<std::uint64_t>(capacity_);
  for (std::size_t i = 0; i < before; ++i)
    if (old[i] != 0)
      slots_[findSlot(old[i])] = old[i];
}

bool PairSet::insert(int a, int b) {
  if (2 * size_ >= capacity_)
    grow();
  std::uint64_t &slot = slots_[findSlot(keyOf(a, b))];
  if (slot != 0)
    return false;
  slot = keyOf(a, b);
  ++size_;
  return true;
}

bool PairSet::contains(int a, int b) const {
  return capacity_ != 0 && slots_[findSlot(keyOf(a, b))] != 0;
}

void EdgeInserter::requireVertices(int a, int b) const {
  requireVertex(operation_, graph_, a);
  requireVertex(operation_, graph_, b);
}

bool EdgeInserter::isListed(int v, int target) const {
  const ifEdge *edge = graph_->vertices[v].edges;
  while (edge != nullptr && edge->target != target)
    edge = edge->next;
  return edge != nullptr;
}

void EdgeInserter::insert(int a, int b, int weight) {
  requireVertices(a, b);
  ifVertex *vertices = graph_->vertices;
  if (vertices[a].nEdges > vertices[b].nEdges)
    std::swap(a, b);
  if (isLong(a) ? known_.contains(std::min(a, b), std::max(a, b)) : isListed(a, b))
    return; // both lists have this edge
  prependEdge(&vertices[a], b, weight, arena_);
  if (a != b)
    prependEdge(&vertices[b], a, weight, arena_);
  for (const int v : {a, b})
    if (vertices[v].nEdges == few + 1) // long from now on
      for (const ifEdge *edge = vertices[v].edges; edge != nullptr; edge = edge->next)
        if (isLong(edge->target))
          known_.insert(std::min(v, edge->target), std::max(v, edge->target));
  if (isLong(a) && isLong(b))
    known_.insert(std::min(a, b), std::max(a, b));
}

void EdgeInserter::insertDirected(int a, int b, int weight) {
  requireVertices(a, b);
  if (isLong(a) ? !known_.insert(a, b) : isListed(a, b))
    return;
  ifVertex &list = graph_->vertices[a];
  prependEdge(&list, b, weight, arena_);
  if (list.nEdges == few + 1)
    for (const ifEdge *edge = list.edges; edge != nullptr; edge = edge->next)
      known_.insert(a, edge->target);
}

} // namespace seedforest::detail
