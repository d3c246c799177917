// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image reader, for text from any source.
#pragma once

#include "base/scan.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// The image in a file's text, which is read no further than to the last pixel. Ends with an error
/// as imReadImage() does; `path` only names the file.
imImagePtr parseImage(Text &text, const char *path);

} // namespace seedforest::detail
