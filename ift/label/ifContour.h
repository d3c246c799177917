// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Contours: marking the inner border of regions, numbering thin curves along their course,
// following them with the shape on one side, and measuring how far apart along a contour the
// sources of neighbouring pixels lie. Skeletons and the seeds of distance transforms build on them.
//
// All work on band 0. Outputs are images of the input's size, zeroed by the caller: pixels that an
// operation does not write keep their values.
//
// Ends with an error, in every operation: no image, one without band 0 or of another size than its
// partner, memory that cannot be allocated (an error is a line on standard error and status 1, or
// an exception: base/error.h).
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// Inner border: writes 255 on every pixel of label > 0 that has a pixel of label 0 among its
/// neighbours in imNeighborhood4. Outside the image there is no background, and regions that touch
/// each other are not separated. maxValue of the output becomes 255.
void ifRegionsToContours(const imImage *labels, imImage *output);

/// Numbers the pixels of thin curves in the order of a breadth-first walk. Straight steps come
/// before diagonal ones, which are taken only from a pixel without an unvisited straight neighbour.
/// Each curve is entered at its first pixel in raster order.
///   contour  a walk starts at a pixel > 0 and goes on over pixels that are not 0, negative ones
///            included
///   labels   out; may be the contour image itself: 1, 2, 3, ..., continued from curve to curve.
///            The last pixel of a walk takes the number two above the highest so far. maxValue
///            becomes the largest number, which can exceed the number of pixels (it saturates at
///            2^31 - 1).
/// Returns how many pixels it numbered. Neighbours: imNeighborhood8, in its order.
int labelContours(const imImage *contour, imImage *labels);

/// Follows a contour depth first from pixel p, taking a step only where the shape lies on its left
/// and the background on its right (seen in the direction of the step), so that a closed border is
/// walked in one direction. Every pixel followed is appended to the record and its mask set to 0,
/// one by one, so that the record, the count and the mask agree when an error is thrown.
///   record         in, out: arrays with an entry per pixel of the image; entry k gets the pixel,
///                  the label k + 1 and the value `contour`; extra and n are left alone
///   count          in, out: entries in use
///   mask           in, out: steps lead only to pixels >= 1; the value at p does not matter
///   shape          > 0 is shape, 0 is background; outside the image is background
///   displacements  8 pairs (dx, dy), in the order in which steps are tried
/// Ends with an error: no record, count or displacements, a p outside the image, an entry beyond
/// the number of pixels.
void ifContourFollow(ifRoots2 *record, int *count, int contour, imImage *mask, const imImage *shape,
                     int p, const int *displacements);

/// Label differences along contours: how far apart the values of neighbouring pixels are, where a
/// pixel's value is the position, along the contour, of the contour pixel nearest to it.
///   values    the positions
///   labels    contour or object numbers 1 .. maxValue; each has the range r of its values, and a
///             difference d above r / 2 counts as r - d, the shorter way round
///   output    out: the largest difference to a neighbour of the same label (imNeighborhood4); the
///             output's maxValue at a pixel with a neighbour of a higher label; -100000 for neither
///   absolute  0: differences keep their sign; else they are taken without it
/// maxValue of the output becomes the largest difference plus 1 (-99999 where there is none).
/// Neighbours that share a label outside 1 .. maxValue contribute nothing. Values are expected in
/// -1 .. 100000: a range starts at 100000 or below, and ends at -1 or above, whatever the values.
void ifLabelDifferences(const imImage *values, const imImage *labels, imImage *output,
                        int absolute);

#pragma GCC visibility pop
