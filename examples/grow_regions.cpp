// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Splits a grey or colour image into many regions, grows the regions under the roots of a file over
// the graph of all, across the smallest steps of average colour, and paints each region in the
// colour of the root's label that won it:
//
//   grow_regions IMAGE ROOTS PICTURE.ppm
//
// Built with the project as build/examples/grow_regions, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/grow_regions.cpp -o grow_regions
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "examples/mosaic.h"
#include "examples/picture.h"

#include <cstdio>

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE ROOTS PICTURE\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  const ifRootsPtr roots(ifReadRoots(argv[2], image.get()));
  const imImagePtr labels = mosaic(image.get());
  const imImagePtr painted(imCreateImage(3, imTypeColor, image->ncols, image->nrows));
  if (roots == nullptr || labels == nullptr || painted == nullptr)
    return 1;
  // The regions that the pixels lie in become the roots of the graph.
  for (int i = 0; i < roots->n; ++i) {
    if (roots->pixel[i] < 0 || roots->pixel[i] >= labels->npixels) {
      std::fprintf(stderr, "a root lies outside the image\n");
      return 1;
    }
    roots->pixel[i] = labels->band[0][roots->pixel[i]];
  }
  const ifGraphPtr regions = coloredRegions(labels.get(), image.get());
  const ifGraphPtr forest(
      iftGraph(regions.get(), ifGraphEuclideanDistance, ifPathCostMax, 1000, roots.get()));
  for (int p = 0; p < labels->npixels; ++p)
    paint(painted.get(), p, colourOf(forest->vertices[labels->band[0][p]].data[0]));
  painted->maxValue = 255;
  const imImagePtr picture(imShowSegm(painted.get(), labels.get(), 0, 0, 0));
  if (picture == nullptr)
    return 1;
  imSaveImage(argv[3], picture.get());
  return 0;
}
