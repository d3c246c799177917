// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Grey-scale morphology with discs: dilation, erosion, opening, closing, alternating sequential
// filters, and the gradient over the 8 neighbours.
//
// A disc is named by its squared radius s: the displacements (dx, dy) with dx * dx + dy * dy <= s.
// 0 is the pixel alone, 1 the cross of 5 pixels, 2 and 3 the 3 x 3 square, 4 has 13 pixels, 5 has
// 21. At the border of the image the maximum or minimum is taken over the part of the disc that is
// inside. A negative s is an empty disc.
//
// The caller makes the output image, which must not be the input: of the input's size, with at
// least as many bands (one for the gradient). Every band of the input is processed alike; the input
// is not changed.
//
// Ends with an error, in every operation: no image, too few bands in the output, images of
// different size, memory that cannot be allocated (an error is a line on standard error and status
// 1, or an exception: base/error.h).
#pragma once

#include "image/imImage.h"

#pragma GCC visibility push(default)

/// The largest (smallest) value in the disc around each pixel. The search starts at -1000000
/// (1000000): no result is below (above) that, and an empty disc gives it everywhere.
/// The output's maxValue becomes the largest of its values over all bands, at least -1000000, after
/// an erosion too.
/// Takes about 4 sqrt(s) vector operations per pixel, and memory for about as many rows.
void imMorphDilate(const imImage *in, imImage *out, int s);
void imMorphErode(const imImage *in, imImage *out, int s);

/// Opening: erosion, then dilation; removes bright details that do not hold the disc. Closing:
/// dilation, then erosion; removes such dark details. maxValue as the second step sets it.
void imMorphOpen(const imImage *in, imImage *out, int s);
void imMorphClose(const imImage *in, imImage *out, int s);

/// Alternating sequential filters of n steps (Sternberg, "Grayscale morphology", 1986): step i =
/// 1 .. n closes, then opens (imMorphAsfOC: opens, then closes) the result of the step before, with
/// the squared radius i. With n < 1 the output is a copy of the input. The output's maxValue is not
/// changed.
/// Print, at the start of each step, i in "squared radius is %d\n" (imMorphAsfCO) or
/// "radius is %d\n" (imMorphAsfOC, where i is the squared radius too).
void imMorphAsfCO(const imImage *in, imImage *out, int n);
void imMorphAsfOC(const imImage *in, imImage *out, int n);

/// Morphological gradient: the largest minus the smallest value among each pixel and its 8
/// neighbours, in each band of the input; at most 2^31 - 1. Only band 0 of the output is used: each
/// of its values becomes the largest of itself and the gradients of all bands there, so give an
/// image of zeros. maxValue becomes the largest gradient, -1 for an input without bands.
void imMorphGrad(const imImage *in, imImage *out);

#pragma GCC visibility pop
