// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Regions that grow from roots.
#pragma once

#include "seedforest/seedforest.hpp"

#include <string>

namespace seedforest::tools {

/// What is flooded.
enum class Relief { image, negative, gradient };

/// Costs of paths: the highest value (the watershed), the sum of the values, or the highest where
/// none is above that of the root.
enum class Cost { max, sum, local };

/// The brightness of an image, its negative or its gradient, one band of values from 0.
Image reliefOf(const Image &image, Relief relief);

/// The label of the root that reaches each pixel by the best path, 0 for none. Sets the roots'
/// values to what the cost starts from.
Image labelsFrom(const Image &relief, Roots &roots, Cost cost, const ForestOptions &options);

/// Throws Error: a root outside the image or of a label below 1; `what` is the name of the roots.
void requireRegions(const Roots &roots, const Image &image, const std::string &what);

} // namespace seedforest::tools
