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
/// Each pixel of a P2 file is a scan of a decimal integer. One that meets a sign without a number
/// behind it leaves its pixel 0, and the next goes on behind the sign; from the first other place
/// where no number stands all pixels are 0, and so are those that are missing. That is no error.
/// Samples outside 32 bits take the nearest value.
/// The file is read no further than to its last pixel, or to the place where its numbers end. White
/// space and the comment may be of any length. Memory is taken for what is there, not for what the
/// header promises.
/// Errors, on standard error, then status 1: "could not open file %s\n";
/// "unknown file format; trying to read %s\n" with the first word; "error reading file %s;
/// expecting %d pixels, read %d\n" where binary samples are missing (it counts bytes in a P6); a
/// line of its own for a header without three numbers or with impossible ones, or for a file that
/// cannot be read on; allocation lines as imCreateImage. Then `image` stays as it is.
int imReadImage(const char *path, imImage **image);

/// Writes an image in the dialect of its type.
///   grey (P5) and colour (P6): maximum 255, the low 8 bits of each value
///   ASCII (P2): every value whole as "%5d ", 16 to a line, below maxValue as the maximum; a
///   maxValue of 0 is first set, in the image itself, to the largest value (0 where all are
///   negative)
///   any other type: "Could not write image. Unknown type." on standard error, and an empty file
/// A regular file is written beside its place and then takes the place of the old one, with its
/// permissions, so that a write that fails leaves the old one as it was; the place beside it is in
/// the same folder, under a name that begins with ".seedforest-tmp-". Symbolic links stay. After a
/// power cut the file may be the old one, the new one or, on some file systems, empty. Devices,
/// pipes, and files in a folder where nothing can be created are written as they are. A path that
/// names a descriptor of the process, such as "/dev/stdout", is appended to.
/// Errors, on standard error, then status 1: "could not open file %s for writing\n"; "error writing
/// image %s\n" when the bytes do not all reach the file; a line for a colour image without 3 bands.
void imSaveImage(const char *path, imImage *image);
