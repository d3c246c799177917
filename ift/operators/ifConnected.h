// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Connected filters of grey-level images: reconstructions, area openings and closings, levellings.
// Contours do not move: a filter lowers or raises flat zones only as a whole.
//
// All work on band 0 with imNeighborhood8 and ifWatershedMetric, as transforms whose costs are the
// filtered image. `filtered` and `labels` are new images of one band and f's size, stored through
// out-arguments; the caller releases both. filtered has f's type unless said otherwise, and as its
// maxValue its largest value (0 where all are negative); labels has type ASCII, and 0 where no path
// arrived. Roots give pixel, label and, in `value`, the starting cost. The bound of a transform's
// costs is the maxValue named below, or the largest value of that image's band 0 where it is
// larger.
//
// Ends with an error, in every operation: no image or no band, images of different size, no roots
// or one outside the image, a negative bound, no place for a result, memory that cannot be
// allocated (an error is a line on standard error and status 1, or an exception: base/error.h).
// Results are stored last.
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// Reconstruction of f from roots, by dilation (Vincent, "Morphological grayscale reconstruction in
/// image analysis", 1993). The cost of a path is the smallest of its starting cost and f along it;
/// every pixel gets the largest cost of all paths from the roots (iftNonNormalizedInverted, bounded
/// by f's maxValue).
/// Without roots every pixel keeps -2147483648.
///   second  not read; may be null
///   flag    not 0: ifPathCostMin. 0: ifPathCostMinLocal, whose paths go on only where f is not
///           below their starting cost; where none arrived, filtered is f.
void ifReconstr(const imImage *f, const imImage *second, const ifRoots *roots, int flag,
                imImage **filtered, imImage **labels);

/// The dual, by erosion: smallest and largest exchanged, with iftNonNormalized, ifPathCostMax and
/// ifPathCostMaxLocal, and 2147483647 without roots. The bound is the maxValue of g, which is read
/// for the bound alone.
void ifDualReconstr(const imImage *f, const imImage *g, const ifRoots *roots, int flag,
                    imImage **filtered, imImage **labels);

/// Area opening (Vincent, "Grayscale area openings and closings", 1993): lowers each bright peak
/// that is smaller than `area` pixels to the highest level at which it is not.
///   labels  k on what the k-th regional maximum, in raster order, reconstructs
///   area    a peak of exactly so many pixels stays. An area beyond the number of pixels gives the
///           image's lowest value everywhere, one of 0 or less gives 0.
/// For an image without a regional maximum (all zeros: ifExtrema.h), filtered is f, labels 0.
/// Near linear time for values of at least 0; where some are negative, time grows with the number
/// of maxima times the area.
/// Prints on standard output: "in ifLabelImage\n" twice, "There are %d regional maxima\n".
void ifAreaOpen(const imImage *f, imImage **filtered, imImage **labels, int area);

/// The same by local reconstruction: paths start at their maximum's level and go on only where f is
/// not below it; other pixels keep f's value, labels 0. A maximum whose component never has `area`
/// pixels gives no root.
void ifAreaOpenOld(const imImage *f, imImage **filtered, imImage **labels, int area);

/// Area closing: raises each dark basin that is smaller than `area` pixels. It is the negative of
/// the area opening of the negative, and has the labels and progress lines of that opening. Both
/// negatives subtract from 255 in type grey, else from f's maxValue, which is first raised, in f
/// itself, to the largest value. filtered has maxValue 255 in type grey, else 0.
void ifAreaClose(imImage *f, imImage **filtered, imImage **labels, int area);

/// Levelling from roots of label 1, which grow from below, and 2, which grow from above:
/// iftNonNormalizedLevel() with the second image as marker. filtered has type ASCII.
void ifLevel(const imImage *f, const imImage *second, const ifRoots *roots, imImage **filtered,
             imImage **labels);

/// Levelling of f towards a marker (Meyer, "From connected operators to levelings", 1998): f
/// reconstructed by dilation from the regional maxima of the smaller of f and the marker dilated
/// (squared radius 1); then that result is reconstructed by erosion from the regional minima of the
/// larger of it and the marker eroded. An envelope without extrema is used instead of its
/// reconstruction.
/// Both images have one band. Prints "in ifLabelImage\n" four times on standard output.
void ifLevel2(const imImage *f, const imImage *marker, imImage **filtered);

#pragma GCC visibility pop
