#include "ift/seeds/ifExtrema.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "ift/core/iftForest.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/imNeighborhood.h"
#include "image/imPixelwise.h"

#include <algorithm>
#include <cstdint>

using namespace seedforest::detail;

namespace {

enum class Extremum { minimum, maximum };

imImagePtr falseExtrema(const imImage *image, Extremum kind) {
  return requireMade(kind == Extremum::minimum ? imFalseRegionalMinimum(image)
                                               : imFalseRegionalMaximum(image));
}

// The components of a mask as roots, with the values of an image.
ifRootsPtr rootsOfComponents(const imImage *mask, const imImage *values) {
  const imImagePtr labels = createImage(1, imTypeAscii, mask->ncols, mask->nrows);
  ifLabelImage(mask, labels.get());
  ifRootsPtr roots(ifLabelsToRoots(labels.get()));
  for (int i = 0; i < roots->n; ++i)
    roots->value[i] = values->band[0][roots->pixel[i]];
  return roots;
}

// Whether the flood of plateaus finds what the reconstruction does.
bool staysInScale(const imImage *image, Extremum kind) {
  const auto [least, most] = std::minmax_element(image->band[0], image->band[0] + image->npixels);
  if (image->type == imTypeGrey)
    return *least >= 0 && *most <= 255;
  return *least >= 0 && (kind == Extremum::maximum || *most < maxInt);
}

// Extrema as plateaus without a better neighbour. All pixels of such a plateau are false extrema; a
// false extremum with an equal neighbour that is none belongs to another plateau, all of which
// goes.
imImagePtr floodPlateaus(const imImage *image, Extremum kind) {
  imImagePtr marks = falseExtrema(image, kind);
  int *mark = marks->band[0];
  const int *value = image->band[0];
  const NeighborWalk neighbors(image, imNeighborhood8);
  Stack<int> rejected;
  int p = 0;
  for (int y = 0; y < image->nrows; ++y)
    for (int x = 0; x < image->ncols; ++x, ++p) {
      const auto goesOn = [=](int q, int) { return mark[q] == 0 && value[q] == value[p]; };
      if (mark[p] == 0 || !neighbors.any(x, y, goesOn))
        continue;
      mark[p] = 0;
      rejected.push(p);
      while (!rejected.isEmpty()) {
        const int r = rejected.pop();
        neighbors.each(r, [&](int q, int) {
          if (mark[q] == 0 || value[q] != value[r])
            return;
          mark[q] = 0;
          rejected.push(q);
        });
      }
    }
  // The end of the scale, from which no shift leads on.
  const bool hasEnd = kind == Extremum::maximum || image->type == imTypeGrey;
  const int end = kind == Extremum::maximum ? 0 : 255;
  for (p = 0; hasEnd && p < image->npixels; ++p)
    mark[p] = value[p] == end ? 0 : mark[p];
  return marks;
}

// Extrema as the difference between the image and its reconstruction from the shifted image. A
// file's pixels may exceed its maximum: then they bound the costs.
imImagePtr reconstruct(const imImage *image, Extremum kind) {
  const bool minima = kind == Extremum::minimum;
  const imImagePtr shifted = requireMade(imAddToPixelValues(image, minima ? 1 : -1));
  const imImage *bounded = minima ? shifted.get() : image;
  imImagePtr result = falseExtrema(bounded, kind);
  const ifRootsPtr seeds = rootsOfComponents(result.get(), shifted.get());
  const imImagePtr forest = createImage(3, imTypeWork, image->ncols, image->nrows);
  const auto transform = minima ? iftNonNormalized : iftNonNormalizedInverted;
  const int bound = std::max(
      bounded->maxValue, *std::max_element(bounded->band[0], bounded->band[0] + bounded->npixels));
  transform(image, forest.get(), imNeighborhood8, ifWatershedMetric, bound,
            minima ? ifPathCostMax : ifPathCostMin, seeds.get());
  for (int p = 0; p < image->npixels; ++p) {
    const std::int64_t difference = std::int64_t{forest->band[1][p]} - image->band[0][p];
    result->band[0][p] = saturate(minima ? difference : -difference);
  }
  return result;
}

imImagePtr regionalExtrema(const char *operation, const imImage *image, Extremum kind) {
  requireBands(operation, image, 1);
  if (!staysInScale(image, kind))
    return reconstruct(image, kind);
  announceLabelling(); // the marks have no labels here, but progress is told alike for all images
  return floodPlateaus(image, kind);
}

ifRootsPtr extremaAsRoots(const char *operation, const imImage *image, Extremum kind) {
  return rootsOfComponents(regionalExtrema(operation, image, kind).get(), image);
}

} // namespace

imImage *ifRegionalMinima(const imImage *image) {
  return regionalExtrema("ifRegionalMinima", image, Extremum::minimum).release();
}

imImage *ifRegionalMaxima(const imImage *image) {
  return regionalExtrema("ifRegionalMaxima", image, Extremum::maximum).release();
}

ifRoots *ifRegionalMinimaAsRoots(const imImage *image) {
  return extremaAsRoots("ifRegionalMinimaAsRoots", image, Extremum::minimum).release();
}

ifRoots *ifRegionalMaximaAsRoots(const imImage *image) {
  return extremaAsRoots("ifRegionalMaximaAsRoots", image, Extremum::maximum).release();
}
