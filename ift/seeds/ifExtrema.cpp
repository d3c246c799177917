#include "ift/seeds/ifExtrema.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "ift/core/detail/costs.h"
#include "ift/core/iftForest.h"
#include "ift/label/detail/announceLabelling.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/detail/rowWindow.h"
#include "image/imNeighborhood.h"
#include "image/imPixelwise.h"

#include <algorithm>
#include <cstdint>
#include <functional>

using namespace seedforest::detail;

namespace {

enum class Extremum { minimum, maximum };

imImagePtr falseExtrema(const imImage *image, Extremum kind) {
  return requireMade(kind == Extremum::minimum ? imFalseRegionalMinimum(image)
                                               : imFalseRegionalMaximum(image));
}

// The components of a mask as roots, with the values of an image.
ifRootsPtr rootsOfComponents(const imImage *mask, const imImage *values) {
  const imImagePtr labels = createLike(mask, 1, imTypeAscii);
  ifLabelImage(mask, labels.get());
  ifRootsPtr roots(ifLabelsToRoots(labels.get()));
  for (int i = 0; i < roots->n; ++i)
    roots->value[i] = values->band[0][roots->pixel[i]];
  return roots;
}

// Whether the flood of plateaus finds what the reconstruction does.
bool staysInScale(const imImage *image, Extremum kind) {
  const int top = kind == Extremum::maximum ? maxInt : maxInt - 1;
  return allWithin(image->band[0], image->npixels, 0, image->type == imTypeGrey ? 255 : top);
}

// Extrema as plateaus without a neighbour that beats them, for values >= 0. A pixel without a
// better neighbour is an extremum unless its plateau goes on to a pixel that has one; then the
// whole plateau is none.
template <class Beats>
imImagePtr floodPlateaus(const imImage *image, int end, Beats beats) {
  constexpr int extremum = -1; // for the time being; what is none holds its value
  imImagePtr result = createLike(image, 1, imTypeAscii);
  const int *value = image->band[0];
  int *state = result->band[0];
  for (int y = 0; y < image->nrows; ++y) {
    const RowWindow window(image, 0, y);
    forEachColumn(image->ncols, [=, out = state + image->row[y]](int left, int x, int right) {
      const int v = window.row[x];
      out[x] = window.any(left, x, right, [=](int u) { return beats(u, v); }) != 0 ? v : extremum;
    });
  }
  Stack<int> rejected;
  const auto reject = [&](int p) {
    state[p] = value[p];
    rejected.push(p);
  };
  const Array<int> goesOn = makeArray<int>(static_cast<std::size_t>(image->ncols));
  for (int y = 0; y < image->nrows; ++y) {
    const RowWindow window(result.get(), 0, y);
    const int *row = value + image->row[y];
    forEachColumn(image->ncols, [=, out = goesOn.get()](int left, int x, int right) {
      const int v = row[x];
      out[x] = static_cast<int>(window.row[x] == extremum) &
               window.any(left, x, right, [=](int u) { return u == v; });
    });
    for (int x = 0; x < image->ncols; ++x)
      if (goesOn[x] != 0)
        reject(x + image->row[y]);
  }
  const NeighborWalk neighbors(image, imNeighborhood8);
  while (!rejected.isEmpty()) {
    const int p = rejected.pop();
    neighbors.each(p, [&](int q, int) {
      if (state[q] == extremum && value[q] == value[p])
        reject(q);
    });
  }
  for (int p = 0; p < image->npixels; ++p)
    state[p] = static_cast<int>(state[p] == extremum) & static_cast<int>(value[p] != end);
  result->maxValue = 1;
  return result;
}

// The extrema of values inside the scale. At its end, from which no shift leads on, there are none.
imImagePtr extremaInScale(const imImage *image, Extremum kind) {
  if (kind == Extremum::maximum)
    return floodPlateaus(image, 0, std::greater<int>());
  return floodPlateaus(image, image->type == imTypeGrey ? 255 : maxInt, std::less<int>());
}

// Extrema as the difference between the image and its reconstruction from the shifted image.
imImagePtr reconstruct(const imImage *image, Extremum kind) {
  const bool minima = kind == Extremum::minimum;
  const imImagePtr shifted = requireMade(imAddToPixelValues(image, minima ? 1 : -1));
  const imImage *bounded = minima ? shifted.get() : image;
  imImagePtr result = falseExtrema(bounded, kind);
  const ifRootsPtr seeds = rootsOfComponents(result.get(), shifted.get());
  const imImagePtr forest = createLike(image, 3, imTypeWork);
  const auto transform = minima ? iftNonNormalized : iftNonNormalizedInverted;
  transform(image, forest.get(), imNeighborhood8, ifWatershedMetric, costBound(bounded),
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
  return extremaInScale(image, kind);
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
