// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Paints each connected object of a binary image (pixels > 0) in a colour of its own, and the
// objects' contours in white:
//
//   components IMAGE PICTURE.ppm
//
// Built with the project as build/examples/components, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/components.cpp -o components
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "examples/picture.h"
#include "ift/ift.h"
#include "image/image.h"

#include <cstdio>

int main(int argc, char **argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s IMAGE PICTURE.ppm\n", argv[0]);
    return 1;
  }
  const imImagePtr image = readGrey(argv[1]);
  if (image == nullptr)
    return 1;
  const imImagePtr labels(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  const imImagePtr contours(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  const imImagePtr picture(imCreateImage(3, imTypeColor, image->ncols, image->nrows));
  if (labels == nullptr || contours == nullptr || picture == nullptr)
    return 1;
  ifLabelImage(image.get(), labels.get());
  ifRegionsToContours(labels.get(), contours.get());
  std::printf("%d objects\n", labels->maxValue);
  for (int p = 0; p < image->npixels; ++p)
    if (contours->band[0][p] > 0)
      paint(picture.get(), p, {255, 255, 255});
    else if (const int label = labels->band[0][p]; label > 0)
      paint(picture.get(), p, colourOf(label));
    else
      paint(picture.get(), p, {70, 70, 70});
  imSaveImage(argv[2], picture.get());
  return 0;
}
