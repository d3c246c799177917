// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Labels for connected sets of pixels: components of a binary image, flat zones around seeds, and
// labels renumbered without gaps. All work on band 0 and join neighbours by imNeighborhood8.
//
// Outputs are images of the input's size, zeroed by the caller: pixels that an operation does not
// write keep their values.
//
// Ends with an error, in every operation: no image, one without band 0 or of another size than its
// partner, memory that cannot be allocated (an error is a line on standard error and status 1, or
// an exception: base/error.h).
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// Connected components: numbers the 8-connected sets of pixels > 0 with 1, 2, ... in the order of
/// their first pixels in raster order. Algorithm: run-based two-scan labelling with a union-find
/// (He, Chao and Suzuki, "A run-based two-scan labeling algorithm", 2008).
///   binary  pixels > 0 are object
///   labels  in, out: an object pixel gets the number of its component, others stay as they are.
///           In an image that holds labels already, a component counts only from its first pixel of
///           label 0: one without such a pixel is left alone and takes no number; of any other all
///           pixels are numbered. maxValue becomes the number of components that were numbered.
/// Prints "in ifLabelImage\n" on standard output.
void ifLabelImage(const imImage *binary, imImage *labels);

/// Flat zones: writes 255 on every pixel of the 8-connected zones of equal grey value that hold a
/// root, by a flood from the roots.
///   grey    any values
///   output  out: 255 where reached, else unchanged; maxValue stays as it is
/// Ends with an error: no roots record, a root outside the image.
void ifConnectedComponents(const imImage *grey, imImage *output, const ifRoots *roots);

/// Renumbers the values of an image 1 .. k, in place, in the order of their first pixels in raster
/// order; 0 and negative values are numbered like any other. maxValue becomes k.
void ifCorrectLabels(imImage *labels);

#pragma GCC visibility pop
