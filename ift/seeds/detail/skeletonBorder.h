// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The border of a shape as roots of its skeleton; see ifSkel2Roots().
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// The objects of an image, their border thinned. All that is kept of a pixel is a byte.
class SkeletonBorder {
public:
  /// `marks` has a byte for each pixel of the image, and serves as long as the object lives.
  SkeletonBorder(const imImage *image, unsigned char *marks);

  /// The number of pixels of the border.
  int size() const;

  /// Follows all contours, once, into the arrays of a record, which have zeros for size() roots or
  /// more.
  void follow(ifRoots2 *roots);

  bool isWaiting(int p) const { return mark_[p] == border; }
  bool isShape(int p) const { return mark_[p] != ground; }
  bool isGround(int p) const { return mark_[p] == ground; }

private:
  enum Mark : unsigned char { ground, interior, border };

  const imImage *image_;
  unsigned char *mark_; // a border pixel that has been followed counts as interior
};

} // namespace seedforest::detail
