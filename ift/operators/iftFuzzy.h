// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Relative fuzzy connectedness (Saha and Udupa, "Relative fuzzy connectedness among multiple
// objects", 2001): several objects, each given by its seeds, its mean grey level and the spread
// around it, compete for the pixels of an image.
//
// A chain of pixels is as strong as its weakest link. The link of two neighbours p and q is the
// stronger, the closer the average of their values (band 0) is to the object's mean. As a cost,
// from 0 for the strongest link to 255 for none:
//
//     d = (I(p) + I(q)) / 2 - mean,   e = -(d * d) / sigma,   cost = 255 - exp(e) * 255
//
// The average, e and the product with 255 are integers, truncated toward zero, so there are only
// seven costs: 0, 162, 221, 243, 251, 254 and 255. d and its square are exact for all values. A
// negative sigma gives costs of 0 and less, down to 255 - (2^31 - 1).
//
// Ends with an error, in every operation: a sigma of 0, no image, no adjacency, no list, images
// without band 0 or of different size, a seed outside the image, memory that cannot be allocated
// (an error is a line on standard error and status 1, or an exception: base/error.h). Where an
// image that is returned cannot be allocated: as imCreateImage().
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imNeighborhood.h"

#pragma GCC visibility push(default)

/// Gives each pixel to the object from whose seeds the cheapest chain of links leads to it.
///   labelOut   out: the object, 1 .. nObjects; the lowest of several equals. A pixel that no
///              object reaches keeps its old value.
///   costOut    out: the cost of that chain, the largest of its links' costs; 2^31 - 1 where none
///              arrives. Neither may be the input; their maxValue is left alone.
///   adjacency  called once
///   seeds      pixel and label (the object) are read; seeds with other labels are ignored
///   mean, sigma  of object o in entry o; entry 0 is not read
///   nObjects   with 0 or less, no pixel is reached
/// Writes the costs of objects 1 and 2, where they exist, as ASCII images "tmp1.pgm" and
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
/// It is always their sum divided by 4, rounded down, so it is too low at pixels of the frame.
[[nodiscard]] imImage *ifTestFuzzy(const imImage *image, int m, int s);

#pragma GCC visibility pop
