// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Vector propagation of squared Euclidean distances, shared by iftEuclideanDT() and iftSkelNova();
// see iftEuclidean.h.
#pragma once

#include "image/detail/neighborWalk.h"

#include <cstdint>
#include <initializer_list>
#include <span>

namespace seedforest::detail {

/// A band that takes, at each pixel, a value of the pixel's root; 0 where no path arrives.
struct InheritedBand {
  int *band;
  const int *atRoots; ///< the value of each root, in the order of the roots
};

struct EuclideanProblem {
  const char *operation; ///< named in the error for a root outside the image
  const imImage *image;
  const NeighborWalk &neighbors;
  std::int64_t nbuckets;
  std::span<const int> rootPixels;
  int *cost; ///< written: the squared distances
  int *pred; ///< written: the predecessors; null where they are not wanted
  std::initializer_list<InheritedBand> inherited;
};

/// Writes the bands of the problem.
/// Ends with an error: a root outside the image, memory that cannot be allocated.
void propagateEuclidean(const EuclideanProblem &problem);

} // namespace seedforest::detail
