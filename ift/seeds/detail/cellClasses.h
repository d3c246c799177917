// Cell seeds as classes of pixels, for those who want no file.
#pragma once

#include "image/imImage.h"

namespace seedforest::detail {

/// What ifCellsRoots() writes as "labeled.pgm": 2 on markers, 1 on lines, else 0. All else that is
/// said of that operation holds.
imImagePtr findCellClasses(imImage *image, int steps);

} // namespace seedforest::detail
