// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/ifContour.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "base/require.h"
#include "ift/label/detail/borderPixels.h"
#include "ift/label/detail/contourWalk.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <cstdint>

using namespace seedforest::detail;

void ifRegionsToContours(const imImage *labels, imImage *output) {
  requireBands("ifRegionsToContours", labels, 1);
  requireBands("ifRegionsToContours", output, 1);
  requireSameSize("ifRegionsToContours", labels, output);
  forEachBorderPixel(labels, imNeighborhood4, [output](int p) { output->band[0][p] = 255; });
  output->maxValue = 255;
}

int labelContours(const imImage *contour, imImage *labels) {
  requireBands("labelContours", contour, 1);
  requireBands("labelContours", labels, 1);
  requireSameSize("labelContours", contour, labels);
  constexpr int straightSteps = 4; // the diagonal ones follow them
  const NeighborWalk neighbors(contour, imNeighborhood8);
  const int *value = contour->band[0];
  int *label = labels->band[0];
  const auto npixels = static_cast<std::size_t>(contour->npixels);
  const Array<bool> visited = makeZeroedArray<bool>(npixels);
  const Array<int> fifo = makeArray<int>(npixels); // every pixel visited, in order
  std::int64_t n = 0;                              // the last number; curves' ends skip numbers
  int count = 0;
  const auto visit = [&](int p) {
    visited[p] = true;
    fifo[count++] = p;
    label[p] = saturate(++n);
  };
  int next = 0; // the first in the FIFO whose neighbors have not been looked at
  for (int p = 0; p < contour->npixels; ++p) {
    if (value[p] <= 0 || visited[p])
      continue;
    visit(p);
    while (next < count) {
      const int q = fifo[next++];
      bool straight = false;
      neighbors.each(q, [&](int r, int k) {
        if (value[r] == 0 || visited[r] || (straight && k >= straightSteps))
          return;
        visit(r);
        straight = straight || k < straightSteps;
      });
    }
    n += 2;
    label[fifo[count - 1]] = saturate(n);
  }
  labels->maxValue = saturate(n);
  return count;
}

namespace {

// A mask of the pixels to walk to, and the shape along which.
struct MaskedShape {
  const int *mask;
  const int *shape;

  bool isWaiting(int p) const { return mask[p] >= 1; }
  bool isShape(int p) const { return shape[p] > 0; }
  bool isGround(int p) const { return shape[p] == 0; }
};

} // namespace

void ifContourFollow(ifRoots2 *record, int *count, int contour, imImage *mask, const imImage *shape,
                     int p, const int *displacements) {
  requireGiven("ifContourFollow", "roots record", record);
  requireGiven("ifContourFollow", "count", count);
  requireBands("ifContourFollow", mask, 1);
  requireBands("ifContourFollow", shape, 1);
  requireSameSize("ifContourFollow", mask, shape);
  requirePixel("ifContourFollow", mask, p);
  requireGiven("ifContourFollow", "list of displacements", displacements);
  const MaskedShape picture = {mask->band[0], shape->band[0]};
  ContourWalk walk(picture, mask->ncols, mask->nrows, displacements);
  walk.from(p, [&](int q) {
    if (*count < 0 || *count >= mask->npixels)
      fatal("ifContourFollow: no entry %d in a record of %d\n", *count, mask->npixels);
    record->pixel[*count] = q;
    record->value[*count] = contour;
    record->label[*count] = *count + 1;
    ++*count;
    mask->band[0][q] = 0;
  });
}
