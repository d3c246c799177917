// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Splits a grey or colour image into many regions, merges them in one of three ways, and draws the
// borders of what is left over the image:
//
//   merge_regions IMAGE N PICTURE.ppm [small | similar]
//
// Those of similar colour merge until N are left; with `small`, each of fewer than N pixels merges
// with the neighbour of the most similar colour; with `similar`, the two neighbours of the most
// similar average colours merge, as long as these differ by N at most.
//
// Built with the project as build/examples/merge_regions, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/merge_regions.cpp -o merge_regions
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "examples/mosaic.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

// A spanning tree of the regions, by how much the average colours of neighbours differ, is cut at
// its n - 1 heaviest edges.
static ifGraphPtr mergeTo(int n, ifGraph *regions) {
  const ifGraphPtr tree(iftPrimGraph(regions, ifGraphEuclideanDistance));
  return ifGraphPtr(ifThresholdMST_nRegions(tree.get(), n));
}

int main(int argc, char **argv) {
  const std::string_view way = argc == 5 ? argv[4] : "";
  if (argc < 4 || argc > 5 || (argc == 5 && way != "small" && way != "similar")) {
    std::fprintf(stderr, "usage: %s IMAGE N PICTURE [small | similar]\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  const imImagePtr labels = mosaic(image.get());
  if (labels == nullptr)
    return 1;
  const ifGraphPtr regions = coloredRegions(labels.get(), image.get());
  const int n = std::atoi(argv[2]);
  ifGraphPtr merged;
  if (way == "small")
    merged.reset(ifEliminateSmallRegions(regions.get(), n, ifGraphEuclideanDistance));
  else if (way == "similar")
    merged.reset(ifMergeSimilarColors(regions.get(), image.get(), n, ifGraphEuclideanDistance));
  else
    merged = mergeTo(n, regions.get());
  const imImagePtr picture(imShowSegm(image.get(), merged->labelImage, 255, 0, 0));
  if (picture == nullptr)
    return 1;
  std::printf("%d regions before merging, %d after\n", labels->maxValue,
              merged->labelImage->maxValue);
  imSaveImage(argv[3], picture.get());
  return 0;
}
