// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/ifSkeleton.h"

#include "base/report.h"
#include "base/require.h"
#include "ift/core/detail/euclideanPropagation.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/lowerEnvelope.h"
#include "ift/core/ifCost.h"
#include "ift/core/iftEuclidean.h"
#include "ift/label/ifContour.h"
#include "ift/seeds/detail/ownedRoots.h"
#include "ift/seeds/ifContourSeeds.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

#include <algorithm>
#include <cstdint>
#include <utility>

using namespace seedforest::detail;

namespace {

int nearDisc(int **list) {
  return imNeighborhood(list, 2);
}

// The work image of iftSkelNova() for a shape's border.
imImagePtr spreadBorder(const imImage *image) {
  OwnedRoots2 roots;
  imImagePtr shape(ifSkel2Roots(image, &roots));
  shape.reset(); // only the roots are needed
  imImagePtr work = createLike(image, 4, imTypeWork);
  iftSkelNova(image, work.get(), &roots);
  return work;
}

// A band of an image as an image of its own, valid as long as that.
struct BandView : imImage {
  BandView(const imImage *image, int b) : imImage(*image), pixels(image->band[b]) {
    nbands = 1;
    band = &pixels;
  }
  BandView(const BandView &) = delete;
  BandView &operator=(const BandView &) = delete;

  int *pixels;
};

// Whether a skeleton of this type has pixels of this value.
bool isOnSide(int skelType, int value) {
  return skelType == 0 || (skelType == 1) == (value > 0);
}

// Discs are known by their squared radii. So many columns, or rows, off its centre, what is left of a
// disc is its radius less the square of that; a disc of 0 is a single pixel.
constexpr int noDisc = -1;

// Leaves of a line the largest disc that is left at each place.
void spreadDiscs(int *disc, int length, LowerEnvelope &envelope) {
  envelope.clear();
  for (int x = 0; x < length; ++x)
    if (disc[x] != noDisc)
      envelope.add({x, 0, -std::int64_t{disc[x]}});
  envelope.each([disc](const Parabola &parabola, int begin, int end) {
    for (int x = begin; x < end; ++x)
      disc[x] = static_cast<int>(std::max<std::int64_t>(-parabola.at(x), noDisc));
  });
}

// Several columns at a time, copied next to each other, so that memory is read by whole cache lines.
void spreadDiscsAlongColumns(imImage *discs) {
  constexpr int blockWidth = 16;
  const std::int64_t nrows = discs->nrows;
  LowerEnvelope envelope(discs->nrows);
  const int widest = std::min(discs->ncols, blockWidth);
  const Array<int> columns = makeArray<int>(static_cast<std::size_t>(nrows * widest));
  Meter meter(discs->npixels);
  for (std::int64_t left = 0; left < discs->ncols; left += blockWidth) {
    const int width = static_cast<int>(std::min<std::int64_t>(blockWidth, discs->ncols - left));
    int *block = discs->band[0] + left;
    for (int y = 0; y < nrows; ++y)
      for (int x = 0; x < width; ++x)
        columns[x * nrows + y] = block[discs->row[y] + x];
    for (int x = 0; x < width; ++x)
      spreadDiscs(&columns[x * nrows], discs->nrows, envelope);
    for (int y = 0; y < nrows; ++y)
      for (int x = 0; x < width; ++x)
        block[discs->row[y] + x] = columns[x * nrows + y];
    meter.advance(width * nrows);
  }
}

} // namespace

void iftSkelNova(const imImage *image, imImage *work, const ifRoots2 *roots) {
  const char *operation = "iftSkelNova";
  requireBands(operation, image, 0);
  requireBands(operation, work, 4);
  requireSameSize(operation, image, work);
  requireGiven(operation, "roots record", roots);
  int **bands = work->band + work->nbands - 4;
  propagateEuclidean({operation,
                      image,
                      NeighborWalk(image, nearDisc),
                      2 * (std::int64_t{image->ncols} + image->nrows),
                      pixelsOf(*roots),
                      bands[1],
                      bands[2],
                      {{bands[0], roots->label}, {bands[3], roots->value}}});
}

int ifSkel(const imImage *image, int skelType, int threshold, imImage **result) {
  requireGiven("ifSkel", "place for the skeleton", result);
  *result = nullptr;
  requireBands("ifSkel", image, 1);
  if (image->nbands != 1)
    fatal("ifSkel: an image of %d bands is no shape\n", image->nbands);
  const imImagePtr work = spreadBorder(image);
  const BandView position(work.get(), 0);
  BandView contour(work.get(), 3);
  contour.maxValue = largestValue(&contour, 0);
  // How far apart, along the contour, the border pixels nearest to neighbouring pixels lie.
  imImagePtr skeleton = createLike(image, 1, imTypeAscii);
  ifLabelDifferences(&position, &contour, skeleton.get(), 0);
  const int largest = std::exchange(skeleton->maxValue, 0);
  if (skelType < 0 || skelType > 2) {
    warn("invalid skelType: %d\n", skelType);
    return largest;
  }
  // Without roots there are no differences, and no pixel reaches `largest`: nothing is selected.
  const int least = contour.maxValue > 0 ? std::min(threshold, largest) : largest;
  const int *value = image->band[0];
  const int *squaredDistance = work->band[1];
  int *pixel = skeleton->band[0];
  for (int p = 0; p < image->npixels; ++p)
    pixel[p] = pixel[p] >= least && isOnSide(skelType, value[p]) ? squaredDistance[p] : 0;
  *result = skeleton.release();
  return largest;
}

imImage *iftSkelReconstr(const imImage *skeleton) {
  requireBands("iftSkelReconstr", skeleton, 1);
  imImagePtr shape = tryCreateLike(skeleton, 1, imTypeAscii);
  if (shape == nullptr)
    return nullptr;
  int *disc = shape->band[0];
  std::transform(skeleton->band[0], skeleton->band[0] + skeleton->npixels, disc,
                 [](int value) { return value > 0 ? value : noDisc; });
  spreadDiscsAlongColumns(shape.get());
  LowerEnvelope envelope(shape->ncols);
  Meter meter(shape->npixels);
  for (int y = 0; y < shape->nrows; ++y) {
    int *row = disc + shape->row[y];
    spreadDiscs(row, shape->ncols, envelope);
    std::transform(row, row + shape->ncols, row, [](int value) { return value != noDisc; });
    meter.advance(shape->ncols);
  }
  shape->maxValue = largestValue(shape.get(), 0);
  return shape.release();
}
