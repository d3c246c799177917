// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Tables indexed by labels, for labels that may be any integers.
#pragma once

#include "base/buffer.h"
#include "image/imImage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace seedforest::detail {

/// The index in a table of each label that occurs in band 0 of an image: the label minus the
/// smallest one or, where the labels' range is larger than the number of pixels, its rank among the
/// labels that occur, found by binary search. A table never has more entries than the image has
/// pixels.
class LabelIndex {
public:
  explicit LabelIndex(const imImage *labels) {
    const int *label = labels->band[0];
    const auto npixels = static_cast<std::size_t>(labels->npixels);
    const auto [smallest, largest] = std::minmax_element(label, label + npixels);
    smallest_ = *smallest;
    const std::int64_t range = *largest - smallest_ + 1;
    if (range <= labels->npixels) {
      size_ = static_cast<std::size_t>(range);
      return;
    }
    sorted_ = makeArray<int>(npixels);
    std::copy_n(label, npixels, sorted_.get());
    std::sort(sorted_.get(), sorted_.get() + npixels);
    size_ = static_cast<std::size_t>(std::unique(sorted_.get(), sorted_.get() + npixels) -
                                     sorted_.get());
  }

  /// Entries that a table needs.
  std::size_t size() const { return size_; }

  /// The index of a label that occurs.
  std::size_t operator()(int label) const {
    if (sorted_ == nullptr)
      return static_cast<std::size_t>(std::int64_t{label} - smallest_);
    return static_cast<std::size_t>(std::lower_bound(sorted_.get(), sorted_.get() + size_, label) -
                                    sorted_.get());
  }

private:
  Array<int> sorted_; // the labels that occur, where their range is large; else null
  std::int64_t smallest_;
  std::size_t size_;
};

} // namespace seedforest::detail
