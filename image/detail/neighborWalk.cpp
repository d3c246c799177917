// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/detail/neighborWalk.h"

#include "base/arith.h"

#include <algorithm>
#include <cstdint>

namespace seedforest::detail {

NeighborWalk::NeighborWalk(const imImage *image, imNeighborhoodFn adjacency)
    : ncols_(image->ncols), nrows_(image->nrows), lastRow_(image->npixels - image->ncols) {
  int *list = nullptr;
  n_ = adjacency(&list);
  displacement_.reset(list);
  measure();
}

NeighborWalk::NeighborWalk(const imImage *image, int n, const int *displacements)
    : n_(n), ncols_(image->ncols), nrows_(image->nrows), lastRow_(image->npixels - image->ncols),
      displacement_(makeArray<int>(2 * static_cast<std::size_t>(n))) {
  std::copy_n(displacements, 2 * static_cast<std::size_t>(n), displacement_.get());
  measure();
}

void NeighborWalk::measure() {
  offset_ = makeArray<int>(static_cast<std::size_t>(n_));
  for (int k = 0; k < n_; ++k) {
    left_ = std::max(left_, saturate(-std::int64_t{dx(k)}));
    right_ = std::max(right_, dx(k));
    up_ = std::max(up_, saturate(-std::int64_t{dy(k)}));
    down_ = std::max(down_, dy(k));
    offset_[k] = wrap(std::int64_t{dy(k)} * ncols_ + dx(k)); // used only where it fits
  }
}

bool NeighborWalk::isWindow() const {
  unsigned seen = 1 << 4; // a bit for each place of the window; the middle is no neighbour
  for (int k = 0; k < n_; ++k)
    if (dx(k) >= -1 && dx(k) <= 1 && dy(k) >= -1 && dy(k) <= 1)
      seen |= 1U << (3 * dy(k) + dx(k) + 4);
  return n_ == 8 && seen == 0x1ff;
}

UnsharedNeighborWalk::UnsharedNeighborWalk(const NeighborWalk &neighbors)
    : neighbors_(neighbors), isSmall_(neighbors.size() <= 64) {
  const int n = neighbors.size();
  const int narrivals = isSmall_ ? n : 0;
  list_ = makeArray<int>(static_cast<std::size_t>(n) * static_cast<std::size_t>(narrivals + 1));
  begin_ = makeArray<int>(static_cast<std::size_t>(narrivals) + 2);
  const auto reaches = [&neighbors, n](std::int64_t dx, std::int64_t dy) {
    for (int k = 0; k < n; ++k)
      if (neighbors.dx(k) == dx && neighbors.dy(k) == dy)
        return true;
    return dx == 0 && dy == 0;
  };
  int count = 0;
  begin_[0] = 0;
  for (int k = 0; k < n; ++k)
    list_[count++] = k;
  for (int arrival = 0; arrival < narrivals; ++arrival) {
    begin_[arrival + 1] = count;
    for (int k = 0; k < n; ++k)
      if (!reaches(std::int64_t{neighbors.dx(arrival)} + neighbors.dx(k),
                   std::int64_t{neighbors.dy(arrival)} + neighbors.dy(k)))
        list_[count++] = k;
  }
  begin_[narrivals + 1] = count;
}

} // namespace seedforest::detail
