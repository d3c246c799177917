// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Splits a colour picture into regions, by a watershed on its gradient in Lab, and paints their
// borders over it:
//
//   split_colour IMAGE.ppm PICTURE.ppm [ROOTS]
//
// The regions grow from the seeds of a roots file or, without one, from the regional minima of the
// gradient after its small dark spots have been closed.
//
// Built with the project as build/examples/split_colour, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/split_colour.cpp -o split_colour
//       -Lbuild -lseedforest-ift -lseedforest-image           (one line)

#include "ift/ift.h"
#include "image/image.h"

#include <algorithm>
#include <cstdio>

// The largest of the morphological gradients of L, a and b, at most 255.
static imImagePtr labGradient(const imImage *image) {
  imImagePtr lab(imCreateImage(3, imTypeXyz, image->ncols, image->nrows));
  imImagePtr gradient(imCreateImage(1, imTypeGrey, image->ncols, image->nrows));
  if (lab == nullptr || gradient == nullptr)
    return nullptr;
  imRgb2lab(image, lab.get());
  imMorphGrad(lab.get(), gradient.get());
  int *value = gradient->band[0];
  std::transform(value, value + gradient->npixels, value, [](int v) { return std::min(v, 255); });
  gradient->maxValue = 255;
  return gradient;
}

// The minima of the gradient after a closing by a disc of 21 pixels, with values below 12 raised to
// 12, so that small differences of colour make no minima.
static ifRootsPtr minima(const imImage *gradient) {
  static constexpr int noise = 12;
  const imImagePtr closed(imCopyImage(gradient));
  if (closed == nullptr)
    return nullptr;
  imMorphClose(gradient, closed.get(), 5);
  int *value = closed->band[0];
  std::transform(value, value + closed->npixels, value, [](int v) { return std::max(v, noise); });
  return ifRootsPtr(ifRegionalMinimaAsRoots(closed.get()));
}

int main(int argc, char **argv) {
  if (argc != 3 && argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE.ppm PICTURE.ppm [ROOTS]\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  if (image->nbands != 3) {
    std::fprintf(stderr, "%s: not a colour image\n", argv[1]);
    return 1;
  }
  const imImagePtr gradient = labGradient(image.get());
  if (gradient == nullptr)
    return 1;
  const ifRootsPtr roots =
      argc == 4 ? ifRootsPtr(ifReadRoots(argv[3], image.get())) : minima(gradient.get());
  const imImagePtr forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
  if (roots == nullptr || forest == nullptr)
    return 1;
  iftNonNormalized(gradient.get(), forest.get(), imNeighborhood8, ifWatershedMetric,
                   gradient->maxValue, ifPathCostMax, roots.get());
  const imImagePtr picture(imShowSegm(image.get(), forest.get(), 255, 0, 0)); // band 0: labels
  if (picture == nullptr)
    return 1;
  imSaveImage(argv[2], picture.get());
  return 0;
}
