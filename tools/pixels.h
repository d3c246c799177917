// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Pixelwise steps that several programs share.
#pragma once

#include "seedforest/seedforest.hpp"

#include <optional>
#include <string>

namespace seedforest::tools {

/// Brightness: the image itself where it has one band, else 0.299 R + 0.587 G + 0.114 B, truncated;
/// of type grey or ascii, with the image's maxValue.
Image brightnessOf(const Image &image);

/// A band whose least value, where it is below 0, became 0, and all others rose with it: costs
/// start there.
/// Throws Error: values that are too far apart for 31 bits.
Image raisedToZero(Image image);

/// A threshold on the command line: "auto" or a value.
struct Threshold {
  std::optional<int> value = std::nullopt; // none: by otsuThreshold()
};
Threshold thresholdIn(const std::string &text);

/// The value that splits the pixels into two classes, up to it and above it, of the largest
/// variance between them; the smallest of several. Values of a wider range than 65536 are counted
/// in as many steps.
/// N. Otsu, "A threshold selection method from gray-level histograms", 1979.
int otsuThreshold(const Image &image);

/// 255 where the image's brightness is above the threshold, else 0.
Image shapeAbove(const Image &image, const Threshold &threshold);

/// A shape without its holes: the parts of the outside that are not connected with the frame, by
/// the 8-adjacency.
Image withoutHoles(const Image &shape);

/// Throws Error: images of different size, the second of which is called `what`.
void requireSize(const Image &image, const Image &other, const std::string &what);

/// A label image, made fit for the interface: maxValue becomes the largest label.
/// Throws Error: several bands, a negative label.
Image asLabels(Image labels, const std::string &path);

} // namespace seedforest::tools
