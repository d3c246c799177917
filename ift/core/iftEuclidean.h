// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The Euclidean distance transform by image foresting: vector propagation (Danielsson, "Euclidean
// distance mapping", 1980) in the order of the distances.
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imNeighborhood.h"

#pragma GCC visibility push(default)

/// Gives each pixel the squared Euclidean distance to its nearest root, along the propagation: the
/// squared length of (sum of |dx|, sum of |dy|) over the steps of the path that won. That is the
/// distance to the path's root where the path is monotone in x and in y. With the 8-adjacency that
/// is not exact everywhere: some pixels, rarely, are given to a root that is a little farther than
/// their nearest (from the borders of cells, 83 pixels of an image of 1024 x 1024, at most 0.04
/// pixels too far; 1183 and 0.07 at 4096 x 4096). ifExactDistance() is exact, and gives no paths.
///   image      gives the size
///   result     at least three bands of that size; the last three are written: the root's label (0
///              where no path arrives), the squared distance (there ifInfiniteCost), and the pixel
///              before on the path (there, and for roots, the pixel itself); other bands are left
///              alone
///   adjacency  called once
///   roots      pixel and label of each; a pixel listed twice takes the later label and place
/// Algorithm: Dijkstra's, on 2 * (ncols + nrows) + 2 buckets in a circle. The first of several
/// equally short paths keeps a pixel. A distance that does not fit into 31 bits conquers nothing.
/// Ends with an error: a null argument, a result of another size or with too few bands, a root
/// outside the image, memory that cannot be allocated (base/error.h).
void iftEuclideanDT(const imImage *image, imImage *result, imNeighborhoodFn adjacency,
                    const ifRoots *roots);

#pragma GCC visibility pop
