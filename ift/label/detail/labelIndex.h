// Tables indexed by labels, for labels that may be any integers.
#pragma once

#include "base/buffer.h"
#include "image/imImage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace seedforest::detail {

/// Where a table keeps the entry of each label that occurs in band 0 of an image: at its distance
/// from the smallest one or, where the labels are spread wider than the image has pixels, at its
/// rank among those that occur, which takes a binary search. A table never outgrows the image.
class LabelIndex {
public:
  explicit LabelIndex(const imImage *labels) {
    const int *label = labels->band[0];
    const auto npixels = static_cast<std::size_t>(labels->npixels);
    const auto [smallest, largest] = std::minmax_element(label, label + npixels);
    smallest_ = *smallest;
    size_ = static_cast<std::size_t>(std::int64_t{*largest} - smallest_ + 1);
    if (size_ <= npixels)
      return;
    sorted_ = makeArray<int>(npixels);
    std::copy_n(label, npixels, sorted_.get());
    std::sort(sorted_.get(), sorted_.get() + npixels);
    size_ = static_cast<std::size_t>(std::unique(sorted_.get(), sorted_.get() + npixels) -
                                     sorted_.get());
  }

  /// Entries that a table needs.
  std::size_t size() const { return size_; }

  /// The entry of a label that occurs.
  std::size_t operator()(int label) const {
    if (sorted_ == nullptr)
      return static_cast<std::size_t>(std::int64_t{label} - smallest_);
    return static_cast<std::size_t>(std::lower_bound(sorted_.get(), sorted_.get() + size_, label) -
                                    sorted_.get());
  }

private:
  Array<int> sorted_; // the labels that occur, where they are far apart
  std::int64_t smallest_;
  std::size_t size_;
};

} // namespace seedforest::detail
