// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/detail/skeletonBorder.h"

#include "base/buffer.h"
#include "base/inline.h"
#include "base/multiversion.h"
#include "ift/label/detail/contourWalk.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <cstring>

namespace seedforest::detail {

namespace {

// Calls visit(p) for each of n marks that has a value when it is reached.
template <class Visit>
void forEachMark(const unsigned char *marks, int n, unsigned char value, Visit visit) {
  const auto *end = marks + n;
  for (const auto *at = marks; at < end; ++at) {
    at = static_cast<const unsigned char *>(
        std::memchr(at, value, static_cast<std::size_t>(end - at)));
    if (at == nullptr)
      return;
    visit(static_cast<int>(at - marks));
  }
}

// Marks the pixels of a row with 1 in objects, and with 2 where one of the four neighbours is 0. At
// the image's first and last row the row stands in for the missing one: no pixel of an object is 0.
SEEDFOREST_MULTIVERSION void markRow(const int *row, const int *above, const int *below, int ncols,
                                     unsigned char *mark) {
  const auto markOf = [=](int x, int left, int right) SEEDFOREST_INLINE {
    const unsigned isObject = row[x] > 0 ? 1 : 0;
    const unsigned touchesGround =
        static_cast<unsigned>(row[left] == 0) | static_cast<unsigned>(row[right] == 0) |
        static_cast<unsigned>(above[x] == 0) | static_cast<unsigned>(below[x] == 0);
    return static_cast<unsigned char>(isObject << touchesGround);
  };
  const int last = ncols - 1;
  mark[0] = markOf(0, 0, std::min(1, last));
  for (int x = 1; x < last; ++x)
    mark[x] = markOf(x, x - 1, x + 1);
  mark[last] = markOf(last, std::max(last - 1, 0), last);
}

} // namespace

SkeletonBorder::SkeletonBorder(const imImage *image, unsigned char *marks)
    : image_(image), mark_(marks) {
  const int *value = image->band[0];
  for (int y = 0; y < image->nrows; ++y)
    markRow(value + image->row[y], value + image->row[std::max(y - 1, 0)],
            value + image->row[std::min(y + 1, image->nrows - 1)], image->ncols,
            marks + image->row[y]);
  // Border pixels that do not touch the interior are none.
  const NeighborWalk neighbors(image, imNeighborhood8);
  forEachMark(marks, image->npixels, border, [&](int p) {
    const int y = p / image->ncols;
    if (!neighbors.any(p - y * image->ncols, y,
                       [marks](int q, int) { return marks[q] == interior; }))
      marks[p] = ground;
  });
}

int SkeletonBorder::size() const {
  return static_cast<int>(std::count(mark_, mark_ + image_->npixels, border));
}

void SkeletonBorder::follow(ifRoots2 *roots) {
  int *list = nullptr;
  imNeighborhood8(&list);
  const Array<int> displacements(list);
  ContourWalk walk(*this, image_->ncols, image_->nrows, displacements.get());
  int contour = 0;
  forEachMark(mark_, image_->npixels, border, [&](int p) {
    ++contour;
    walk.from(p, [&](int q) {
      mark_[q] = interior;
      roots->pixel[roots->n] = q;
      roots->value[roots->n] = contour;
      roots->label[roots->n] = roots->n + 1;
      ++roots->n;
    });
  });
}

} // namespace seedforest::detail
