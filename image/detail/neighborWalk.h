// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The neighbours of the pixels of an image.
#pragma once

#include "base/buffer.h"
#include "base/inline.h"
#include "image/imImage.h"
#include "image/imNeighborhood.h"

#include <span>

namespace seedforest::detail {

/// The neighbours that the pixels of an image have under an adjacency, in list order. This is the
/// one place where it is decided whether a neighbour exists.
class NeighborWalk {
public:
  NeighborWalk(const imImage *image, imNeighborhoodFn adjacency);

  /// The neighbours by n displacements, which are copied.
  NeighborWalk(const imImage *image, int n, const int *displacements);

  int size() const { return n_; }
  int dx(int k) const { return displacement_[2 * k]; }
  int dy(int k) const { return displacement_[2 * k + 1]; }

  /// q - p for the neighbour q of p by displacement k.
  int offset(int k) const { return offset_[k]; }

  /// Calls visit(q, k) for each neighbour q, by displacement k, of the pixel p = (x, y), until a
  /// call returns true; returns whether one did.
  template <class Visit>
  bool any(int x, int y, Visit visit) const {
    return anyOf(
        x, y, n_, [](int i) { return i; }, visit);
  }

  /// Calls visit(q, k) for every neighbour of p.
  template <class Visit>
  void each(int p, Visit visit) const {
    eachOf(
        p, n_, [](int i) { return i; }, visit);
  }

  /// The same, by the n displacements k = list[0], list[1], ... only.
  template <class Visit>
  void each(int p, const int *list, int n, Visit visit) const {
    eachOf(
        p, n, [list](int i) { return list[i]; }, visit);
  }

  /// Whether the neighbours are the eight around a pixel, in any order.
  bool isWindow() const;

  /// Whether they are at most eight, all of them among those, and reach to each of the four sides.
  bool isWithinWindow() const {
    return n_ <= 8 && left_ == 1 && right_ == 1 && up_ == 1 && down_ == 1;
  }

  /// Whether all neighbours of the pixel (x, y) exist.
  bool isInner(int x, int y) const {
    return x >= left_ && x < ncols_ - right_ && y >= up_ && y < nrows_ - down_;
  }

  /// Prefetches the values of a band at pixel p and at the pixels above and below it.
  template <class T>
  SEEDFOREST_INLINE void prefetch(const T *band, int p) const {
    prefetchAround(p, [band](int q) SEEDFOREST_INLINE { return band + q; });
  }

  /// The same for what lies at address(q) for each pixel q.
  template <class Address>
  SEEDFOREST_INLINE void prefetchAround(int p, Address address) const {
    prefetchAt(address(p));
    prefetchAt(address(p >= ncols_ ? p - ncols_ : p));
    prefetchAt(address(p < lastRow_ ? p + ncols_ : p));
  }

private:
  void measure();

  template <class Displacement, class Visit>
  bool anyOf(int x, int y, int n, Displacement displacement, Visit visit) const {
    const int p = x + y * ncols_;
    if (isInner(x, y)) {
      for (int i = 0; i < n; ++i)
        if (const int k = displacement(i); visit(p + offset_[k], k))
          return true;
      return false;
    }
    for (int i = 0; i < n; ++i)
      if (const int k = displacement(i); isInside(x, y, k) && visit(p + offset_[k], k))
        return true;
    return false;
  }

  template <class Displacement, class Visit>
  void eachOf(int p, int n, Displacement displacement, Visit visit) const {
    const int y = static_cast<int>(static_cast<unsigned>(p) / static_cast<unsigned>(ncols_));
    anyOf(p - y * ncols_, y, n, displacement, [&visit](int q, int k) {
      visit(q, k);
      return false;
    });
  }

  bool isInside(int x, int y, int k) const {
    // Unsigned, a coordinate left of or above the image is larger than any inside.
    return static_cast<unsigned>(x) + static_cast<unsigned>(dx(k)) <
               static_cast<unsigned>(ncols_) &&
           static_cast<unsigned>(y) + static_cast<unsigned>(dy(k)) < static_cast<unsigned>(nrows_);
  }

  int n_;
  int ncols_;
  int nrows_;
  int lastRow_;  // the first pixel of the last row
  int left_ = 0; // how far the relation reaches to each side
  int right_ = 0;
  int up_ = 0;
  int down_ = 0;
  Array<int> displacement_;
  Array<int> offset_;
};

/// The neighbours of a pixel that are not neighbours of its predecessor on a path too. Where a
/// longer path is never better, the predecessor has already offered the shared ones a path that is
/// at least as good; with the 8-adjacency three or five of eight neighbours are left.
class UnsharedNeighborWalk {
public:
  explicit UnsharedNeighborWalk(const NeighborWalk &neighbors);

  static constexpr int start = -1;

  /// The displacements k to the neighbours that the predecessor of a pixel does not share, when it
  /// was reached by displacement `arrival`; to all neighbours at the start of a path.
  std::span<const int> of(int arrival) const {
    const int i = isSmall_ ? arrival + 1 : 0;
    return {&list_[begin_[i]], &list_[begin_[i + 1]]};
  }

  /// Calls visit(q, k) for those neighbours q of p.
  template <class Visit>
  void each(int p, int arrival, Visit visit) const {
    const std::span<const int> list = of(arrival);
    neighbors_.each(p, list.data(), static_cast<int>(list.size()), visit);
  }

private:
  const NeighborWalk &neighbors_;
  bool isSmall_;     // few enough displacements for a list for each arrival
  Array<int> list_;  // all displacements, then the unshared ones for each arrival
  Array<int> begin_; // entry k + 1: where the list of arrival k begins
};

} // namespace seedforest::detail
