// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Measures of regions that are kept up to date while regions merge: area, volume, colour.
//
// For a union-find over the pixels of an image (element p is pixel p) each measure has three
// operations: one fills in the data of single pixels; one, for the record's `merge`, adds the data
// of set b to those of set a; one computes an edge's weight from the regions at its ends. For a
// region graph there is a copy whose data are each vertex's measure.
//
//   ufUnionFind uf;
//   ufStartUnionFind(&uf, image->npixels, 4);
//   ifInitColorData(&uf, image);
//   uf.merge = ifUpdateColorData;
//   ... ifEdgeWeightColor(image, &uf, p, q) ... ufLink(&uf, a, b) ...
//
// Sums are kept in ints and saturate.
//
// Ends with an error, in every operation: no record, no image or too few bands, fewer elements than
// pixels, fewer integers on each than the measure has, a pixel that is no element (an error is a
// line on standard error and status 1, or an exception: base/error.h). The number of integers is
// checked in updates that ufLink() calls; code that calls an update itself must make sure that both
// elements have enough.
#pragma once

#include "graph/graph.h"
#include "graph/unionfind.h"
#include "image/imImage.h"

#pragma GCC visibility push(default)

/// Area, one integer: 1 for each pixel. The update returns b's area, the weight is the smaller of
/// the areas of the regions of p and q; it does not read the image.
void ifInitAreaData(ufUnionFind *uf, const imImage *image);
int ifUpdateAreaData(ufElement *elems, int a, int b);
int ifEdgeWeightArea(const imImage *image, ufUnionFind *uf, int p, int q);

/// Volume, two integers: area, sum of band 0. The update returns b's sum. The weight is the volume
/// of water in a region when its level is the value of p, area * value - sum: the smaller one of
/// the regions of p and q; saturating.
void ifInitVolumeData(ufUnionFind *uf, const imImage *image);
int ifUpdateVolumeData(ufElement *elems, int a, int b);
int ifEdgeWeightVolume(const imImage *image, ufUnionFind *uf, int p, int q);

/// Colour, four integers: area, sums of bands 0, 1 and 2. The update returns b's area. The weight
/// is the largest difference, over the bands, of the regions' means (integer divisions);
/// saturating. It does not read the image.
/// Ends with an error: a region of area 0.
void ifInitColorData(ufUnionFind *uf, const imImage *image);
int ifUpdateColorData(ufElement *elems, int a, int b);
int ifEdgeWeightColor(const imImage *image, ufUnionFind *uf, int p, int q);

/// A copy of the graph (see copyBaseGraph) with one integer on each vertex: the number of pixels
/// that have its label, or the sum over these pixels of the image's maxValue minus their value in
/// band 0. The caller releases it.
/// Print "will copy base graph %d\n" (the number of vertices) and "done!!!!\n" on standard output.
/// Ends with an error, before printing: no graph or no label image, labels or edges that lead to no
/// vertex, images of different size.
[[nodiscard]] ifGraph *ifComputeArea(ifGraph *graph);
[[nodiscard]] ifGraph *ifComputeVolume(ifGraph *graph, const imImage *image);

#pragma GCC visibility pop
