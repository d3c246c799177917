// Grey-scale morphology with discs: dilation, erosion, opening, closing, alternating sequential
// filters, and the gradient over the 8 neighbours.
//
// A disc is named by its squared radius s: the displacements (dx, dy) with dx * dx + dy * dy <= s.
// 0 is the pixel alone, 1 the cross of 5 pixels, 2 and 3 the 3 x 3 square, 4 has 13 pixels, 5 has
// 21. What lies outside the image does not exist: at its border the maximum or minimum is taken
// over the part of the disc that is inside. A negative s is an empty disc.
//
// The caller makes the output image, another one than the input, of the input's size and with at
// least as many bands. Every band of the input is processed alike; the input is not changed.
//
// Errors: no image, too few bands in the output, or images of different size end the process with
// status 1 after a line; so does memory that cannot be had.
#pragma once

#include "image/imImage.h"

/// The largest (smallest) value in the disc around each pixel. No result is below -1000000 (above
/// 1000000): that is where the search starts, and what an empty disc gives.
/// The output's maxValue becomes the largest of its values over all bands, at least -1000000; after
/// an erosion, too, the largest.
/// Costs some 4 sqrt(s) vector operations per pixel, and memory for about as many rows.
void imMorphDilate(const imImage *in, imImage *out, int s);
void imMorphErode(const imImage *in, imImage *out, int s);

/// Opening: erosion, then dilation; removes what is bright and smaller than the disc. Closing:
/// dilation, then erosion; removes what is dark and smaller. maxValue as the second leaves it.
void imMorphOpen(const imImage *in, imImage *out, int s);
void imMorphClose(const imImage *in, imImage *out, int s);

/// Alternating sequential filters of n steps: step i = 1 .. n closes, then opens (opens, then
/// closes) what the step before has left, with the squared radius i. No step copies the input. The
/// output's maxValue stays as it was.
/// Print, at the start of each step, i in "squared radius is %d\n" (imMorphAsfCO) or
/// "radius is %d\n" (imMorphAsfOC, the squared radius all the same).
void imMorphAsfCO(const imImage *in, imImage *out, int n);
void imMorphAsfOC(const imImage *in, imImage *out, int n);

/// Morphological gradient: the largest minus the smallest value among each pixel and its 8
/// neighbours, in each band of the input; 2^31 - 1 where it would be more. Band 0 of the output,
/// its only band used, is raised to the largest of the gradients where that is larger than what it
/// holds: give a new image for the gradient alone. maxValue becomes the largest gradient, -1 for an
/// input without bands.
void imMorphGrad(const imImage *in, imImage *out);
