// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Roots that separate the cells of a micrograph: markers on bright objects, and the lines between
// them.
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// Cells, by a watershed from markers (Meyer and Beucher, "Morphological segmentation", 1990):
/// smooths the image with an open-close alternating filter (imMorphAsfOC), takes the regional
/// maxima of the result as one marker an object, floods the negative of the unfiltered image from
/// the markers (a watershed by iftNonNormalized), and makes every pixel of a marker a root of label
/// 2 and every pixel of a watershed line one of label 1; a pixel of both is of the line. A line is
/// one pixel wide, on the side of the basin with the smaller label. Roots are in raster order,
/// values 0.
///   image  one band; its maxValue is raised to its largest value, as imNegative() does
///   steps  of the filter, whose squared radii are 1 .. steps; 0 or less filters nothing
/// Returns a new set, which the caller owns.
/// Writes the classes 0, 1 and 2 as the image "labeled.pgm" in the current directory.
/// Prints on standard output: "in cells roots\n\n", the filter's "radius is %d\n" for each step,
/// "in ifLabelImage\n" twice, "ha %d sementes\n" with the number of marker pixels.
/// Ends with an error (a line on standard error and status 1, or an exception: base/error.h): no
/// image, one of another number of bands, or more than 1000000 steps, all before anything is
/// printed; what imSaveImage() reports, memory that cannot be allocated.
[[nodiscard]] ifRoots *ifCellsRoots(imImage *image, int steps);

#pragma GCC visibility pop
