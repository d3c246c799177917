// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Everything that an operation of the library may be given.
#pragma once

#include "graphs.h"
#include "ift/ift.h"
#include "image/image.h"

#include <cstdlib>

// What calls of the library's operations are given, and what they make. Images of 9 x 7 pixels but
// for the first three.
class Things {
  std::vector<imImagePtr> images_;
  std::vector<ifGraphPtr> graphs_;
  std::vector<ifRootsPtr> roots_;
  std::mt19937 random_{5};

  imImage *keep(imImagePtr image) { return images_.emplace_back(std::move(image)).get(); }
  ifGraph *keep(ifGraphPtr graph) { return graphs_.emplace_back(std::move(graph)).get(); }
  ifRoots *keep(ifRootsPtr roots) { return roots_.emplace_back(std::move(roots)).get(); }
  imImage *any(int nbands, char type, int lo, int hi) {
    return keep(randomImage(random_, nbands, type, 9, 7, lo, hi));
  }
  imImage *drawn(int maxValue, int (*value)(int x, int y)) {
    imImage *image = any(1, imTypeGrey, 0, maxValue);
    for (int p = 0; p < image->npixels; ++p)
      image->band[0][p] = value(p % 9, p / 9);
    return image;
  }

public:
  imImage *small = keep(blank(2, 2, 5));
  imImage *row = keep(blank(4, 1));
  imImage *far = keep(makeImage({{1, 5}})); // labels beyond its maxValue
  imImage *grey = any(1, imTypeGrey, 0, 5);
  imImage *mask = any(1, imTypeGrey, 0, 1);
  imImage *beyond = any(1, imTypeAscii, -3, 5);
  imImage *below = any(1, imTypeAscii, -9, -1);
  imImage *colour = any(3, imTypeColor, 0, 255);
  imImage *bare = any(0, imTypeAscii, 0, 0);
  imImage *shape = drawn(1, [](int x, int y) { return x % 8 > 0 && y % 6 > 0 ? 1 : 0; });
  imImage *labels = drawn(6, [](int x, int y) { return 1 + x / 3 + y / 4 * 3; });
  imImage *out = any(1, imTypeAscii, 0, 0);
  imImage *out3 = any(3, imTypeAscii, 0, 0);
  imImage *forest = any(5, imTypeWork, 0, 0);
  imImage *weights = keep(imImagePtr(watershedWF(grey, imNeighborhood8)));
  ifRoots *roots = keep(makeRoots({{0, 1, 2}, {30, 2, 1}}));
  ifRoots *outside = keep(makeRoots({{63, 1, 0}}));
  ifRoots *noRoots = keep(makeRoots({}));
  ifGraph *mosaic = keep(ifGraphPtr(ifMosaicToGraph(labels)));
  ifGraph *graph = keep(ifGraphPtr(ifComputeAverageColors(mosaic, labels)));
  ifGraph *tree = keep(ifGraphPtr(iftPrimGraph(graph, ifGraphEuclideanDistance)));
  ifGraph *bareGraph = keep(makeGraph(3, {{1, 2, 5}}));
  ifGraph *astray = keep(makeGraph(3, {{2, 1, 1}}, 3)); // an edge leads nowhere
  ifGraph *unlabelled = keep(ifGraphPtr(allocateGraph(3, 3)));
  ufUnionFind sets = {}, pixels = {}, again = {};
  ifQueue queue = {}, newQueue = {};
  ifQueueNodes nodes = {}, newNodes = {};
  std::vector<int> room = std::vector<int>(3 * 63);
  ifRoots2 followed = {room.data(), room.data() + 63, room.data() + 126, nullptr, 0};
  const int mean[3] = {0, 2, 4}, sigma[3] = {1, 2, 1}, none[2] = {}, right[16] = {1, 0};

  // Made by a call.
  imImage *first = nullptr, *second = nullptr;
  imImagePtr image;
  ifGraphPtr made;
  ifRootsPtr list;
  ifRoots set = {};
  ifRoots2 set2 = {};
  float *histogram = nullptr;
  int *numbers = nullptr;
  int count = 0;
  ifVertex *vertex = createList(1);

  Things() {
    far->maxValue = 1;
    astray->vertices[2].edges->target = 77;
    unlabelled->vertices[2].data[2] = 88;
    ufStartUnionFind(&sets, 63, 0);
    ufStartUnionFind(&pixels, 63, 1);
    initQueue(&queue, 5, &nodes, 7);
    listInsertEdge(vertex, 2, 9);
  }
  ~Things() {
    imReleaseImage(&first);
    imReleaseImage(&second);
    ifReleaseRoots(&set);
    ifReleaseRoots2(&set2);
    ufReleaseUnionFind(&sets);
    ufReleaseUnionFind(&pixels);
    ufReleaseUnionFind(&again);
    releaseQueue(&queue, &nodes);
    releaseQueue(&newQueue, &newNodes);
    listDestroy(vertex);
    std::free(vertex);
    std::free(histogram);
    std::free(numbers);
  }
  Things(const Things &) = delete;
  Things &operator=(const Things &) = delete;

  void take(imImage *result) { image.reset(result); }
  void take(ifGraph *result) { made.reset(result); }
  void take(ifRoots *result) { list.reset(result); }
  void take(ifVertex *result) {
    listDestroy(vertex);
    std::free(vertex);
    vertex = result;
  }
  void take(ifEdge *) {}
  void take(int) {}

  // All that a call can have written, as numbers.
  std::vector<int> results() const {
    std::vector<int> all(set2.label, set2.label + set2.n);
    for (const imImage *written : {image.get(), first, second, out, out3, forest})
      for (int b = 0; written != nullptr && b < written->nbands; ++b)
        all.insert(all.end(), written->band[b], written->band[b] + written->npixels);
    for (const std::vector<int> &data : made == nullptr ? Matrix() : dataOf(made))
      all.insert(all.end(), data.begin(), data.end());
    for (const std::vector<Arc> &arcs : listsOf(made == nullptr ? graph : made.get()))
      for (const auto &[target, weight] : arcs)
        all.insert(all.end(), {target, weight});
    for (const Root &root : listOf(list == nullptr ? &set : list.get()))
      all.insert(all.end(), {root.pixel, root.label, root.value});
    return all;
  }
};
