// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A program of C++17 with the libraries below the C++ interface.

#include "image/image.h"

static_assert(__cplusplus < 202002L, "the host's standard stays");

int main() {
  const imImagePtr image(imCreateImage(1, imTypeGrey, 4, 3));
  return image->npixels == 12 ? 0 : 1;
}
