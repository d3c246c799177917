// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/ifConnected.h"

#include "base/arith.h"
#include "base/report.h"
#include "base/require.h"
#include "ift/core/detail/costs.h"
#include "ift/core/detail/reconstruct.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/core/iftForest.h"
#include "ift/operators/detail/areaLevels.h"
#include "ift/seeds/ifExtrema.h"
#include "image/detail/imageTools.h"
#include "image/imMorph.h"
#include "image/imPixelwise.h"

#include <algorithm>
#include <cstdint>
#include <utility>

using namespace seedforest::detail;

namespace {

struct Result {
  imImagePtr filtered;
  imImagePtr labels;

  void release(imImage **filteredOut, imImage **labelsOut) {
    *filteredOut = filtered.release();
    *labelsOut = labels.release();
  }
};

void requirePlaces(const char *operation, imImage **filtered, imImage **labels) {
  requireGiven(operation, "place for the filtered image", filtered);
  requireGiven(operation, "place for the labels", labels);
}

// Moves a band out of a forest.
imImagePtr takeBand(imImage *forest, int b, char type) {
  imImagePtr result = createLike(forest, 1, type);
  std::swap(result->band[0], forest->band[b]);
  result->maxValue = largestValue(result.get(), 0);
  return result;
}

Result takeResult(imImage *forest, char type) {
  return {takeBand(forest, 1, type), takeBand(forest, 0, imTypeAscii)};
}

Result reconstructed(const Direction &direction, const imImage *f, int bound, const ifRoots *roots,
                     bool isLocal) {
  return takeResult(reconstruct(direction, f, bound, roots, isLocal).get(), f->type);
}

// The regional maxima of f as roots whose values are their levels; with onlyReached, without the
// maxima whose component never has `area` pixels.
ifRootsPtr leveledMaxima(const imImage *f, int bound, int area, bool onlyReached) {
  ifRootsPtr roots(ifRegionalMaximaAsRoots(f));
  const int count = roots->n == 0 ? 0 : *std::max_element(roots->label, roots->label + roots->n);
  progress("There are %d regional maxima\n", count);
  const auto levels = findAreaLevels(f, roots.get(), count, bound, area);
  int kept = 0;
  for (int i = 0; i < roots->n; ++i) {
    const AreaLevel &level = levels[roots->label[i]];
    if (onlyReached && !level.reached)
      continue;
    roots->pixel[kept] = roots->pixel[i];
    roots->label[kept] = roots->label[i];
    roots->value[kept++] = level.value;
  }
  roots->n = kept;
  return roots;
}

Result areaOpen(const imImage *f, int bound, int area) {
  const ifRootsPtr roots = leveledMaxima(f, bound, area, false);
  // Without roots, the local form returns a copy of the image.
  return reconstructed(byDilation, f, bound, roots.get(), roots->n == 0);
}

using MorphologyFn = void (*)(const imImage *in, imImage *out, int s);
using EnvelopeFn = imImage *(*)(const imImage *a, const imImage *b);

// The envelope of an image and the marker dilated, or eroded, by the cross of 5 pixels.
imImagePtr envelope(EnvelopeFn combine, const imImage *image, MorphologyFn change,
                    const imImage *marker) {
  const imImagePtr changed = createLike(image, 1, image->type);
  change(marker, changed.get(), 1);
  imImagePtr result = requireMade(combine(image, changed.get()));
  result->maxValue = largestValue(result.get(), 0);
  return result;
}

} // namespace

void ifReconstr(const imImage *f, const imImage *, const ifRoots *roots, int flag,
                imImage **filtered, imImage **labels) {
  requireBands("ifReconstr", f, 1);
  requireRoots("ifReconstr", roots, f);
  requirePlaces("ifReconstr", filtered, labels);
  const int bound = requireBound("ifReconstr", costBound(f));
  reconstructed(byDilation, f, bound, roots, flag == 0).release(filtered, labels);
}

