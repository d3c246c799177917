// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Multiscale skeletons of binary shapes by label differences. Border pixels are labelled with their
// position along the contour, and every pixel takes the label of its nearest border pixel. It lies
// on the skeleton where its label and a neighbour's differ by at least the scale.
//
// Ends with an error, in all operations: no image, no roots or no place for the result, images of
// different size or of a number of bands that does not fit, a root outside the image, memory that
// cannot be allocated (an error is a line on standard error and status 1, or an exception:
// base/error.h).
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// The Euclidean distance transform (iftEuclidean.h), in which each pixel takes two numbers of its
/// root: the label, which is the root's position along the contours, and the value, the number of
/// the root's contour.
///   image  gives the size
///   work   at least four bands of that size; the last four are written: label, squared distance,
///          predecessor and contour number (0, ifInfiniteCost, the pixel itself and 0 where no path
///          arrives)
///   roots  pixel, label and value of each, as ifSkel2Roots() gives them
/// The adjacency is imNeighborhood(2), and there are 2 * (ncols + nrows) buckets.
void iftSkelNova(const imImage *image, imImage *work, const ifRoots2 *roots);

/// The skeleton of a binary shape (band 0 > 0; one band only).
///   skelType   0: over the whole image; 1: inside the shape; 2: outside it
///   threshold  the scale: the least distance, along the contour, between the border pixels nearest
///              to a skeleton pixel and to a neighbour; a larger one than the returned value counts
///              as that value
///   result     out: a new image of type ASCII, each skeleton pixel with its squared distance to
///              the border, 0 elsewhere; the caller releases it. Null for any other skelType, after
///              "invalid skelType: %d\n" on standard error
/// Returns the largest difference that occurs, plus one; -99999 for a shape without roots, whose
/// skeleton is empty whatever the threshold. Algorithm: ifSkel2Roots(), iftSkelNova(),
/// ifLabelDifferences().
int ifSkel(const imImage *image, int skelType, int threshold, imImage **result);

/// The shape that a skeleton was made from, as far as the skeleton has it: 1 wherever some pixel of
/// value d > 0 in band 0 lies at a squared distance of at most d, 0 elsewhere. That is the union of
/// the discs that imPaintCircles() paints, at a cost that is linear in the pixels, whatever the
/// discs' areas. A skeleton of ifSkel() has the discs that reach the nearest border pixels, rims
/// included; of a pruned one, what its branches held is missing.
/// Returns a new image of type ASCII, maxValue 1 (0 where there is no disc); the caller releases it.
/// None where it cannot be had, after the line of imCreateImage().
/// Prints nothing. Algorithm: a power distance transform (F. Aurenhammer, Power diagrams, 1987) along
/// columns and then along rows, each with the lower envelope of ifExactDistance().
[[nodiscard]] imImage *iftSkelReconstr(const imImage *skeleton);

#pragma GCC visibility pop
