// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The exact Euclidean distance transform, with the nearest root of each pixel (feature transform,
// discrete Voronoi diagram).
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// Gives each pixel the squared Euclidean distance to its nearest root, that root's label and its
/// pixel. Of roots equally near, the one that is first in the list wins, at every pixel.
///   image   gives the size
///   result  at least three bands of that size; the last three are written: the nearest root's label
///           (0 where there is none), the squared distance (ifInfiniteCost), and the root's pixel
///           (the pixel itself); other bands are left alone
///   roots   pixel and label of each; a pixel listed twice takes the later label and place, as in
///           iftEuclideanDT()
/// A root whose squared distance does not fit into 31 bits is none. Prints nothing.
/// Algorithm: the nearest root of each column by a sweep down and one up, then for each row the lower
/// envelope of a parabola a column (A. Meijster, J. Roerdink, W. Hesselink, A general algorithm for
/// computing distance transforms in linear time, 2000; P. Felzenszwalb, D. Huttenlocher, Distance
/// transforms of sampled functions, 2012), in integers. Linear in the pixels and the roots.
/// Ends with an error: something missing, a result of another size or with too few bands, a root
/// outside the image, memory that cannot be allocated.
void ifExactDistance(const imImage *image, imImage *result, const ifRoots *roots);

#pragma GCC visibility pop
