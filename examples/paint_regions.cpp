// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Segments a grey or colour image by the watershed of its gradient, from the roots in a file, and
// paints each region in its average colour:
//
//   paint_regions IMAGE ROOTS PICTURE
//
// Built with the project as build/examples/paint_regions, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/paint_regions.cpp -o paint_regions
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "ift/ift.h"
#include "image/image.h"

#include <cstdio>

// Each pixel's label, from the root that reaches it over the lowest crest of the gradient.
static imImagePtr watershed(const imImage *image, const ifRoots *roots) {
  const imImagePtr gradient(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  const imImagePtr forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
  if (gradient == nullptr || forest == nullptr)
    return nullptr;
  imMorphGrad(image, gradient.get());
  iftNonNormalized(gradient.get(), forest.get(), imNeighborhood8, ifWatershedMetric,
                   gradient->maxValue, ifPathCostMax, roots);
  return imImagePtr(imCopyBand(forest.get(), imTypeAscii, 0));
}

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE ROOTS PICTURE\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  const ifRootsPtr roots(ifReadRoots(argv[2], image.get()));
  if (roots == nullptr)
    return 1;
  const imImagePtr labels = watershed(image.get(), roots.get());
  if (labels == nullptr)
    return 1;
  ifAverageColor(image.get(), image.get(), labels.get());
  imSaveImage(argv[3], image.get());
  return 0;
}
