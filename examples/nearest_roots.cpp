// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The Euclidean distance transform of a roots file: paints each pixel in the colour of its nearest
// root's label, darker with growing distance, with a ring every 8 pixels:
//
//   nearest_roots IMAGE ROOTS PICTURE.ppm
//
// The image gives the size only. Built with the project as build/examples/nearest_roots, or by hand
// from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/nearest_roots.cpp -o nearest_roots
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "examples/picture.h"
#include "ift/ift.h"
#include "image/image.h"

#include <cmath>
#include <cstdio>

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE ROOTS PICTURE.ppm\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  const ifRootsPtr roots(ifReadRoots(argv[2], image.get()));
  const imImagePtr forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
  const imImagePtr picture(imCreateImage(3, imTypeColor, image->ncols, image->nrows));
  if (roots == nullptr || forest == nullptr || picture == nullptr)
    return 1;
  iftEuclideanDT(image.get(), forest.get(), imNeighborhood8, roots.get());
  const int *label = forest->band[0];
  const int *squaredDistance = forest->band[1];
  for (int p = 0; p < image->npixels; ++p) {
    const double distance = std::sqrt(squaredDistance[p]);
    const double ring = 1 - 0.25 * (static_cast<int>(distance) / 8 % 2);
    const double light = distance == 0 ? 1 : 0.8 * ring / (1 + distance / 60);
    const Colour colour = colourOf(label[p]);
    paint(picture.get(), p,
          {static_cast<int>(light * colour.red), static_cast<int>(light * colour.green),
           static_cast<int>(light * colour.blue)});
  }
  imSaveImage(argv[3], picture.get());
  return 0;
}
