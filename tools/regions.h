// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What is done to the regions of a label image after they were grown.
#pragma once

#include "seedforest/seedforest.hpp"

#include <optional>
#include <vector>

namespace seedforest::tools {

/// The labels of an image numbered 1 .. n by size, 0 for 0, and of each number the label that it
/// stands for; maxValue is n.
struct Numbered {
  Image numbers;
  std::vector<int> labelOf;
};
Numbered numbered(const Image &labels);

/// Which regions join, in this order.
struct Merging {
  int leastArea = 0; // smaller regions join the neighbour most like them
  std::optional<int> similar =
      std::nullopt;                        // neighbours join whose averages differ by at most that
  std::optional<int> count = std::nullopt; // regions to be left

  bool isAsked() const { return leastArea > 1 || similar.has_value() || count.has_value(); }
};

/// Labels after merging. A merged region keeps the label of the largest region in it, of equally
/// large ones the smallest label; label 0 is no region. Of regions that are not connected, more
/// than `count` may be left: those never merge.
Image merged(Image labels, const Image &image, const Merging &merging);

/// Sets the pixels of a label to 0.
void clearLabel(Image &labels, int label);

/// Sets pixels to 0 until no two neighbours have different labels above 0: in raster order, each
/// pixel beside an earlier one of another label.
void drawLines(Image &labels, const Adjacency &adjacency);

} // namespace seedforest::tools
