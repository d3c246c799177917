// Checks of images, and images that an operation cannot go on without.
#pragma once

#include "base/require.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// End with an error that names the operation, unless the image is there with at least `nbands`
/// bands, the two images have the same size, or p is a pixel of the image.
void requireBands(const char *operation, const imImage *image, int nbands);
void requireSameSize(const char *operation, const imImage *a, const imImage *b);
void requirePixel(const char *operation, const imImage *image, int p);

/// Takes over an image that an operation cannot go on without: ends with an error where it could not
/// be made, which has been said.
imImagePtr requireMade(imImage *image);

/// A new image as by imCreateImage(), in the same way.
imImagePtr createImage(int nbands, char type, int ncols, int nrows);

/// A new image of another's size.
imImagePtr createLike(const imImage *image, int nbands, char type);

/// The same, or none where it cannot be made.
imImagePtr tryCreateLike(const imImage *image, int nbands, char type, int maxValue = 0);

/// The largest of band b's values and 0.
int largestValue(const imImage *image, int b);

} // namespace seedforest::detail
