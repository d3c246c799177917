// Reading and writing the three PNM dialects: P2 (grey, ASCII), P5 (grey, a byte a sample) and P6
// (colour, three bytes a pixel).
//
// One comment line is understood, directly after the magic word. A binary sample is one byte
// whatever the declared maximum says: a file of 16-bit samples is not read as one.
#pragma once

#include "image/imImage.h"

/// Reads an image file into a new image, which the caller releases.
/// Returns the kind, which is also the image's type: 1 for P5, 2 for P2, 3 for P6. The image's
/// maxValue is the file's declared maximum, and its pixels may exceed it.
/// A P2 file's pixels are 0 from the first place where no number stands; that is no error. Samples
/// outside 32 bits take the nearest value.
/// Errors, on standard error, then status 1: "could not open file %s\n";
/// "unknown file format; trying to read %s\n" with the first word; "error reading file %s;
/// expecting %d pixels, read %d\n" where binary samples are missing (it counts bytes in a P6); a
/// line of its own for a header without three numbers or with impossible ones; allocation lines as
/// imCreateImage.
int imReadImage(const char *path, imImage **image);

/// Writes an image in the dialect of its type.
///   grey (P5) and colour (P6): maximum 255, the low 8 bits of each value
///   ASCII (P2): every value whole as "%5d ", 16 to a line, below maxValue as the maximum; a
///   maxValue of 0 is first set, in the image itself, to the largest value (0 where all are negative)
///   any other type: "Could not write image. Unknown type." on standard error, and an empty file
/// Errors, on standard error, then status 1: "could not open file %s for writing\n"; "error writing
/// image %s\n" when the bytes do not all reach the file; a line for a colour image without 3 bands.
void imSaveImage(const char *path, imImage *image);
