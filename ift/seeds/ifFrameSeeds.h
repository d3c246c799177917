// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Two plain ways of making roots: the pixels of the image's frame, and the labelled pixels of a
// label image. Each returns a new record, values 0, which the caller owns.
//
// Ends with an error, in both: no image, labels without band 0, memory that cannot be allocated (an
// error is a line on standard error and status 1, or an exception: base/error.h).
#pragma once

#include "ift/core/ifRoots.h"

#pragma GCC visibility push(default)

/// Every pixel of the outer frame, in the order: top row, bottom row (both from left to right),
/// left column, right column (both downwards, without corners). Each seed's label is `label` when
/// `uniform` is not 0, else its place in the list from 1. In an image of one column the pixels
/// between top and bottom are listed twice.
/// Ends with an error: an image of one row, which has no frame (top and bottom would be the same).
[[nodiscard]] ifRoots *ifFrameAsRoots(const imImage *image, int uniform, int label);

/// Every pixel whose band 0 is > 0, in raster order, with that value as its label.
[[nodiscard]] ifRoots *ifLabelsToRoots(const imImage *image);

#pragma GCC visibility pop
