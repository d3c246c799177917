// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Roots on the borders of binary shapes.
//
// Ends with an error, in every operation: no image, no band or no record, memory that cannot be
// allocated (an error is a line on standard error and status 1, or an exception: base/error.h). The
// record is then unchanged.
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// Roots for a distance transform: the border pixels of the objects (band 0 > 0), in raster order,
/// values 0. Outside the image there is no background.
///   roots    out: count and new arrays, which the caller owns; arrays that the record held before
///            are not released
///   contour  not 0: border pixels have a pixel of value 0 among their 4 neighbours, and each takes
///            a label of its own, its place along the contour as labelContours() gives it.
///            0: border pixels have a pixel <= 0 among their 8 neighbours, and take the number of
///            their object as ifLabelImage() gives it.
/// Prints, with contour 0, "in ifLabelImage\n" on standard output.
void ifDistTransfRoots(const imImage *binary, ifRoots *roots, int contour);

/// Roots for skeletons: the border of the objects (band 0 > 0), followed along its contours. Of the
/// border pixels, those with a pixel of value 0 among their neighbours in imNeighborhood4, only the
/// ones remain that touch the interior in imNeighborhood8: an object without interior has no roots.
/// Outside the image there is no background.
///   roots  out: new arrays with an entry per pixel of the image, of which the first n are the
///          roots, in the order of following; arrays held before are not released. label is
///          a root's place in that order, from 1; value is the number of its contour, from 1; extra
///          is 0. The caller releases them with ifReleaseRoots2.
/// Each contour is followed as by ifContourFollow(), from its first pixel in raster order; pixels
/// that following does not reach begin contours of their own.
/// Returns the shape that was followed, interior and remaining border (type grey, 255 and 0), for
/// the caller to release. Prints nothing.
[[nodiscard]] imImage *ifSkel2Roots(const imImage *image, ifRoots2 *roots);

/// Roots for skeletons: all border pixels of the objects, as above, numbered curve by curve. The
/// curves are the border's 8-connected components, in raster order of their first pixels. A walk
/// goes breadth first, in the order of imNeighborhood8Clockwise, from the leftmost pixel of the
/// curve's middle row (the upper one of two), and the numbers run on from curve to curve.
///   roots  out: count and new arrays, in raster order, values 0, which the caller owns; arrays
///          that the record held before are not released
/// For the middle row, a curve that begins in a row beyond 100000 counts as beginning in row
/// 100000; if it has no pixel in that middle row it gets no roots.
/// Prints "in ifLabelImage\n" on standard output.
void ifSkel2RootsSplit(const imImage *image, ifRoots *roots);

#pragma GCC visibility pop
