// The image reader, on bytes in memory.
#pragma once

#include "image/imImage.h"

#include <string>
#include <string_view>

namespace seedforest::detail {

/// The image in a file's bytes, or none with the line to print in `error` (empty where
/// imCreateImage has printed one). `path` only names the file in that line.
imImagePtr parseImage(std::string_view bytes, const char *path, std::string &error);

} // namespace seedforest::detail
