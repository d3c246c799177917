// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Arc-weight images: the weights of all arcs of an image, computed in advance.
//
// The result has one band for each displacement of the adjacency, in order, and type weights. Band
// k holds at pixel p the weight of the arc to p's k-th neighbour, -1 where that lies outside.
// maxValue is 1000; nAdj and adj hold the adjacency. The caller releases it: free(adj) and
// imReleaseImage, or an imImagePtr, which does both.
//
// Reals are computed in double precision and truncated.
//
// Ends with an error, in every operation: no image, an image without bands, no adjacency (an error
// is a line on standard error and status 1, or an exception: base/error.h). Where the result cannot
// be allocated: as imCreateImage().
#pragma once

#include "image/imImage.h"
#include "image/imNeighborhood.h"

#pragma GCC visibility push(default)

using ifWeightImageFn = imImage *(*)(const imImage *image, imNeighborhoodFn adjacency);

/// The distance of ifEuclideanDistance(), at most 1000. Prints "out: %d %d %d \n" (bands and width
/// of the result, height of the image) on standard output.
[[nodiscard]] imImage *euclideanWF(const imImage *image, imNeighborhoodFn adjacency);

/// (1 - exp(-d * d / 10000)) * 1000 of d = ifEuclideanDistance().
[[nodiscard]] imImage *gaussianWF(const imImage *image, imNeighborhoodFn adjacency);

/// Nearly a step function of the difference d of the values in band 0: 0 for d <= 3, else
/// (1 - exp(-2 (d - 3)^2)) * 1000. Prints as euclideanWF.
[[nodiscard]] imImage *gaussian2WF(const imImage *image, imNeighborhoodFn adjacency);

/// The destination's value in band 0, as it is; transforms read a negative one as "no arc".
[[nodiscard]] imImage *watershedWF(const imImage *image, imNeighborhoodFn adjacency);

#pragma GCC visibility pop
