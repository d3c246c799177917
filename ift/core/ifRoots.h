// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Roots: sets of seed pixels with a label each, and the text file that carries them between runs.
//
// Entry i of the parallel arrays is seed i. The order is that in which the seeds were produced, and
// every operation keeps it: transforms serve seeds of equal cost in this order. Pixels and labels
// may repeat.
//
// Ends with an error, in every operation but the releases: no image, no record or no path where one
// is needed (an error is a line on standard error and status 1, or an exception: base/error.h).
#pragma once

#include "image/imImage.h"

#include <memory>

#pragma GCC visibility push(default)

struct ifRoots {
  int *pixel; ///< pixel index in the image that the set belongs to
  int *label; ///< the seed's label
  int *value; ///< the seed's initial path cost in a transform
  int n;      ///< number of seeds
};

/// Roots with one more integer each: the seeds of skeletons.
struct ifRoots2 {
  int *pixel;
  int *label;
  int *value;
  int *extra;
  int n;
};

/// Gives the record n entries of zeros (n may be 0); arrays that it held before are not released.
/// Ends with an error: a negative n, memory that cannot be allocated.
void ifAllocateRoots(ifRoots *roots, int n);

/// Free the arrays, not the record, which is left empty. Null is allowed.
void ifReleaseRoots(ifRoots *roots);
void ifReleaseRoots2(ifRoots2 *roots);

/// Writes a roots file: the count, then a line "x y label" per seed, in order; the image supplies
/// the width that splits a pixel index. The values are not stored. An old file is replaced, when
/// the new one is complete, as by imSaveImage().
/// Ends with an error: "Could not open file %s for writing\n"; text that does not all reach the
/// file.
void ifSaveRoots(const char *path, const imImage *image, const ifRoots *roots);
void ifSaveRoots2(const char *path, const imImage *image, const ifRoots2 *roots);

/// Reads a roots file into a new record, values 0; the caller owns it (ifRootsPtr releases it).
/// Numbers are separated by any white space. Each seed prints "read: %d %d\n" (pixel and label) on
/// standard output. Where no number can be scanned, x, y or label keeps its last value (0 at
/// first), so a file may have fewer lines than its count. Coordinates outside the image give pixel
/// indices outside it, or other pixels of it; operations on the set reject the indices outside. The
/// file is read to its end.
/// Ends with an error: "Could not open file %s for reading\n"; a read error; memory that cannot be
/// allocated. Where the count is missing, below 1, or larger than 65536 plus the file's size in
/// bytes: "invalid number of roots in file %s\n" on standard error, and no record; in a scope of
/// ThrowingErrors that line is thrown.
[[nodiscard]] ifRoots *ifReadRoots(const char *path, const imImage *image);

/// A new image of type ASCII: each seed's label at its pixel, the later seed's where a pixel
/// repeats, and 0 elsewhere; maxValue 0.
/// Ends with an error: a seed outside the image. Where the image cannot be allocated: as
/// imCreateImage().
[[nodiscard]] imImage *ifVisualizeRoots(const imImage *image, const ifRoots *roots);

struct ifRootsDeleter {
  void operator()(ifRoots *roots) const;
};

/// Owns a roots record and its arrays.
using ifRootsPtr = std::unique_ptr<ifRoots, ifRootsDeleter>;

#pragma GCC visibility pop
