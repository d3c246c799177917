// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Reading and writing the three PNM dialects: P2 (grey, ASCII), P5 (grey, a byte a sample) and P6
// (colour, three bytes a pixel).
//
// One comment line is accepted, directly after the magic word. A binary sample is one byte whatever
// maximum is declared: files of 16-bit samples are not supported.
//
// Ends with an error, in both operations, as listed there (an error is a line on standard error and
// status 1, or an exception: base/error.h).
#pragma once

#include "image/imImage.h"

#pragma GCC visibility push(default)

/// Reads an image file into a new image, which the caller releases.
/// Returns the kind, which is also the image's type: 1 for P5, 2 for P2, 3 for P6. The image's
/// maxValue is the file's declared maximum, and its pixels may exceed it.
/// Each pixel of a P2 file is one scan of a decimal integer. Where a sign has no digits behind it,
/// the pixel is 0 and the next scan starts behind the sign. At anything else that is no number, or
/// at the end of the file, this pixel and all later ones are 0. That is no error. Samples outside
/// 32 bits take the nearest value.
/// Whatever follows the last pixel, or the place where the numbers end, is ignored and not waited
/// for. White space and the comment may be of any length. For a P5 or P6 file that is too short,
/// memory is taken for the bytes that it has, not for the size in its header.
/// Ends with an error, and `image` unchanged: no path or no place for the image; "could not open
/// file %s\n"; "unknown file format; trying to read %s\n" with the first word; "error reading file
/// %s; expecting %d pixels, read %d\n" where binary samples are missing (in a P6 it counts bytes);
/// a header without three numbers of 32 bits or with an impossible size; a read error; memory that
/// cannot be allocated, with the lines of imCreateImage().
int imReadImage(const char *path, imImage **image);

/// Writes an image in the dialect of its type.
///   grey (P5) and colour (P6): maximum 255, the low 8 bits of each value
///   ASCII (P2): every value as "%5d ", 16 to a line, with maxValue as the declared maximum; a
///   maxValue of 0 is first set, in the image itself, to the largest value (0 where all are
///   negative)
///   any other type: "Could not write image. Unknown type." on standard error, and an empty file
/// A regular file is written under a temporary name in the same folder, which begins with
/// ".seedforest-tmp-", and then renamed over the old one, with its permissions: a write that fails
/// leaves the old file unchanged. Symbolic links stay. After a power cut the file may be the old
/// one, the new one or, on some file systems, empty. Devices, pipes, and files in a folder where
/// nothing can be created are written in place. A path that names a descriptor of the process, such
/// as "/dev/stdout", is appended to.
/// Ends with an error: no path, no image; "could not open file %s for writing\n"; "error writing
/// image %s\n" when not all bytes reach the file; an image with fewer bands than its type needs.
void imSaveImage(const char *path, imImage *image);

#pragma GCC visibility pop
