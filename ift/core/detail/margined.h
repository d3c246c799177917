// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// An image with a margin around it, in which no pixel has to be asked which neighbours exist.
#pragma once

#include "base/inline.h"
#include "image/detail/neighborWalk.h"
#include "image/imImage.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>

namespace seedforest::detail {

/// The places of an image's pixels and of a margin as wide as an adjacency reaches, at least 1. Places
/// count along the rows; the margin behind a row is also the one in front of the next.
class Margined {
public:
  Margined(const imImage *image, const NeighborWalk &neighbors)
      : ncols_(image->ncols), nrows_(image->nrows) {
    std::int64_t across = 1;
    std::int64_t along = 1;
    for (int k = 0; k < neighbors.size(); ++k) {
      across = std::max(across, std::abs(std::int64_t{neighbors.dx(k)}));
      along = std::max(along, std::abs(std::int64_t{neighbors.dy(k)}));
    }
    const std::int64_t most =
        std::min<std::int64_t>(std::int64_t{4} * image->npixels + 4096, INT_MAX);
    isSmall_ = across < most && along < most && (ncols_ + across) < most / (nrows_ + 2 * along + 2);
    if (!isSmall_)
      return;
    margin_ = static_cast<int>(across);
    stride_ = ncols_ + margin_;
    ahead_ = static_cast<int>(along) * stride_ + margin_;
  }

  /// Whether the margin is no larger than a few images; else there are no places.
  bool isSmall() const { return isSmall_; }

  /// From a place to the one below.
  int stride() const { return stride_; }

  /// The number of places from the first pixel to the margin behind the last one.
  int size() const { return nrows_ * stride_; }

  /// The number of places of the margin in front of those, and behind them.
  int ahead() const { return ahead_; }

  int placeOf(int p) const { return p + p / ncols_ * margin_; }
  int pixelOf(int place) const { return place - place / stride_ * margin_; }

  /// From a place to that of the neighbour by a displacement.
  int offset(int dx, int dy) const { return dy * stride_ + dx; }

  /// Calls visit(p, place) for each pixel p, in order.
  template <class Visit>
  SEEDFOREST_INLINE void each(Visit visit) const {
    for (int y = 0; y < nrows_; ++y)
      for (int x = 0, p = y * ncols_, place = y * stride_; x < ncols_; ++x)
        visit(p + x, place + x);
  }

  /// The same in the opposite order.
  template <class Visit>
  SEEDFOREST_INLINE void eachBackwards(Visit visit) const {
    for (int y = nrows_ - 1; y >= 0; --y)
      for (int x = ncols_ - 1, p = y * ncols_, place = y * stride_; x >= 0; --x)
        visit(p + x, place + x);
  }

  /// Calls visit(place) for each place of the margin behind rows.
  template <class Visit>
  void eachOfMargin(Visit visit) const {
    for (int end = ncols_; end < size(); end += stride_)
      for (int i = 0; i < margin_; ++i)
        visit(end + i);
  }

private:
  int ncols_;
  int nrows_;
  bool isSmall_;
  int margin_ = 0;
  int stride_ = 0;
  int ahead_ = 0;
};

} // namespace seedforest::detail
