// Roots that separate the cells of a micrograph: markers on bright objects, and the lines between
// them.
#pragma once

#include "ift/core/ifRoots.h"

/// Cells: smooths the image with an open-close alternating filter (imMorphAsfOC), takes the
/// regional maxima of the result as one marker an object, floods the negative of the unfiltered
/// image from the markers (a watershed by iftNonNormalized), and makes every pixel of a marker a
/// root of label 2 and every pixel of a watershed line one of label 1, lines first where both meet.
/// A line is one pixel wide, on the side of the basin with the smaller label. Roots stand in raster
/// order, values 0.
///   image  one band; its maxValue is raised to its largest value, as imNegative() does
///   steps  of the filter, whose squared radii are 1 .. steps; 0 or less filters nothing
/// Returns a new set, which the caller owns.
/// Writes the classes 0, 1 and 2 as the image "labeled.pgm" in the current directory.
/// Prints on standard output: "in cells roots\n\n", the filter's "radius is %d\n" for each step,
/// "in ifLabelImage\n" twice, "ha %d sementes\n" with the number of marker pixels.
/// Errors: an image of another number of bands, or more than 1000000 steps, end the process with
/// status 1 after a line, before anything is printed; so do, later, what imSaveImage() reports and
/// memory that cannot be had.
[[nodiscard]] ifRoots *ifCellsRoots(imImage *image, int steps);
