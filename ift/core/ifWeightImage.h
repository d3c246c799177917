// Arc-weight images: the weights of all arcs of an image, computed in advance.
//
// The result has one band for each displacement of the adjacency, in order, and type weights. Band
// k holds at pixel p the weight of the arc to p's k-th neighbour, -1 where that lies outside.
// maxValue is 1000; nAdj and adj hold the adjacency. The caller releases it: free(adj) and
// imReleaseImage, or an imImagePtr, which does both.
//
// Reals are computed in double precision and truncated. Errors: no image, one without bands, or no
// adjacency end the process with status 1 after a line; allocation failures print the lines of
// imCreateImage, and none is returned.
#pragma once

#include "image/imImage.h"
#include "image/imNeighborhood.h"

using ifWeightImageFn = imImage *(*)(const imImage *image, imNeighborhoodFn adjacency);

/// d of ifEuclideanDistance, at most 1000. Prints "out: %d %d %d \n" (bands and width of the
/// result, height of the image) on standard output.
[[nodiscard]] imImage *euclideanWF(const imImage *image, imNeighborhoodFn adjacency);

/// (1 - exp(-d * d / 10000)) * 1000, d of ifEuclideanDistance.
[[nodiscard]] imImage *gaussianWF(const imImage *image, imNeighborhoodFn adjacency);

/// 0 where the values of band 0 differ by at most 3, else (1 - exp(-2 (d - 3)^2)) * 1000 of their
/// difference d: close to a step. Prints as euclideanWF.
[[nodiscard]] imImage *gaussian2WF(const imImage *image, imNeighborhoodFn adjacency);

/// The destination's value in band 0, as it is; transforms read a negative one as "no arc".
[[nodiscard]] imImage *watershedWF(const imImage *image, imNeighborhoodFn adjacency);
