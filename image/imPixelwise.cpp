// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imPixelwise.h"

#include "base/arith.h"
#include "base/report.h"
#include "image/detail/imageTools.h"
#include "image/detail/rowWindow.h"

#include <algorithm>
#include <cstdint>
#include <functional>

using namespace seedforest::detail;

namespace {

// A new image of one band: rule(v) of the values of band 0.
template <class Rule>
imImage *mapBand0(const char *operation, const imImage *a, char type, int maxValue, Rule rule) {
  requireBands(operation, a, 1);
  imImagePtr result = tryCreateLike(a, 1, type, maxValue);
  if (result != nullptr)
    std::transform(a->band[0], a->band[0] + a->npixels, result->band[0], rule);
  return result.release();
}

// Band i of the result becomes rule(v, u), v of band i of a and u of band j of b.
template <class Rule>
void combineBand(const imImage *a, int i, const imImage *b, int j, imImage *result, Rule rule) {
  std::transform(a->band[i], a->band[i] + a->npixels, b->band[j], result->band[i], rule);
}

// A new image with as many bands as a: 255 in band 0 where isInside(v, u) holds, else 0; the other
// bands are zeros.
template <class Rule>
imImage *combineSets(const char *operation, const imImage *a, const imImage *b, char type,
                     Rule isInside) {
  requireBands(operation, a, 1);
  requireBands(operation, b, 1);
  requireSameSize(operation, a, b);
  imImagePtr result = tryCreateLike(a, a->nbands, type, 255);
  if (result != nullptr)
    combineBand(a, 0, b, 0, result.get(), [=](int v, int u) { return isInside(v, u) ? 255 : 0; });
  return result.release();
}

// Every band of a combined with the same band of b.
template <class Rule>
imImagePtr combineBands(const char *operation, const imImage *a, const imImage *b, Rule rule) {
  requireBands(operation, a, 0);
  requireBands(operation, b, a->nbands);
  requireSameSize(operation, a, b);
  imImagePtr result = tryCreateLike(a, a->nbands, a->type, 0);
  for (int i = 0; result != nullptr && i < a->nbands; ++i)
    combineBand(a, i, b, i, result.get(), rule);
  return result;
}

// Every band of a combined with band 0 of b. The result may be a itself.
template <class Rule>
void combineWithBand0(const imImage *a, const imImage *b, imImage *result, Rule rule) {
  for (int i = 0; i < a->nbands; ++i)
    combineBand(a, i, b, 0, result, rule);
}

// The image with a border of w pixels added or, where w is negative, of -w pixels removed.
imImage *reframe(const imImage *a, std::int64_t w) {
  // Where a side saturates, the other is at least 3: too many pixels, and no image is created.
  imImagePtr result(
      imCreateImage(a->nbands, a->type, saturate(a->ncols + 2 * w), saturate(a->nrows + 2 * w)));
  if (result == nullptr)
    return nullptr;
  const int ncols = std::min(a->ncols, result->ncols);
  const int nrows = std::min(a->nrows, result->nrows);
  const int from = saturate(std::max<std::int64_t>(-w, 0)); // the first column and row that is kept
  const int to = saturate(std::max<std::int64_t>(w, 0));    // where it goes
  for (int b = 0; b < a->nbands; ++b)
    for (int y = 0; y < nrows; ++y)
      std::copy_n(a->band[b] + a->row[y + from] + from, ncols,
                  result->band[b] + result->row[y + to] + to);
  return result.release();
}

// 1 where beats(u, v) holds for no 8-neighbour's value u and the pixel's own v, else 0.
template <class Beats>
imImage *markUnbeaten(const char *operation, const imImage *a, Beats beats) {
  requireBands(operation, a, 1);
  imImagePtr result = tryCreateLike(a, 1, imTypeAscii, 1);
  if (result == nullptr)
    return nullptr;
  for (int y = 0; y < a->nrows; ++y) {
    const RowWindow value(a, 0, y);
    int *mark = result->band[0] + a->row[y];
    forEachColumn(a->ncols, [=](int left, int x, int right) {
      const int v = value.row[x];
      mark[x] = 1 - value.any(left, x, right, [=](int u) { return beats(u, v); });
    });
  }
  return result.release();
}

int clampedSum(std::int64_t a, std::int64_t b, int most) {
  return static_cast<int>(std::clamp<std::int64_t>(a + b, 0, most));
}

} // namespace