void ifDualReconstr(const imImage *f, const imImage *g, const ifRoots *roots, int flag,
                    imImage **filtered, imImage **labels) {
  requireBands("ifDualReconstr", f, 1);
  requireBands("ifDualReconstr", g, 1);
  requireRoots("ifDualReconstr", roots, f);
  requirePlaces("ifDualReconstr", filtered, labels);
  const int bound = requireBound("ifDualReconstr", costBound(g));
  reconstructed(byErosion, f, bound, roots, flag == 0).release(filtered, labels);
}

void ifAreaOpen(const imImage *f, imImage **filtered, imImage **labels, int area) {
  requireBands("ifAreaOpen", f, 1);
  requirePlaces("ifAreaOpen", filtered, labels);
  areaOpen(f, requireBound("ifAreaOpen", costBound(f)), area).release(filtered, labels);
}

void ifAreaOpenOld(const imImage *f, imImage **filtered, imImage **labels, int area) {
  requireBands("ifAreaOpenOld", f, 1);
  requirePlaces("ifAreaOpenOld", filtered, labels);
  const int bound = requireBound("ifAreaOpenOld", costBound(f));
  const ifRootsPtr roots = leveledMaxima(f, bound, area, true);
  reconstructed(byDilation, f, bound, roots.get(), true).release(filtered, labels);
}

void ifAreaClose(imImage *f, imImage **filtered, imImage **labels, int area) {
  requireBands("ifAreaClose", f, 1);
  requirePlaces("ifAreaClose", filtered, labels);
  const imImagePtr negative = requireMade(imNegative(f, f->type));
  const bool grey = f->type == imTypeGrey;
  const std::int64_t white = grey ? 255 : f->maxValue;
  if (!grey)
    negative->maxValue = largestValue(negative.get(), 0);
  Result opened = areaOpen(negative.get(), costBound(negative.get()), area);
  // The second negative subtracts from the same value as the first, whatever the largest value is
  // now.
  int *value = opened.filtered->band[0];
  std::transform(value, value + f->npixels, value, [white](int v) { return saturate(white - v); });
  opened.filtered->maxValue = grey ? 255 : 0;
  opened.release(filtered, labels);
}

void ifLevel(const imImage *f, const imImage *second, const ifRoots *roots, imImage **filtered,
             imImage **labels) {
  requireBands("ifLevel", f, 1);
  requireBands("ifLevel", second, 1);
  requireSameSize("ifLevel", f, second);
  requireRoots("ifLevel", roots, f);
  requirePlaces("ifLevel", filtered, labels);
  requireBound("ifLevel", second->maxValue);
  const imImagePtr forest = createLike(f, 3, imTypeWork);
  iftNonNormalizedLevel(f, second, forest.get(), imNeighborhood8, roots);
  takeResult(forest.get(), imTypeAscii).release(filtered, labels);
}

void ifLevel2(const imImage *f, const imImage *marker, imImage **filtered) {
  requireBands("ifLevel2", f, 1);
  requireBands("ifLevel2", marker, 1);
  requireSameSize("ifLevel2", f, marker);
  requireGiven("ifLevel2", "place for the filtered image", filtered);
  if (f->nbands != 1 || marker->nbands != 1)
    fatal("ifLevel2: images of %d and %d bands where one is needed\n", f->nbands, marker->nbands);
  imImagePtr low = envelope(imLowerEnvelope, f, imMorphDilate, marker);
  const ifRootsPtr maxima(ifRegionalMaximaAsRoots(low.get()));
  if (maxima->n > 0)
    low = reconstructed(byDilation, f, costBound(f), maxima.get(), false).filtered;
  imImagePtr high = envelope(imUpperEnvelope, low.get(), imMorphErode, marker);
  const ifRootsPtr minima(ifRegionalMinimaAsRoots(high.get()));
  if (minima->n > 0)
    high = reconstructed(byErosion, low.get(), costBound(high.get()), minima.get(), false).filtered;
  *filtered = high.release();
}
