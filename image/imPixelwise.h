// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Pixelwise operations: thresholds, negatives, masks, sets of pixels, borders, envelopes, sums,
// differences, and the local test for extrema.
//
// All but the last make a new image of the first input's size, which the caller releases, and do
// not change their inputs unless said otherwise. Where a function takes a type, the result has one
// band of that type, made from band 0; else it has the bands and the type of the first input, and
// every band is processed alike. Its maxValue is 0 unless said otherwise. Below, v is the first
// input's value at the pixel; bounds are inclusive; values beyond 32 bits saturate.
//
// Ends with an error, in every operation: no image, images of different size, too few bands (an
// error is a line on standard error and status 1, or an exception: base/error.h). Where a result
// cannot be allocated: as imCreateImage().
#pragma once

#include "image/imImage.h"

#pragma GCC visibility push(default)

/// 255 where lo <= v <= hi, else 0 (everywhere when lo > hi); maxValue 255.
[[nodiscard]] imImage *imThreshold(const imImage *a, char type, int lo, int hi);

/// v where lo <= v <= hi, else 0.
[[nodiscard]] imImage *imBandPass(const imImage *a, char type, int lo, int hi);

/// For an image of type grey: 255 - v, maxValue 255. For any other: M - v, where M is the input's
/// maxValue, which is first raised, in the input itself, to the largest value of band 0 if that is
/// larger; the result's maxValue is 0.
[[nodiscard]] imImage *imNegative(imImage *a, char type);

/// The negative of a mask: 0 where v > 0, else 255; maxValue 255.
[[nodiscard]] imImage *imNegative2(const imImage *a, char type);

/// v where band 0 of the mask is > 0, else `fill`.
[[nodiscard]] imImage *imMask(const imImage *a, const imImage *mask, int fill);

/// Sets of pixels, 255 inside and 0 outside. Difference: a > 0 and b exactly 0; union: a > 0 or
/// b > 0. The result has as many bands as a, but only band 0 is written; maxValue 255.
[[nodiscard]] imImage *imBinaryDifference(const imImage *a, const imImage *b, char type);
[[nodiscard]] imImage *imBinaryUnion(const imImage *a, const imImage *b, char type);

/// The image with w columns and rows of 0 added on each side, or with w removed from each side:
/// each undoes the other. A size beyond 2^31 - 1 pixels is refused as by imCreateImage(). Ends with
/// an error: a negative w, or one that would leave no pixel.
[[nodiscard]] imImage *imAddBorder(const imImage *a, int w);
[[nodiscard]] imImage *imRemoveBorder(const imImage *a, int w);

/// The larger, or the smaller, of a and b, band by band.
[[nodiscard]] imImage *imUpperEnvelope(const imImage *a, const imImage *b);
[[nodiscard]] imImage *imLowerEnvelope(const imImage *a, const imImage *b);

/// v + k, but at least 0 and, in an image of type grey, at most 255. maxValue is the input's plus k
/// (at least 0), whatever the pixels hold.
[[nodiscard]] imImage *imAddToPixelValues(const imImage *a, int k);

/// v minus b, band by band, but at least 0; maxValue is the largest value of all bands.
[[nodiscard]] imImage *imSubtractImage(const imImage *a, const imImage *b);

/// Non-strict local extrema of band 0: 1 where no 8-neighbour is strictly smaller (larger), else 0;
/// one band of type ASCII, maxValue 1. "False", because only direct neighbours count: a pixel
/// inside a plateau is marked even where another pixel of the plateau has a lower (higher)
/// neighbour. In a constant image all pixels are marked.
[[nodiscard]] imImage *imFalseRegionalMinimum(const imImage *a);
[[nodiscard]] imImage *imFalseRegionalMaximum(const imImage *a);

/// In place: raises every band of a to band 0 of g where g is larger. Returns the pixel count.
int imCombineImageWithGrad(imImage *a, const imImage *g);

#pragma GCC visibility pop
