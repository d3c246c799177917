// The image reader, on text from anywhere.
#pragma once

#include "base/scan.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// The image that a file's bytes hold, with the errors of imReadImage(), which reads no further than
/// to its last pixel. `path` only names the file in them.
imImagePtr parseImage(Text &text, const char *path);

} // namespace seedforest::detail
