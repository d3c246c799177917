// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imNeighborhood.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>

using namespace seedforest::detail;

namespace {

int fixedList(const char *operation, int **list, std::initializer_list<int> displacements) {
  requireGiven(operation, "place for the list", list);
  *list = allocateInts(displacements.size());
  std::copy(displacements.begin(), displacements.end(), *list);
  return static_cast<int>(displacements.size() / 2);
}

// Columns dx = -r .. r of displacements, where column dx holds dy = -reach(dx) .. reach(dx).
template <class Reach>
int columnList(const char *operation, int **list, int r, int argument, Reach reach) {
  requireGiven(operation, "place for the list", list);
  std::int64_t n = 0;
  for (int dx = -r; dx <= r; ++dx)
    n += 2 * std::int64_t{reach(dx)} + 1;
  if (n > maxInt / 2)
    fatal("%s: %d is too large\n", operation, argument);
  int *at = *list = allocateInts(2 * static_cast<std::size_t>(n));
  for (int dx = -r; dx <= r; ++dx)
    for (int dy = -reach(dx); dy <= reach(dx); ++dy) {
      *at++ = dx;
      *at++ = dy;
    }
  return static_cast<int>(n);
}

} // namespace

int imNeighborhood4(int **list) {
  return fixedList("imNeighborhood4", list, {1, 0, 0, 1, 0, -1, -1, 0});
}

int imNeighborhood4forward(int **list) {
  return fixedList("imNeighborhood4forward", list, {1, 0, 0, 1});
}

int imNeighborhood8(int **list) {
  return fixedList("imNeighborhood8", list, {1, 0, 0, 1, 0, -1, -1, 0, 1, 1, -1, 1, 1, -1, -1, -1});
}

int imNeighborhood8forward(int **list) {
  return fixedList("imNeighborhood8forward", list, {1, 0, 0, 1, 1, 1, -1, 1});
}

int imNeighborhood8Clockwise(int **list) {
  return fixedList("imNeighborhood8Clockwise", list,
                   {1, 0, 1, 1, 0, 1, -1, 1, -1, 0, -1, -1, 0, -1, 1, -1});
}

int imNeighborhood(int **list, int r2) {
  if (r2 < 0)
    return fixedList("imNeighborhood", list, {});
  return columnList("imNeighborhood", list, truncatedSqrt(r2), r2,
                    [r2](int dx) { return truncatedSqrt(r2 - dx * dx); });
}

int imMorphWindow(int **list, int r) {
  if (r < 0 || r > truncatedSqrt(maxInt))
    fatal("imMorphWindow: %d is no radius\n", r);
  return columnList("imMorphWindow", list, r, r, [r](int) { return r; });
}
