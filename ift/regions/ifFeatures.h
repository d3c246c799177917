// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Features of regions: averages of the bands, as an image or on the vertices of a region graph, and
// features brought to the common range 0 .. 1000. Averages are sums in 64 bits, divided as integers
// (truncating toward zero).
//
// Results are new, and the caller releases them. An image without bands, or a graph without data,
// has no features: results then have no bands or data either.
//
// Ends with an error, in every operation: no image or no graph, images of different size, labels
// out of range, edges that lead to no vertex, vertices without the data that dataSize promises,
// memory that cannot be allocated (an error is a line on standard error and status 1, or an
// exception: base/error.h).
#pragma once

#include "graph/graph.h"
#include "image/imImage.h"

#pragma GCC visibility push(default)

/// Paints every pixel in the average of its region, band by band.
///   output  of the image's size, with at least its bands
///   labels  band 0 holds the regions, 0 .. maxValue
/// Any of the three may be the same image: band 0, which may hold the labels, is written last.
void ifAverageColor(const imImage *image, imImage *output, const imImage *labels);

/// A new image of type features, maxValue 1000: in each band (v - min) * 1000 / (max - min), with
/// min and max of the band; in 32 bits, so differences beyond 2147483 wrap around. A constant band
/// becomes 0. Prints "MAX = %d, MIN = %d\n" on standard output for each band.
[[nodiscard]] imImage *ifCreateFeaturesVector(const imImage *image);

/// A new image of type features, maxValue 1000, with the bands of a feature image and one more
/// behind them: that of the image, 0 .. nbands - 1, rescaled as by ifCreateFeaturesVector(). Prints
/// nothing. Ends with an error, too: no such band.
[[nodiscard]] imImage *ifAddFeatureToVector(const imImage *features, const imImage *image,
                                            int band);

/// A copy of the graph (see copyBaseGraph) with the averages of the image's bands on each vertex,
/// over the pixels that have its label; 0 where there are none.
[[nodiscard]] ifGraph *ifComputeAverageColors(ifGraph *graph, const imImage *image);

/// A new image of the type given, of the size of the graph's label image, maxValue 0: band b holds
/// integer b of the vertex that the pixel's label names.
[[nodiscard]] imImage *ifAverageColorsGraphToImage(ifGraph *graph, char type);

/// A copy of the graph with its data rescaled, each integer over all vertices, as by
/// ifCreateFeaturesVector(), which prints its line for each.
[[nodiscard]] ifGraph *ifCreateFeaturesGraph(ifGraph *graph);

#pragma GCC visibility pop
