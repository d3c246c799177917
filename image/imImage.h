// The image record that the whole system shares, with its creation, copies, release and inspection.
//
// A pixel is a 32-bit signed integer, whatever its file held, so that an image can carry labels,
// costs, distances and negative values. Pixel (x, y) has index p = x + row[y]; x = p mod ncols and
// y = p div ncols.
//
// Where an image, or a place for a result, is needed and not given, an operation ends the process
// with status 1 after a line that names it.
//
// Allocation failures, in every function that makes an image: "Could not allocate image!\n" or
// "Could not allocate memory for image band %d!\n" on standard error, and no image.
#pragma once

#include <cstdio>
#include <memory>

/// What an image is, which is also the dialect that it came from or is to be written in.
/// The last four have no file form.
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
/// Sizes without a pixel, or with more than 2^31 - 1, are refused with the line "Could not allocate
/// image!\n" too. Bands take up memory where they are written; the row table takes 4 bytes a row.
[[nodiscard]] imImage *imCreateImage(int nbands, char type, int ncols, int nrows);

/// Frees the bands, the row table and the record, but not `adj`: whoever made an arc-weight image
/// frees its list first (imImagePtr does). Does not clear the caller's pointer.
void imReleaseImage(imImage **image);

/// A new image with the same size, type, bands and maxValue (not the adjacency); none for none.
[[nodiscard]] imImage *imCopyImage(const imImage *image);

/// A new image of one band, a copy of band b, with the type given; maxValue is the band's largest
/// value, 0 where all are negative. No such band: ends the process with status 1 after a line.
[[nodiscard]] imImage *imCopyBand(const imImage *image, char type, int b);

/// Histogram of band 0 over the pixels where band 0 of the mask is > 0.
///   histogram  out: new, entry v counts the pixels of value v; the caller frees it with free()
///   size       out: its entries, the largest value under the mask (at least 0) plus 1
/// Errors: images of different size, a negative value under the mask, or a largest value of
/// 2^31 - 1 end the process with status 1 after a line.
void imHistogram(const imImage *image, const imImage *mask, float **histogram, int *size);

/// Prints band 0 of the (2r + 1) x (2r + 1) window centred on pixel p, row by row: "%6d " for each
/// position inside the image, nothing for one outside, "\n" after each row. A negative r prints
/// nothing. A pixel outside the image ends the process with status 1 after a line.
void imPrintWindow(std::FILE *stream, const imImage *image, int p, int r);

/// Copies band 0 of `grey` into bands 0, 1 and 2 of `colour`, an image of the same size.
/// Sizes that differ, or fewer bands, end the process with status 1 after a line.
void imPgm2rgb(const imImage *grey, imImage *colour);

struct imImageDeleter {
  void operator()(imImage *image) const;
};

/// Owns an image, its adjacency list included.
using imImagePtr = std::unique_ptr<imImage, imImageDeleter>;
