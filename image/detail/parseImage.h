// The image reader, on text from anywhere.
#pragma once

#include "base/scan.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// The image that a file's text holds, read no further than to its last pixel; errors as
/// imReadImage(), where `path` only names the file.
imImagePtr parseImage(Text &text, const char *path);

} // namespace seedforest::detail
