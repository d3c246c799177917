// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The mosaic that the examples with region graphs start from.
#pragma once

#include "ift/ift.h"
#include "image/image.h"

/// The watershed of an image's gradient from its regional minima, labels from 1. Basins of fewer
/// pixels are filled first: small regions of odd colour would be the last to merge. None where an
/// image cannot be made.
inline imImagePtr mosaic(const imImage *image) {
  static constexpr int leastArea = 60;
  const imImagePtr gradient(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  const imImagePtr forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
  if (gradient == nullptr || forest == nullptr)
    return nullptr;
  imMorphGrad(image, gradient.get());
  imImage *closed = nullptr;
  imImage *basins = nullptr;
  ifAreaClose(gradient.get(), &closed, &basins, leastArea);
  const imImagePtr owners[] = {imImagePtr(closed), imImagePtr(basins)};
  const ifRootsPtr minima(ifRegionalMinimaAsRoots(closed));
  iftNonNormalized(closed, forest.get(), imNeighborhood8, ifWatershedMetric, gradient->maxValue,
                   ifPathCostMax, minima.get());
  return imImagePtr(imCopyBand(forest.get(), imTypeAscii, 0));
}

/// The graph of a mosaic's regions with their average colours, each band rescaled to 0 .. 1000.
inline ifGraphPtr coloredRegions(const imImage *labels, const imImage *image) {
  const ifGraphPtr regions(ifMosaicToGraph(labels));
  const ifGraphPtr colours(ifComputeAverageColors(regions.get(), image));
  return ifGraphPtr(ifCreateFeaturesGraph(colours.get()));
}
