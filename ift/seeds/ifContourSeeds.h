// Roots on the borders of binary shapes.
#pragma once

#include "ift/core/ifRoots.h"

/// Roots for a distance transform: the border pixels of the objects (band 0 > 0), in raster order,
/// values 0. What lies outside the image is no background.
///   roots    out: count and new arrays; what the record held before is not released. The caller
///   owns
///            the arrays.
///   contour  not 0: border pixels have a pixel of value 0 among their neighbours in
///   imNeighborhood4,
///            and each takes a label of its own, its place along the contour as labelContours()
///            gives it. 0: border pixels have a pixel <= 0 among their 8 neighbours, and take the
///            number of their object as ifLabelImage() gives it.
/// Prints, with contour 0, "in ifLabelImage\n" on standard output.
/// Errors: no image or no band ends the process with status 1 after a line, as does memory that
/// cannot be had.
void ifDistTransfRoots(const imImage *binary, ifRoots *roots, int contour);
