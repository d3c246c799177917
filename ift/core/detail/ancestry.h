// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// From predecessors to roots.
#pragma once

#include "base/arith.h"
#include "base/fetchAhead.h"
#include "base/inline.h"
#include "ift/core/detail/euclideanPropagation.h"
#include "ift/core/ifCost.h"

#include <algorithm>
#include <cstddef>

namespace seedforest::detail {

/// In place of the complement of a root's place in the list, where no path arrives.
inline constexpr int noRoot = minInt;

/// The values of the roots, and 0 for noRoot. There is a root at least.
void takeFromRoots(const int *complement, const int *atRoots, int n, int *values);

/// Finds the root of each pixel along the predecessors, in a sweep up and one down the image: a path
/// that comes from below, or from above, is followed to its root in one of them. The second one walks
/// what is left, and halves the ways. Where costs are steps, adds them up.
template <bool addSteps>
class Ancestry {
public:
  explicit Ancestry(const EuclideanProblem &problem)
      : problem_(problem), up_(problem.inherited.begin()->band) {
    const int n = static_cast<int>(problem.rootPixels.size());
    for (int i = 0; i < n; ++i)
      up_[problem.rootPixels[i]] = ~i;
  }

  /// From the last to the first row, takes the predecessors of its pixels.
  void addRow(int y, const int *pred) {
    startRow(problem_.image->row[y], pred);
    followRow(y);
  }

  /// Writes the inherited bands, when all rows have been added.
  void handDown() {
    const int npixels = problem_.image->npixels;
    forEachFetched(
        npixels,
        [this](int p) SEEDFOREST_INLINE {
          while (up_[p] >= 0) {
            if (const int q = up_[p]; up_[q] >= 0)
              follow(q);
            follow(p);
          }
        },
        up_);
    // The first one last: it holds the roots.
    for (std::size_t i = problem_.inherited.size(); i-- > 0;) {
      const InheritedBand &inherited = problem_.inherited.begin()[i];
      if (problem_.rootPixels.empty())
        std::fill_n(inherited.band, npixels, 0);
      else
        takeFromRoots(up_, inherited.atRoots, npixels, inherited.band);
    }
  }

private:
  void startRow(int begin, const int *pred) {
    const int ncols = problem_.image->ncols;
    const int *cost = problem_.cost + begin;
    int *up = up_ + begin;
    for (int x = 0; x < ncols; ++x) {
      const int root = cost[x] == ifInfiniteCost ? noRoot : up[x];
      up[x] = pred[x] != begin + x ? pred[x] : root;
    }
  }

  void followRow(int y) {
    const int begin = problem_.image->row[y];
    for (int p = begin + problem_.image->ncols - 1; p >= begin; --p)
      if (up_[p] > p)
        follow(p);
  }

  // Passes the pixel to which p points.
  SEEDFOREST_INLINE void follow(int p) {
    const int up = up_[p];
    up_[p] = up_[up];
    if (addSteps)
      problem_.cost[p] += problem_.cost[up];
  }

  const EuclideanProblem &problem_;
  int *up_; // a pixel on the way to the root, or the complement of the root's place in the list
};

} // namespace seedforest::detail
