// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Windows of 3 x 3 pixels, a row at a time, for code that looks at all neighbours of all pixels.
//
// A position outside the image is replaced by the nearest pixel inside, which is another neighbour
// or the pixel itself. So a test for any neighbour that differs from the pixel gives the same
// answer, all rows are treated alike, and the inner columns are a loop that compilers turn into
// vector code.
#pragma once

#include "base/inline.h"
#include "image/imImage.h"

#include <algorithm>

namespace seedforest::detail {

/// Row y of a band and the rows beside it.
struct RowWindow {
  const int *above;
  const int *row;
  const int *below;

  RowWindow(const imImage *image, int b, int y) : RowWindow(image->band[b], image, y) {}

  /// Of a band that lies elsewhere, of the image's size.
  RowWindow(const int *band, const imImage *image, int y)
      : above(band + image->row[std::max(y - 1, 0)]), row(band + image->row[y]),
        below(band + image->row[std::min(y + 1, image->nrows - 1)]) {}

  /// 1 if test(value of q) holds for some neighbour q of the pixel in column x, between the columns
  /// left and right; else 0. Tests all neighbours, without a branch.
  template <class Test>
  int any(int left, int x, int right, Test test) const {
    const auto holds = [&test](int value) { return test(value) ? 1 : 0; };
    return holds(row[right]) | holds(below[x]) | holds(above[x]) | holds(row[left]) |
           holds(below[right]) | holds(below[left]) | holds(above[right]) | holds(above[left]);
  }
};

/// Calls look(left, x, right) for each column x and the columns beside it. Inlined by force, so
/// that it is compiled with the vector instructions of its caller.
template <class Look>
SEEDFOREST_INLINE inline void forEachColumn(int ncols, Look look) {
  const int last = ncols - 1;
  look(0, 0, std::min(1, last));
  for (int x = 1; x < last; ++x)
    look(x - 1, x, x + 1);
  if (last > 0)
    look(last - 1, last, last);
}

} // namespace seedforest::detail
