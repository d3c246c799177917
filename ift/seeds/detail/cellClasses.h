// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Cell seeds as classes of pixels, for operations that write no file.
#pragma once

#include "image/imImage.h"

namespace seedforest::detail {

/// The image that ifCellsRoots() writes as "labeled.pgm": 2 on markers, 1 on lines, else 0. Prints,
/// changes `image` and ends with an error as that operation does.
imImagePtr findCellClasses(imImage *image, int steps);

} // namespace seedforest::detail
