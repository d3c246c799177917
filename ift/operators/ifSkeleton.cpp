// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/ifSkeleton.h"

#include "base/multiversion.h"
#include "base/report.h"
#include "base/require.h"
#include "ift/core/detail/euclideanPropagation.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/lowerEnvelope.h"
#include "ift/core/iftEuclidean.h"
#include "ift/label/detail/labelDifferences.h"
#include "ift/seeds/detail/ownedRoots.h"
#include "ift/seeds/detail/skeletonBorder.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>

using namespace seedforest::detail;

namespace {

int nearDisc(int **list) {
  return imNeighborhood(list, 2);
}

void spread(const char *operation, const imImage *image, const ifRoots2 &roots, int *cost,
            int *pred, std::initializer_list<InheritedBand> inherited) {
  propagateEuclidean({operation, image, NeighborWalk(image, nearDisc),
                      2 * (std::int64_t{image->ncols} + image->nrows), pixelsOf(roots), cost, pred,
                      inherited});
}

// Keeps the squared distances of the pixels that differ enough and are on the side of a skeleton of
// this type. In place of the differences.
SEEDFOREST_MULTIVERSION void select(int skelType, int least, const int *value,
                                    const int *squaredDistance, int npixels, int *difference) {
  const int inside = skelType == 1 ? 1 : 0;
  const int anywhere = skelType == 0 ? 1 : 0;
  for (int p = 0; p < npixels; ++p) {
    const int isOnSide = static_cast<int>(static_cast<int>(value[p] > 0) == inside) | anywhere;
    const int isSelected = static_cast<int>(difference[p] >= least) & isOnSide;
    difference[p] = isSelected != 0 ? squaredDistance[p] : 0;
  }
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
  spread(operation, image, *roots, bands[1], bands[2],
         {{bands[0], roots->label}, {bands[3], roots->value}});
}

int ifSkel(const imImage *image, int skelType, int threshold, imImage **result) {
  requireGiven("ifSkel", "place for the skeleton", result);
  *result = nullptr;
  requireBands("ifSkel", image, 1);
  if (image->nbands != 1)
    fatal("ifSkel: an image of %d bands is no shape\n", image->nbands);
  // Memory that is touched for the first time can take more time than all the rest in large images,
  // so the skeleton's pixels hold the marks of the border first and then the positions.
  imImagePtr skeleton = createLike(image, 1, imTypeAscii);
  int *pixel = skeleton->band[0];
  OwnedRoots2 roots;
  SkeletonBorder border(image, reinterpret_cast<unsigned char *>(pixel));
  roots.allocate(static_cast<std::size_t>(border.size()));
  border.follow(&roots);
  const imImagePtr distance = createLike(image, 1, imTypeWork);
  spread("ifSkel", image, roots, distance->band[0], nullptr, {{pixel, roots.label}});
  // How far apart, along the contour, the border pixels nearest to neighbouring pixels lie.
  const int largest = differencesAlongContours(roots, skeleton.get());
  if (skelType < 0 || skelType > 2) {
    warn("invalid skelType: %d\n", skelType);
    return largest;
  }
  // Without roots there are no differences, and no pixel reaches `largest`: nothing is selected.
  const int least = roots.n > 0 ? std::min(threshold, largest) : largest;
  select(skelType, least, image->band[0], distance->band[0], image->npixels, pixel);
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
