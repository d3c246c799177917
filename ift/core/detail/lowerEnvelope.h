// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The lower envelope of parabolas of one shape, for distance transforms that go along columns and
// then along rows.
#pragma once

#include "base/buffer.h"

#include <cstdint>

namespace seedforest::detail {

/// height + (x - vertex)^2. The height is such that this fits 63 bits within the line.
struct Parabola {
  int vertex;
  int rank; ///< of parabolas that are equally low at x, the one of the least rank is the lower
  std::int64_t height;

  std::int64_t at(int x) const {
    const std::int64_t dx = std::int64_t{x} - vertex;
    return height + dx * dx;
  }
  bool isBelow(const Parabola &other, int x) const {
    const std::int64_t own = at(x);
    const std::int64_t others = other.at(x);
    return own < others || (own == others && rank < other.rank);
  }
};

/// Which parabola is the lowest at the whole numbers 0 .. length - 1. Two of them cross once, so from
/// some whole number on the one to the right stays below; ranks only settle on which side of the
/// crossing that number itself lies. So a parabola that is the lowest at no more than one tie keeps
/// that place. Linear in the parabolas and the length (Meijster, Roerdink, Hesselink, A general
/// algorithm for computing distance transforms in linear time, 2000).
class LowerEnvelope {
public:
  explicit LowerEnvelope(int length)
      : length_(length), pieces_(makeArray<Piece>(static_cast<std::size_t>(length))) {}

  void clear() { n_ = 0; }
  bool isEmpty() const { return n_ == 0; }

  /// Adds a parabola whose vertex is inside, and to the right of all that were added before.
  void add(const Parabola &parabola) {
    while (n_ > 0 && parabola.isBelow(pieces_[n_ - 1].parabola, pieces_[n_ - 1].begin))
      --n_;
    const std::int64_t begin = n_ == 0 ? 0 : firstBelow(pieces_[n_ - 1].parabola, parabola);
    if (begin < length_)
      pieces_[n_++] = {parabola, static_cast<int>(begin)};
  }

  /// Calls visit(parabola, begin, end) for each piece of the envelope, from left to right: the
  /// parabola is the lowest at begin .. end - 1.
  template <class Visit>
  void each(Visit visit) const {
    for (int i = 0; i < n_; ++i)
      visit(pieces_[i].parabola, pieces_[i].begin, i + 1 < n_ ? pieces_[i + 1].begin : length_);
  }

private:
  struct Piece {
    Parabola parabola;
    int begin;
  };

  // The first whole number at which `right` is below `left`, which it is not at 0.
  static std::int64_t firstBelow(const Parabola &left, const Parabola &right) {
    const std::int64_t apart = std::int64_t{right.vertex} - left.vertex;
    const std::int64_t sum = std::int64_t{right.vertex} + left.vertex;
    // They cross at twice / (2 * apart).
    const std::int64_t twice = right.height - left.height + apart * sum;
    const auto reach = static_cast<std::uint64_t>(right.rank < left.rank ? twice - 1 : twice);
    const auto divisor = static_cast<std::uint64_t>(2 * apart);
    // Narrow divisions take half the time or less.
    if ((reach | divisor) <= ~std::uint32_t{0})
      return static_cast<std::int64_t>(static_cast<std::uint32_t>(reach) /
                                       static_cast<std::uint32_t>(divisor)) +
             1;
    return static_cast<std::int64_t>(reach / divisor) + 1;
  }

  int length_;
  int n_ = 0;
  Array<Piece> pieces_;
};

} // namespace seedforest::detail
