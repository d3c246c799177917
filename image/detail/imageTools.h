// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Checks of images, and new images whose failure to be created is an error.
#pragma once

#include "base/require.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// End with an error that names the operation, unless the image is there with at least `nbands`
/// bands, the two images have the same size, or p is a pixel of the image.
void requireBands(const char *operation, const imImage *image, int nbands);
void requireSameSize(const char *operation, const imImage *a, const imImage *b);
void requirePixel(const char *operation, const imImage *image, int p);

/// Takes over an image; where it is null, ends with an error whose line has been printed already.
imImagePtr requireMade(imImage *image);

/// A new image as by imCreateImage(); ends with an error where it cannot be created.
imImagePtr createImage(int nbands, char type, int ncols, int nrows);

/// A new image of another's size.
imImagePtr createLike(const imImage *image, int nbands, char type);

/// The same, or null where it cannot be created.
imImagePtr tryCreateLike(const imImage *image, int nbands, char type, int maxValue = 0);

/// The largest value of band b, at least 0.
int largestValue(const imImage *image, int b);

} // namespace seedforest::detail
