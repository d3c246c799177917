// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Which pixels are neighbours.
#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#pragma GCC visibility push(default)

namespace seedforest {

/// From a pixel to its neighbour: columns to the right and rows downwards.
struct Displacement {
  int dx;
  int dy;
  bool operator==(const Displacement &) const = default;
};

/// A list of displacements, in the order in which neighbours are visited, which decides between
/// equal paths. A neighbour outside the image does not exist. See imNeighborhood.h for the orders.
class Adjacency {
public:
  static Adjacency four();
  static Adjacency eight();

  /// All pixels at a squared distance of at most r2, and the square of 2r + 1 by 2r + 1 pixels,
  /// each with the pixel itself. A negative r2 gives none.
  /// Throws Error: a negative r, or more than 2^30 - 1 displacements.
  static Adjacency disc(int r2);
  static Adjacency window(int r);

  /// The caller's own list.
  static Adjacency of(std::vector<Displacement> list) { return Adjacency(std::move(list)); }

  std::span<const Displacement> displacements() const { return list_; }

private:
  explicit Adjacency(std::vector<Displacement> list) : list_(std::move(list)) {}

  std::vector<Displacement> list_;
};

} // namespace seedforest

#pragma GCC visibility pop
