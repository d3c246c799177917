// Splits a grey or colour image into many regions, merges those of similar average colour until N
// are left, and draws their borders over the image:
//
//   merge_regions IMAGE N PICTURE.ppm
//
// Built with the project as build/examples/merge_regions, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/merge_regions.cpp -o merge_regions
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "ift/ift.h"
#include "image/image.h"

#include <cstdio>
#include <cstdlib>

// The watershed of the image's gradient from its regional minima, labels from 1. Basins of fewer
// than leastArea pixels are filled first, because small regions of unusual colour would merge last.
static imImagePtr mosaic(const imImage *image) {
  static constexpr int leastArea = 60;
  const imImagePtr gradient(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  const imImagePtr forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
  if (gradient == nullptr || forest == nullptr)
    return nullptr;
  imMorphGrad(image, gradient.get());
  imImage *closed = nullptr;
  imImage *basins = nullptr;
  ifAreaClose(gradient.get(), &closed, &basins, leastArea);
  const imImagePtr owners[] = {imImagePtr(closed), imImagePtr(basins)};
  const ifRootsPtr minima(ifRegionalMinimaAsRoots(closed));
  iftNonNormalized(closed, forest.get(), imNeighborhood8, ifWatershedMetric, gradient->maxValue,
                   ifPathCostMax, minima.get());
  return imImagePtr(imCopyBand(forest.get(), imTypeAscii, 0));
}

// The mosaic with its regions merged: their minimum spanning tree, by the difference of the average
// colours, is cut at its n - 1 heaviest edges.
static ifGraphPtr merge(const imImage *labels, const imImage *image, int n) {
  const ifGraphPtr regions(ifMosaicToGraph(labels));
  const ifGraphPtr colours(ifComputeAverageColors(regions.get(), image));
  const ifGraphPtr features(ifCreateFeaturesGraph(colours.get()));
  const ifGraphPtr tree(iftPrimGraph(features.get(), ifGraphEuclideanDistance));
  return ifGraphPtr(ifThresholdMST_nRegions(tree.get(), n));
}

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE N PICTURE.ppm\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  const imImagePtr labels = mosaic(image.get());
  if (labels == nullptr)
    return 1;
  const ifGraphPtr merged = merge(labels.get(), image.get(), std::atoi(argv[2]));
  const imImagePtr picture(imShowSegm(image.get(), merged->labelImage, 255, 0, 0));
  if (picture == nullptr)
    return 1;
  std::printf("%d regions before merging\n", labels->maxValue);
  imSaveImage(argv[3], picture.get());
  return 0;
}
