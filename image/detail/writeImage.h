// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image writer, to any stream.
#pragma once

#include "base/writer.h"
#include "image/imImage.h"

namespace seedforest::detail {

/// Writes an image of one of the types that have a file form, as imSaveImage() does.
void writeImage(Writer &writer, imImage *image);

} // namespace seedforest::detail