imImage *imThreshold(const imImage *a, char type, int lo, int hi) {
  return mapBand0("imThreshold", a, type, 255, [=](int v) { return lo <= v && v <= hi ? 255 : 0; });
}

imImage *imBandPass(const imImage *a, char type, int lo, int hi) {
  return mapBand0("imBandPass", a, type, 0, [=](int v) { return lo <= v && v <= hi ? v : 0; });
}

imImage *imNegative(imImage *a, char type) {
  requireBands("imNegative", a, 1);
  const bool grey = a->type == imTypeGrey;
  if (!grey)
    a->maxValue = std::max(a->maxValue, *std::max_element(a->band[0], a->band[0] + a->npixels));
  const std::int64_t white = grey ? 255 : a->maxValue;
  return mapBand0("imNegative", a, type, grey ? 255 : 0,
                  [white](int v) { return saturate(white - v); });
}

imImage *imNegative2(const imImage *a, char type) {
  return mapBand0("imNegative2", a, type, 255, [](int v) { return v > 0 ? 0 : 255; });
}

imImage *imMask(const imImage *a, const imImage *mask, int fill) {
  requireBands("imMask", a, 0);
  requireBands("imMask", mask, 1);
  requireSameSize("imMask", a, mask);
  imImagePtr result = tryCreateLike(a, a->nbands, a->type, 0);
  if (result != nullptr)
    combineWithBand0(a, mask, result.get(), [fill](int v, int m) { return m > 0 ? v : fill; });
  return result.release();
}

imImage *imBinaryDifference(const imImage *a, const imImage *b, char type) {
  return combineSets("imBinaryDifference", a, b, type,
                     [](int v, int u) { return v > 0 && u == 0; });
}

imImage *imBinaryUnion(const imImage *a, const imImage *b, char type) {
  return combineSets("imBinaryUnion", a, b, type, [](int v, int u) { return v > 0 || u > 0; });
}

imImage *imAddBorder(const imImage *a, int w) {
  requireBands("imAddBorder", a, 0);
  if (w < 0)
    fatal("imAddBorder: %d is no width of a border\n", w);
  return reframe(a, w);
}

imImage *imRemoveBorder(const imImage *a, int w) {
  requireBands("imRemoveBorder", a, 0);
  if (w < 0 || w > (std::min(a->ncols, a->nrows) - 1) / 2)
    fatal("imRemoveBorder: no border of %d in an image of %d x %d\n", w, a->ncols, a->nrows);
  return reframe(a, -w);
}

imImage *imUpperEnvelope(const imImage *a, const imImage *b) {
  return combineBands("imUpperEnvelope", a, b, [](int v, int u) { return std::max(v, u); })
      .release();
}

imImage *imLowerEnvelope(const imImage *a, const imImage *b) {
  return combineBands("imLowerEnvelope", a, b, [](int v, int u) { return std::min(v, u); })
      .release();
}

imImage *imAddToPixelValues(const imImage *a, int k) {
  requireBands("imAddToPixelValues", a, 0);
  const int most = a->type == imTypeGrey ? 255 : maxInt;
  imImagePtr result = tryCreateLike(a, a->nbands, a->type, clampedSum(a->maxValue, k, maxInt));
  for (int b = 0; result != nullptr && b < a->nbands; ++b)
    std::transform(a->band[b], a->band[b] + a->npixels, result->band[b],
                   [=](int v) { return clampedSum(v, k, most); });
  return result.release();
}

imImage *imSubtractImage(const imImage *a, const imImage *b) {
  imImagePtr result = combineBands("imSubtractImage", a, b, [](int v, int u) {
    return clampedSum(v, -std::int64_t{u}, maxInt);
  });
  for (int i = 0; result != nullptr && i < result->nbands; ++i)
    result->maxValue = std::max(result->maxValue, largestValue(result.get(), i));
  return result.release();
}

imImage *imFalseRegionalMinimum(const imImage *a) {
  return markUnbeaten("imFalseRegionalMinimum", a, std::less<int>());
}

imImage *imFalseRegionalMaximum(const imImage *a) {
  return markUnbeaten("imFalseRegionalMaximum", a, std::greater<int>());
}

int imCombineImageWithGrad(imImage *a, const imImage *g) {
  requireBands("imCombineImageWithGrad", a, 0);
  requireBands("imCombineImageWithGrad", g, 1);
  requireSameSize("imCombineImageWithGrad", a, g);
  combineWithBand0(a, g, a, [](int v, int u) { return std::max(v, u); });
  return a->npixels;
}
