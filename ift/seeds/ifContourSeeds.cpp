// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/ifContourSeeds.h"

#include "base/buffer.h"
#include "base/require.h"
#include "ift/label/detail/borderPixels.h"
#include "ift/label/ifContour.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/detail/ownedRoots.h"
#include "ift/seeds/detail/skeletonBorder.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <utility>

using namespace seedforest::detail;

namespace {

// The labelled pixels of an image as roots in a caller's record, which takes over the arrays.
void fillRoots(ifRoots *roots, const imImage *labels) {
  const ifRootsPtr record(ifLabelsToRoots(labels));
  *roots = std::exchange(*record, {});
}

} // namespace

void ifDistTransfRoots(const imImage *binary, ifRoots *roots, int contour) {
  requireBands("ifDistTransfRoots", binary, 1);
  requireGiven("ifDistTransfRoots", "roots record", roots);
  const imImagePtr border = createLike(binary, 1, imTypeGrey);
  if (contour != 0) {
    ifRegionsToContours(binary, border.get());
    labelContours(border.get(), border.get());
  } else {
    const imImagePtr labels = createLike(binary, 1, imTypeAscii);
    ifLabelImage(binary, labels.get());
    forEachBorderPixel(labels.get(), imNeighborhood8,
                       [&](int p) { border->band[0][p] = labels->band[0][p]; });
  }
  fillRoots(roots, border.get());
}

imImage *ifSkel2Roots(const imImage *image, ifRoots2 *roots) {
  requireBands("ifSkel2Roots", image, 1);
  requireGiven("ifSkel2Roots", "roots record", roots);
  const auto npixels = static_cast<std::size_t>(image->npixels);
  const Array<unsigned char> marks = makeArray<unsigned char>(npixels);
  SkeletonBorder border(image, marks.get());
  OwnedRoots2 record;
  record.allocate(npixels);
  border.follow(&record);
  imImagePtr shape = requireMade(tryCreateLike(image, image->nbands, imTypeGrey, 255).release());
  for (int p = 0; p < image->npixels; ++p)
    shape->band[0][p] = border.isShape(p) ? 255 : 0;
  *roots = record.release();
  return shape.release();
}

namespace {

// A curve's first and last row, and the pixel from which it is numbered.
struct Curve {
  int first;
  int last;
  int start;

  int middleRow() const { return (first + last) / 2; }
};

constexpr Curve noCurve = {100000, -1, -1}; // rows are expected between these

// Calls visit(curve, p, y) for each labelled pixel p, in row y.
template <class Visit>
void forEachCurvePixel(const imImage *labels, Curve *curves, Visit visit) {
  int p = 0;
  for (int y = 0; y < labels->nrows; ++y)
    for (int x = 0; x < labels->ncols; ++x, ++p)
      if (const int label = labels->band[0][p]; label > 0)
        visit(curves[label - 1], p, y);
}

// The 8-connected curves of a border image, found in two passes over the pixels for all of them.
Array<Curve> findCurves(const imImage *border, int &count) {
  const imImagePtr labels = createLike(border, 1, imTypeAscii);
  ifLabelImage(border, labels.get());
  count = labels->maxValue;
  Array<Curve> curves = makeArray<Curve>(static_cast<std::size_t>(count));
  std::fill_n(curves.get(), count, noCurve);
  forEachCurvePixel(labels.get(), curves.get(), [](Curve &curve, int, int y) {
    curve.first = std::min(curve.first, y);
    curve.last = std::max(curve.last, y);
  });
  forEachCurvePixel(labels.get(), curves.get(), [](Curve &curve, int p, int y) {
    if (curve.start == noCurve.start && y == curve.middleRow())
      curve.start = p;
  });
  return curves;
}

} // namespace

void ifSkel2RootsSplit(const imImage *image, ifRoots *roots) {
  requireBands("ifSkel2RootsSplit", image, 1);
  requireGiven("ifSkel2RootsSplit", "roots record", roots);
  const imImagePtr border = createLike(image, 1, imTypeGrey);
  ifRegionsToContours(image, border.get());
  int ncurves = 0;
  const Array<Curve> curves = findCurves(border.get(), ncurves);
  const NeighborWalk neighbors(image, imNeighborhood8Clockwise);
  const imImagePtr order = createLike(image, 1, imTypeAscii);
  const Array<int> fifo = makeArray<int>(static_cast<std::size_t>(image->npixels));
  int count = 0;
  const auto visit = [&](int p) {
    fifo[count++] = p;
    order->band[0][p] = count;
  };
  int next = 0; // the first in the FIFO whose neighbours have not been looked at
  for (int i = 0; i < ncurves; ++i) {
    if (curves[i].start != noCurve.start)
      visit(curves[i].start);
    while (next < count)
      neighbors.each(fifo[next++], [&](int q, int) {
        if (border->band[0][q] > 0 && order->band[0][q] == 0)
          visit(q);
      });
  }
  fillRoots(roots, order.get());
}
