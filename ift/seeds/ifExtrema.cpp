// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/seeds/ifExtrema.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "ift/core/detail/costs.h"
#include "ift/core/detail/reconstruct.h"
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

// The components of a mask as roots, with the values of an image.
ifRootsPtr rootsOfComponents(const imImage *mask, const imImage *values) {
  const imImagePtr labels = createLike(mask, 1, imTypeAscii);
  ifLabelImage(mask, labels.get());
  ifRootsPtr roots(ifLabelsToRoots(labels.get()));
  for (int i = 0; i < roots->n; ++i)
    roots->value[i] = values->band[0][roots->pixel[i]];
  return roots;
}

// Whether floodPlateaus() gives the same result as the reconstruction.
bool staysInScale(const imImage *image, Extremum kind) {
  const int top = kind == Extremum::largest ? maxInt : maxInt - 1;
  return allWithin(image->band[0], image->npixels, 0, image->type == imTypeGrey ? 255 : top);
}

// Extrema as plateaus without a better neighbour, for values >= 0. Pixels without a better
// neighbour are candidates; where a plateau has a pixel with a better neighbour, the whole plateau
// is rejected.
template <class Beats>
imImagePtr floodPlateaus(const imImage *image, int end, Beats beats) {
  constexpr int extremum = -1; // or a candidate; the state of other pixels is their value
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

// The extrema of values inside the scale. There are none at its end, where values cannot be
// shifted.
imImagePtr extremaInScale(const imImage *image, Extremum kind) {
  if (kind == Extremum::largest)
    return floodPlateaus(image, 0, std::greater<int>());
  return floodPlateaus(image, image->type == imTypeGrey ? 255 : maxInt, std::less<int>());
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

imImagePtr regionalExtrema(const char *operation, const imImage *image,
                           const Direction &direction) {
  requireBands(operation, image, 1);
  if (!staysInScale(image, direction.best))
    return extremaByReconstruction(operation, image, direction);
  announceLabelling(); // nothing is labelled, but the progress line is the same for all images
  return extremaInScale(image, direction.best);
}

ifRootsPtr extremaAsRoots(const char *operation, const imImage *image, const Direction &direction) {
  return rootsOfComponents(regionalExtrema(operation, image, direction).get(), image);
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
