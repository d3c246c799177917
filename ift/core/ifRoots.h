// Roots: sets of seed pixels with a label each, and the text file that carries them between runs.
//
// Entry i of the parallel arrays is seed i. The order is that in which the seeds were produced, and
// every operation keeps it: transforms serve seeds of equal cost in this order. Pixels and labels
// may repeat.
//
// Where an image or a record is needed and not given, an operation ends the process with status 1
// after a line that names it.
#pragma once

#include "image/imImage.h"

#include <memory>

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

/// Gives the record n entries of zeros (n may be 0); what it held before is not released.
/// A negative n, or memory that cannot be had, ends the process with status 1 after a line.
void ifAllocateRoots(ifRoots *roots, int n);

/// Free the arrays, not the record, which keeps no entries. Nothing where there is no record.
void ifReleaseRoots(ifRoots *roots);
void ifReleaseRoots2(ifRoots2 *roots);

/// Writes a roots file: the count, then a line "x y label" per seed, in order; the image supplies
/// the width that splits a pixel index. The values are not stored. An old file is replaced, when
/// the new one is whole, as by imSaveImage(). Errors, on standard error, then status 1: "Could not
/// open file %s for writing\n"; a line when the text does not all reach the file.
void ifSaveRoots(const char *path, const imImage *image, const ifRoots *roots);
void ifSaveRoots2(const char *path, const imImage *image, const ifRoots2 *roots);

/// Reads a roots file into a new record, values 0; the caller owns it (ifRootsPtr releases it).
/// Numbers may stand apart by any white space. Each seed prints "read: %d %d\n" (pixel and label)
/// on standard output. Where a line has no number to scan, x, y and label keep their last values (0
/// at first): a file may have fewer lines than its count, and coordinates outside the image give
/// pixel indices outside it, which operations on the set reject. The file is read to its end.
/// Errors, on standard error: "Could not open file %s for reading\n", or a line for a file that
/// cannot be read on, then status 1; "invalid number of roots in file %s\n" and no record when the
/// count is missing, below 1, or larger than 65536 plus the file's size in bytes.
[[nodiscard]] ifRoots *ifReadRoots(const char *path, const imImage *image);

/// A new image of type ASCII: each seed's label at its pixel, the later seed's where a pixel
/// repeats, and 0 elsewhere; maxValue 0. A seed outside the image ends the process with status 1
/// after a line.
[[nodiscard]] imImage *ifVisualizeRoots(const imImage *image, const ifRoots *roots);

struct ifRootsDeleter {
  void operator()(ifRoots *roots) const;
};

/// Owns a roots record and its arrays.
using ifRootsPtr = std::unique_ptr<ifRoots, ifRootsDeleter>;
