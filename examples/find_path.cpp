// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The shortest path between two pixels (x and y of each) through what is brighter than a grey level
// (0 unless given), painted over the image, from green to red:
//
//   find_path IMAGE X Y TOX TOY PICTURE.ppm [LEVEL]
//
// Built with the project as build/examples/find_path, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/find_path.cpp -o find_path
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "examples/picture.h"
#include "ift/ift.h"
#include "image/image.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

// The pixel with these coordinates; -1, which is none, where they are outside the image.
static int pixelAt(const imImage *image, const char *x, const char *y) {
  const int column = std::atoi(x);
  const int row = std::atoi(y);
  const bool isInside = column >= 0 && column < image->ncols && row >= 0 && row < image->nrows;
  return isInside ? image->row[row] + column : -1;
}

int main(int argc, char **argv) {
  if (argc != 7 && argc != 8) {
    std::fprintf(stderr, "usage: %s IMAGE X Y TOX TOY PICTURE.ppm [LEVEL]\n", argv[0]);
    return 1;
  }
  const imImagePtr image = readGrey(argv[1]);
  if (image == nullptr)
    return 1;
  const int level = argc == 8 ? std::atoi(argv[7]) : 0;
  const imImagePtr mask(
      imThreshold(image.get(), imTypeGrey, level < INT_MAX ? level + 1 : level, INT_MAX));
  const imImagePtr picture(imCreateImage(3, imTypeColor, image->ncols, image->nrows));
  if (mask == nullptr || picture == nullptr)
    return 1;
  const ifRootsPtr path(ifEuclideanShortestPath(mask.get(), pixelAt(image.get(), argv[2], argv[3]),
                                                pixelAt(image.get(), argv[4], argv[5])));
  imPgm2rgb(image.get(), picture.get());
  for (int i = 0; i < path->n; ++i)
    paint(picture.get(), path->pixel[i], colourAt((path->n - i) / (3.0 * path->n)));
  imSaveImage(argv[6], picture.get());
  return 0;
}
