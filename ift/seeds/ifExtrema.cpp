// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/ifExtrema.h"

#include "base/arith.h"
#include "ift/core/detail/costs.h"
#include "ift/core/detail/reconstruct.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/label/detail/announceLabelling.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/detail/extremumRuns.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/detail/imageTools.h"
#include "image/imPixelwise.h"

#include <algorithm>
#include <cstdint>

using namespace seedforest::detail;

namespace {

// The components of a mask as roots, with the values of an image.
ifRootsPtr rootsOfComponents(const imImage *mask, const imImage *values) {
  const imImagePtr labels = createLike(mask, 1, imTypeAscii);
  ifLabelImage(mask, labels.get());
  ifRootsPtr roots(ifLabelsToRoots(labels.get()));
  for (int i = 0; i < roots->n; ++i)
    roots->value[i] = values->band[0][roots->pixel[i]];
  return roots;
}

// Whether ExtremumRuns finds what the reconstruction finds.
bool staysInScale(const imImage *image, Extremum kind) {
  const int top = kind == Extremum::largest ? maxInt : maxInt - 1;
  return allWithin(image->band[0], image->npixels, 0, image->type == imTypeGrey ? 255 : top);
}

// Extrema as the difference between the image and its reconstruction from the shifted image.
imImagePtr extremaByReconstruction(const char *operation, const imImage *image,
                                   const Direction &direction) {
  const bool minima = direction.best == Extremum::smallest;
  const imImagePtr shifted = requireMade(imAddToPixelValues(image, minima ? 1 : -1));
  const imImage *bounded = minima ? shifted.get() : image;
  const int bound = requireBound(operation, costBound(bounded));
  imImagePtr result =
      requireMade(minima ? imFalseRegionalMinimum(bounded) : imFalseRegionalMaximum(bounded));
  const ifRootsPtr seeds = rootsOfComponents(result.get(), shifted.get());
  const imImagePtr forest = reconstruct(direction, image, bound, seeds.get());
  for (int p = 0; p < image->npixels; ++p) {
    const std::int64_t difference = std::int64_t{forest->band[1][p]} - image->band[0][p];
    result->band[0][p] = saturate(minima ? difference : -difference);
  }
  return result;
}

imImagePtr maskOf(const ExtremumRuns &extrema, const imImage *image) {
  imImagePtr mask = createLike(image, 1, imTypeAscii);
  extrema.forEach(
      [&](int start, int end, int) { std::fill(mask->band[0] + start, mask->band[0] + end, 1); });
  mask->maxValue = 1;
  return mask;
}

ifRootsPtr rootsOf(const ExtremumRuns &extrema, const imImage *image) {
  ifRootsPtr roots = createRoots(extrema.pixels());
  int k = 0;
  extrema.forEach([&](int start, int end, int label) {
    for (int p = start; p < end; ++p, ++k) {
      roots->pixel[k] = p;
      roots->label[k] = label;
      roots->value[k] = image->band[0][p];
    }
  });
  return roots;
}

imImagePtr regionalExtrema(const char *operation, const imImage *image,
                           const Direction &direction) {
  requireBands(operation, image, 1);
  if (!staysInScale(image, direction.best))
    return extremaByReconstruction(operation, image, direction);
  announceLabelling(); // no image is labelled, but the progress line is the same for all
  return maskOf(ExtremumRuns(image, direction.best), image);
}

ifRootsPtr extremaAsRoots(const char *operation, const imImage *image, const Direction &direction) {
  requireBands(operation, image, 1);
  if (!staysInScale(image, direction.best))
    return rootsOfComponents(extremaByReconstruction(operation, image, direction).get(), image);
  announceLabelling(); // of the candidates
  announceLabelling(); // of the extrema
  return rootsOf(ExtremumRuns(image, direction.best), image);
}

} // namespace

imImage *ifRegionalMinima(const imImage *image) {
  return regionalExtrema("ifRegionalMinima", image, byErosion).release();
}

imImage *ifRegionalMaxima(const imImage *image) {
  return regionalExtrema("ifRegionalMaxima", image, byDilation).release();
}

ifRoots *ifRegionalMinimaAsRoots(const imImage *image) {
  return extremaAsRoots("ifRegionalMinimaAsRoots", image, byErosion).release();
}

ifRoots *ifRegionalMaximaAsRoots(const imImage *image) {
  return extremaAsRoots("ifRegionalMaximaAsRoots", image, byDilation).release();
}
