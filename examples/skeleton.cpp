// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Skeletons, at three scales, of the shape of all pixels above a grey level (0 unless given). The
// picture has three parts side by side with the shape in grey, the skeleton inside it in red and
// the one outside in blue. The larger the scale, the fewer branches; the part of the shape that the
// discs around the inner skeleton's pixels do not cover is orange:
//
//   skeleton IMAGE PICTURE.ppm [LEVEL]
//
// Built with the project as build/examples/skeleton, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/skeleton.cpp -o skeleton
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "examples/picture.h"
#include "ift/ift.h"
#include "image/image.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

// The scale is a length along the contour, in pixels: a pixel is on the skeleton when the contour
// points nearest to it and to a neighbour lie at least that far apart.
static imImagePtr paintSkeletons(const imImage *shape, int scale) {
  imImage *inside = nullptr;
  imImage *outside = nullptr;
  ifSkel(shape, 1, scale, &inside);
  ifSkel(shape, 2, scale, &outside);
  const imImagePtr owners[] = {imImagePtr(inside), imImagePtr(outside)};
  const imImagePtr rebuilt(iftSkelReconstr(inside));
  imImagePtr picture(imCreateImage(3, imTypeColor, shape->ncols, shape->nrows));
  if (rebuilt == nullptr || picture == nullptr)
    return nullptr;
  for (int p = 0; p < shape->npixels; ++p) {
    const Colour held = rebuilt->band[0][p] > 0 ? Colour{190, 190, 190} : Colour{255, 170, 60};
    paint(picture.get(), p, shape->band[0][p] > 0 ? held : Colour{255, 255, 255});
    if (inside->band[0][p] > 0)
      paint(picture.get(), p, {220, 0, 0});
    if (outside->band[0][p] > 0)
      paint(picture.get(), p, {0, 60, 220});
  }
  return picture;
}

int main(int argc, char **argv) {
  if (argc != 3 && argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE PICTURE.ppm [LEVEL]\n", argv[0]);
    return 1;
  }
  const imImagePtr image = readGrey(argv[1]);
  if (image == nullptr)
    return 1;
  const int level = argc == 4 ? std::atoi(argv[3]) : 0;
  const imImagePtr shape(
      imThreshold(image.get(), imTypeGrey, level < INT_MAX ? level + 1 : level, INT_MAX));
  if (shape == nullptr)
    return 1;
  const imImagePtr parts[] = {paintSkeletons(shape.get(), 4), paintSkeletons(shape.get(), 20),
                              paintSkeletons(shape.get(), 80)};
  for (const imImagePtr &part : parts)
    if (part == nullptr)
      return 1;
  const imImagePtr picture = sideBySide({parts[0].get(), parts[1].get(), parts[2].get()});
  if (picture == nullptr)
    return 1;
  imSaveImage(argv[2], picture.get());
  return 0;
}
