// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/ifCellSeeds.h"

#include "base/report.h"
#include "ift/core/iftForest.h"
#include "ift/seeds/detail/cellClasses.h"
#include "ift/seeds/ifExtrema.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/detail/imageTools.h"
#include "image/detail/rowWindow.h"
#include "image/image.h"

#include <algorithm>

using namespace seedforest::detail;

namespace {

constexpr int mostSteps = 1000000;
constexpr int lineClass = 1;
constexpr int markerClass = 2;

// The pixels of the regional maxima of the filtered image, with the labels of their maxima.
ifRootsPtr findMarkers(const imImage *image, int steps) {
  const imImagePtr filtered = createLike(image, 1, imTypeAscii);
  imMorphAsfOC(image, filtered.get(), steps);
  filtered->maxValue = largestValue(filtered.get(), 0); // the filter leaves it 0
  return ifRootsPtr(ifRegionalMaximaAsRoots(filtered.get()));
}

// The forest of the watershed of the image's negative. Sets the markers' values to those of the
// negative at their pixels: their starting costs.
imImagePtr floodNegative(imImage *image, ifRoots *markers) {
  const imImagePtr negative = requireMade(imNegative(image, imTypeAscii));
  for (int i = 0; i < markers->n; ++i)
    markers->value[i] = negative->band[0][markers->pixel[i]];
  const int whitest = image->type == imTypeGrey ? 255 : image->maxValue;
  const int bound = std::max(whitest, largestValue(negative.get(), 0)); // negative pixels exceed it
  imImagePtr forest = createLike(image, 3, imTypeWork);
  iftNonNormalized(negative.get(), forest.get(), imNeighborhood8, ifWatershedMetric, bound,
                   ifPathCostMax, markers);
  return forest;
}

// The line class where a basin meets one of a greater label; elsewhere the marker class on markers.
imImagePtr classify(const imImage *basins, const ifRoots *markers) {
  imImagePtr classes = createLike(basins, 1, imTypeAscii);
  for (int i = 0; i < markers->n; ++i)
    classes->band[0][markers->pixel[i]] = markerClass;
  for (int y = 0; y < basins->nrows; ++y) {
    const RowWindow label(basins, 0, y);
    int *row = classes->band[0] + classes->row[y];
    forEachColumn(basins->ncols, [=](int left, int x, int right) {
      const int own = label.row[x];
      if (label.any(left, x, right, [own](int other) { return own < other; }) != 0)
        row[x] = lineClass;
    });
  }
  return classes;
}

} // namespace

namespace seedforest::detail {

imImagePtr findCellClasses(imImage *image, int steps) {
  requireBands("ifCellsRoots", image, 1);
  if (image->nbands != 1)
    fatal("ifCellsRoots: an image of %d bands where one is needed\n", image->nbands);
  if (steps > mostSteps)
    fatal("ifCellsRoots: %d steps are too many\n", steps);
  progress("in cells roots\n\n");
  const ifRootsPtr markers = findMarkers(image, steps);
  progress("ha %d sementes\n", markers->n);
  const imImagePtr forest = floodNegative(image, markers.get());
  return classify(forest.get(), markers.get());
}

} // namespace seedforest::detail

ifRoots *ifCellsRoots(imImage *image, int steps) {
  const imImagePtr classes = findCellClasses(image, steps);
  imSaveImage("labeled.pgm", classes.get());
  return ifLabelsToRoots(classes.get());
}
