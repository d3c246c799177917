// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Adjacency relations: which pixels are neighbours of a pixel, as an ordered list of displacements.
// The order is part of every result: transforms visit neighbours in list order, and it decides
// which of two equal paths wins.
//
// A relation is a function that stores a new list of pairs dx0, dy0, dx1, dy1, ... through its
// argument, for the caller to free(), and returns the number n of pairs. dx counts columns to the
// right, dy rows downwards. A neighbour outside the image does not exist; nothing wraps around.
//
// Ends with an error, in every relation: a null argument, memory that cannot be allocated ("could
// not allocate memory!\n"; an error is a line on standard error and status 1, or an exception:
// base/error.h).
#pragma once

#pragma GCC visibility push(default)

using imNeighborhoodFn = int (*)(int **list);

// The fixed relations, with the order in which they visit the neighbours of o:
//
//      4        4forward       8        8forward   8Clockwise
//
//    . 3 .      . . .        8 3 7      . . .       6 7 8
//    4 o 1      . o 1        4 o 1      . o 1       5 o 1
//    . 2 .      . 2 .        6 2 5      4 2 3       4 3 2

int imNeighborhood4(int **list);
int imNeighborhood4forward(int **list);
int imNeighborhood8(int **list);
int imNeighborhood8forward(int **list);
int imNeighborhood8Clockwise(int **list);

/// The disc of squared radius r2: every (dx, dy) with dx * dx + dy * dy <= r2, the centre included,
/// dx ascending and, within one dx, dy ascending. A negative r2 gives an empty list.
/// Ends with an error: a disc of more than 2^30 - 1 pairs.
int imNeighborhood(int **list, int r2);

/// The square of (2r + 1) x (2r + 1) displacements, the centre included, in the order of the disc.
/// Ends with an error: a negative r, a square of more than 2^30 - 1 pairs.
int imMorphWindow(int **list, int r);

#pragma GCC visibility pop
