// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image record that the whole system shares, with its creation, copies, release and inspection.
//
// A pixel is a 32-bit signed integer, whatever its file held, so that an image can carry labels,
// costs, distances and negative values. Pixel (x, y) has index p = x + row[y]; x = p mod ncols and
// y = p div ncols.
//
// Ends with an error, in every operation but imReleaseImage() and imCopyImage(): an image or a
// place for a result that is needed and missing (an error is a line on standard error and status 1,
// or an exception: base/error.h).
//
// Where a new image cannot be allocated: "Could not allocate image!\n" or "Could not allocate
// memory for image band %d!\n" on standard error, and no image; in a scope of ThrowingErrors that
// line is thrown.
#pragma once

#include <cstdio>
#include <memory>

#pragma GCC visibility push(default)

/// The type of an image, which is also the PNM dialect of its file. The last four have none.
inline constexpr char imTypeGrey = 1;     ///< grey, binary samples: P5
inline constexpr char imTypeAscii = 2;    ///< grey, ASCII samples: P2; computed images of one band
inline constexpr char imTypeColor = 3;    ///< red, green and blue, binary samples: P6
inline constexpr char imTypeXyz = 6;      ///< colour in a computed space
inline constexpr char imTypeFeatures = 9; ///< bands rescaled to 0 .. 1000
inline constexpr char imTypeWeights = 10; ///< a band of weights for each arc of an adjacency
inline constexpr char imTypeWork = 11;    ///< working bands of a transform

struct imImage {
  int **band;   ///< nbands arrays of npixels values
  int nbands;   ///< 1 for grey, 3 for colour (red, green, blue)
  int ncols;    ///< width in pixels
  int nrows;    ///< height in pixels
  int npixels;  ///< ncols * nrows
  int *row;     ///< row[y] = y * ncols, nrows entries
  int maxValue; ///< the largest grey value; 0 at creation
  char type;    ///< one of the constants above
  int nAdj;     ///< displacements in adj
  int *adj;     ///< nAdj pairs (dx, dy): the adjacency of an arc-weight image, else none
};

/// A new image: bands of zeros, maxValue and nAdj 0, no adj. The caller releases it.
/// Sizes without a pixel or with more than 2^31 - 1, and negative numbers of bands, are refused
/// with the line "Could not allocate image!\n" too. Bands take up memory only where they are
/// written; the row table takes 4 bytes a row.
[[nodiscard]] imImage *imCreateImage(int nbands, char type, int ncols, int nrows);

/// Frees the bands, the row table and the record, but not `adj`: the owner of an arc-weight image
/// frees its list first (imImagePtr does). Does not clear the caller's pointer. Null is allowed.
void imReleaseImage(imImage **image);

/// A new image with the same size, type, bands and maxValue (not the adjacency); null for null.
[[nodiscard]] imImage *imCopyImage(const imImage *image);

/// A new image of one band, a copy of band b, with the type given; maxValue is the band's largest
/// value, 0 where all are negative.
/// Ends with an error: no such band.
[[nodiscard]] imImage *imCopyBand(const imImage *image, char type, int b);

/// Histogram of band 0 over the pixels where band 0 of the mask is > 0.
///   histogram  out: new, entry v counts the pixels of value v; the caller frees it with free()
///   size       out: its entries, the largest value under the mask (at least 0) plus 1
/// Ends with an error: images of different size, a value under the mask that is negative or 2^31 -
/// 1.
void imHistogram(const imImage *image, const imImage *mask, float **histogram, int *size);

/// Prints band 0 of the (2r + 1) x (2r + 1) window centred on pixel p, row by row: "%6d " for each
/// position inside the image, nothing for one outside, "\n" after each row. A negative r prints
/// nothing.
/// Ends with an error: no stream, a pixel outside the image.
void imPrintWindow(std::FILE *stream, const imImage *image, int p, int r);

/// Copies band 0 of `grey` into bands 0, 1 and 2 of `colour`, an image of the same size.
/// Ends with an error: images of different size, too few bands.
void imPgm2rgb(const imImage *grey, imImage *colour);

struct imImageDeleter {
  void operator()(imImage *image) const;
};

/// Owns an image, its adjacency list included.
using imImagePtr = std::unique_ptr<imImage, imImageDeleter>;

#pragma GCC visibility pop
