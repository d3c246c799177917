// Relative fuzzy connectedness: several objects, each known by its seeds, its mean grey level and
// the spread around it, compete for the pixels of an image.
//
// A chain of pixels is as strong as its weakest link, and two neighbours p and q are linked the
// more firmly the closer the average of their values (band 0) lies to the object's mean. As a cost,
// from 0 for a perfect match to 255 for none:
//
//     d = (I(p) + I(q)) / 2 - mean,   e = -(d * d) / sigma,   cost = 255 - exp(e) * 255
//
// The average, e and the product with 255 are integers, truncated toward zero, so there are only
// seven costs: 0, 162, 221, 243, 251, 254 and 255. d and its square are exact for all values. A
// negative sigma gives costs of 0 and less, down to 255 - (2^31 - 1).
//
// Errors, after a line on standard error, with status 1: a sigma of 0, images without band 0 or of
// different size, a seed outside the image, memory that cannot be had.
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imNeighborhood.h"

/// Gives each pixel to the object whose best chain of links from a seed of it costs least.
///   labelOut   out: the object, 1 .. nObjects; the lowest of several equals. A pixel that no
///              object reaches keeps what stood there.
///   costOut    out: the cost of that chain, the largest of its links' costs; 2^31 - 1 where none
///              arrives. Both are other images than the input, and their maxValue is left alone.
///   adjacency  called once
///   seeds      pixel and label (the object) are read; seeds with other labels are ignored
///   mean, sigma  of object o in entry o; entry 0 is not read
///   nObjects   with 0 or less, no pixel is reached
/// Writes the costs of objects 1 and 2, as far as there are any, as ASCII images "tmp1.pgm" and
/// "tmp2.pgm" into the current directory, with the errors of imSaveImage().
/// Algorithm: an image foresting transform for each object, with the largest link as path cost.
void iftFuzzy(const imImage *image, imImage *labelOut, imImage *costOut, imNeighborhoodFn adjacency,
              const ifRoots *seeds, const int *mean, const int *sigma, int nObjects);

/// The same with the costs of all links given, an arc-weight image for each object, as
/// ifFuzzyEdgesWeight() makes them. With its images the labels and costs are those of iftFuzzy().
///   image      gives the size; its values are not read
///   labelOut, costOut, adjacency, seeds, nObjects  as for iftFuzzy()
///   weights    of object o in entry o, at least a band for each displacement of the adjacency, of
///              the image's size; entry 0 is not read. A weight below 0 costs a path no more than 0,
///              one of 2^31 - 1 is no link, and what leads out of the image is not read.
/// Prints nothing and writes no file. Further errors: an entry without an image, one of another size
/// or with too few bands.
void iftFuzzyEdges(const imImage *image, imImage *labelOut, imImage *costOut,
                   imNeighborhoodFn adjacency, const ifRoots *seeds, const imImage *const *weights,
                   int nObjects);

/// The costs of all links for the mean m and the spread s: a new work image with a band for each
/// displacement of the adjacency, whose value at p is the cost of the link from p by that
/// displacement, 0 where it leads out of the image. nAdj and adj are not set.
[[nodiscard]] imImage *ifFuzzyEdgesWeight(const imImage *image, imNeighborhoodFn adjacency, int m,
                                          int s);

/// The average cost of the links to the neighbours in imNeighborhood4: a new image of type ASCII.
/// Always their sum divided by 4, rounded down, so that pixels of the frame come out lower.
[[nodiscard]] imImage *ifTestFuzzy(const imImage *image, int m, int s);
