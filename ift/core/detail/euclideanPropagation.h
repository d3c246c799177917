// The Euclidean propagation, for the operations that run it.
#pragma once

#include "image/detail/neighborWalk.h"

#include <cstdint>
#include <initializer_list>

namespace seedforest::detail {

/// A band that hands down what a root has to the pixels that the root wins; 0 where no path
/// arrives.
struct InheritedBand {
  int *band;
  const int *atRoots; ///< the value of each root, in the order of the roots
};

struct EuclideanProblem {
  const char *operation; ///< named where a root is outside the image
  const imImage *image;
  const NeighborWalk &neighbors;
  std::int64_t nbuckets;
  const int *rootPixel;
  int nroots;
  int *cost; ///< written: the squared distances
  int *pred; ///< written: the predecessors
  std::initializer_list<InheritedBand> inherited;
};
void propagateEuclidean(const EuclideanProblem &problem);

} // namespace seedforest::detail
