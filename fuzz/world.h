// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the operations are given: images, roots, graphs, sets and queues, some of them as operations
// expect them and some hostile, drawn from the bytes of an input.
#pragma once

#include "graphs.h"
#include "harness.h"
#include "ift/ift.h"
#include "image/image.h"

#include <limits>
#include <memory>
#include <tuple>
#include <type_traits>

/// The weights and path costs of a program that knows no bounds.
inline int wildCost(int cost, int weight) {
  return static_cast<int>(static_cast<unsigned>(cost) * 2654435761u ^
                          static_cast<unsigned>(weight));
}
inline int wildWeight(const imImage *, int p, int q) {
  return wildCost(p, q);
}
inline int wildGraphWeight(const ifGraph *, int u, int v) {
  return wildCost(u, v);
}

/// Relations with neighbours far away, with none, and with the pixel itself.
inline int farNeighborhood(int **list) {
  const int n = imNeighborhood8(list);
  (*list)[0] = maxInt;
  (*list)[3] = minInt;
  (*list)[4] = 3;
  return n;
}
inline int noNeighborhood(int **list) {
  return imNeighborhood(list, -1);
}
inline int wideNeighborhood(int **list) {
  return imNeighborhood(list, 26);
}

class World {
public:
  static constexpr int mostPixels = 4096; // of an image that later calls are given

  World(const std::uint8_t *bytes, std::size_t size) : draw(bytes, size) {
    ncols_ = draw.from(1, draw.chance(4) ? 24 : 6);
    nrows_ = draw.from(1, draw.chance(4) ? 24 : 6);
    makeImages();
    makeRootSets();
    makeGraphs();
    ufStartUnionFind(&sets, ncols_ * nrows_, draw.any({0, 1, 2, 4, 4}));
    if (sets.dataSize == 4)
      ifInitColorData(&sets, images_[3].get());
    sets.merge =
        draw.any<ufMergeFn>({nullptr, ifUpdateAreaData, ifUpdateVolumeData, ifUpdateColorData});
    if (draw.chance(4))
      sets.elems[draw.from(0, sets.n - 1)].parent = draw.hostileInt();
    initQueue(&queue, draw.from(1, 12), &nodes, draw.from(1, 40));
    list.reset(createList(2));
    for (int &number : numbers)
      number = draw.hostileInt();
  }
  ~World() {
    releaseQueue(&queue, &nodes);
    ufReleaseUnionFind(&sets);
    releaseOutputs();
  }
  World(const World &) = delete;
  World &operator=(const World &) = delete;

  Draw draw;
  ufUnionFind sets = {};
  ifQueue queue = {};
  ifQueueNodes nodes = {};

  /// Calls the operation with arguments drawn by their types; where it is to be `modest`, only if
  /// images and graphs hold numbers by which a table may be sized.
  template <class Result, class... Parameters>
  void call(Result (*operation)(Parameters...), bool boundedNumbers, bool modest) {
    boundedNumbers_ = boundedNumbers;
    const std::tuple<Parameters...> arguments{draws<Parameters>()...};
    const auto allModest = [](auto... each) { return (isModestIfAny(each) && ...); };
    if (modest && !std::apply(allModest, arguments))
      return;
    succeeds([&] {
      if constexpr (std::is_void_v<Result>)
        std::apply(operation, arguments);
      else
        take(std::apply(operation, arguments));
    });
    releaseOutputs();
  }

  /// The record has an entry for each pixel of an image, and its count is right or hostile.
  void followContour() {
    count_ = draw.chance(2) ? 0 : draw.hostileInt();
    succeeds([&] {
      ifContourFollow(&followed_, &count_, number(), draws<imImage *>(), draws<imImage *>(),
                      draw.from(-1, ncols_ * nrows_), draws<const int *>());
    });
  }

  template <class Argument>
  Argument draws();

  int number() { return boundedNumbers_ ? draw.from(-3, 14) : draw.hostileInt(); }

private:
  struct DestroyList {
    void operator()(ifVertex *vertex) const {
      listDestroy(vertex);
      std::free(vertex);
    }
  };

  imImagePtr makeImage(int nbands, char type, int ncols, int nrows, bool isHostile, int top) {
    imImagePtr image = draw.image(nbands, type, ncols, nrows, [&] {
      return isHostile ? draw.hostileInt() : draw.from(0, top);
    });
    image->maxValue = isHostile ? draw.hostileInt() : top;
    return image;
  }

  void makeImages() {
    const auto add = [&](int nbands, char type, bool isHostile, int top) {
      images_.push_back(makeImage(nbands, type, ncols_, nrows_, isHostile, top));
    };
    add(1, imTypeGrey, false, 255);
    add(1, imTypeAscii, false, draw.from(1, 20));
    add(1, imTypeAscii, false, 1);
    add(3, imTypeColor, false, 255);
    add(5, imTypeWork, false, draw.from(0, 9));
    add(1, imTypeAscii, true, 0);
    add(draw.from(0, 5), draws<char>(), true, 0);
    images_.push_back(makeImage(1, imTypeAscii, draw.from(1, 6), draw.from(1, 6), false, 9));
    const imNeighborhoodFn adjacency = draws<imNeighborhoodFn>();
    if (adjacency != nullptr)
      images_.emplace_back(watershedWF(images_[draw.from(0, 1)].get(), adjacency));
  }

  void makeRootSets() {
    for (const bool isHostile : {false, true}) {
      std::vector<Root> roots(draw.from(0, 5));
      for (auto &[pixel, label, value] : roots) {
        pixel = isHostile ? draw.hostileInt() : draw.from(0, ncols_ * nrows_ - 1);
        label = isHostile ? draw.hostileInt() : draw.from(0, 3);
        value = isHostile ? draw.hostileInt() : draw.from(0, 20);
      }
      roots_.push_back(makeRoots(roots));
    }
    extra_.resize(8);
  }

  void makeGraphs() {
    std::vector<Edge> edges;
    const int n = draw.from(0, 8);
    for (int i = draw.from(0, 12); i > 0; --i)
      edges.push_back({draw.from(0, n), draw.from(0, n), draw.hostileInt()});
    graphs_.push_back(makeGraph(n, edges, draw.from(0, 4)));
    graphs_.push_back(ifGraphPtr(ifMosaicToGraph(images_[1].get())));
    graphs_.push_back(ifGraphPtr(ifComputeAverageColors(graphs_[1].get(), images_[3].get())));
    const ifGraph *graph = graphs_[0].get();
    for (int v = 0; v <= n; ++v)
      std::generate_n(graph->vertices[v].data, graph->dataSize, [&] { return draw.hostileInt(); });
    ifVertex &vertex = graph->vertices[draw.from(0, n)];
    if (draw.chance(4) && vertex.edges != nullptr)
      vertex.edges->target = draw.hostileInt();
    if (draw.chance(4))
      graph->labelImage->band[0][0] = draw.hostileInt();
    if (draw.chance(6))
      setLabelImage(graphs_[0].get(), nullptr);
  }

  template <class T>
  T *anyOf(const auto &owners) {
    return draw.chance(16) ? nullptr
                           : owners[draw.from(0, static_cast<int>(owners.size()) - 1)].get();
  }

  static constexpr int mostModest = 1000;
  static bool isModest(const imImage *image) {
    if (image == nullptr)
      return true;
    const int *pixels = image->nbands > 0 ? image->band[0] : nullptr;
    return image->maxValue <= mostModest &&
           std::none_of(pixels, pixels + (pixels == nullptr ? 0 : image->npixels),
                        [](int value) { return value > mostModest; });
  }
  static bool isModest(const ifGraph *graph) {
    if (graph == nullptr)
      return true;
    const auto isLarge = [](int value) { return value > mostModest; };
    return isModest(graph->labelImage) &&
           std::none_of(
               graph->vertices, graph->vertices + graph->nVertices, [&](const ifVertex &v) {
                 return v.data != nullptr && std::any_of(v.data, v.data + graph->dataSize, isLarge);
               });
  }
  template <class Argument>
  static bool isModestIfAny(Argument argument) {
    if constexpr (std::is_convertible_v<Argument, const imImage *> ||
                  std::is_convertible_v<Argument, const ifGraph *>)
      return isModest(argument);
    return true;
  }

  // Results are given to later calls.
  void take(imImage *result) {
    imImagePtr image(result);
    if (image != nullptr && image->npixels <= mostPixels)
      images_.push_back(std::move(image));
  }
  void take(ifGraph *result) {
    if (result != nullptr)
      graphs_.emplace_back(result);
  }
  void take(ifRoots *result) {
    if (result != nullptr)
      roots_.emplace_back(result);
  }
  void take(ifVertex *result) { list.reset(result); }
  void take(ifEdge *) {}
  void take(int) {}

  void releaseOutputs() {
    for (imImage *&image : made_)
      take(std::exchange(image, nullptr));
    ifReleaseRoots(&madeRoots_);
    ifReleaseRoots2(&madeRoots2_);
    std::free(std::exchange(histogram_, nullptr));
    std::free(std::exchange(displacements_, nullptr));
  }

  int ncols_ = 1, nrows_ = 1;
  bool boundedNumbers_ = false;
  std::vector<imImagePtr> images_;
  std::vector<ifRootsPtr> roots_;
  std::vector<ifGraphPtr> graphs_;
  std::vector<int> extra_;
  ifRoots2 roots2_ = {};
  std::vector<int> room_ = std::vector<int>(3 * mostPixels);
  ifRoots2 followed_ = {room_.data(), room_.data() + mostPixels, room_.data() + 2 * mostPixels,
                        nullptr, 0};
  std::array<int, 16> numbers = {};
  std::array<const imImage *, 16> weights_ = {};
  std::unique_ptr<ifVertex, DestroyList> list;

  // Written by a call.
  imImage *made_[2] = {};
  int nextMade_ = 0;
  ifRoots madeRoots_ = {};
  ifRoots2 madeRoots2_ = {};
  float *histogram_ = nullptr;
  int *displacements_ = nullptr;
  int count_ = 0;
};

/// An argument by its type.
template <class Argument>
Argument World::draws() {
  const bool isMissing = draw.chance(32);
  if constexpr (std::is_same_v<Argument, int>) {
    return number();
  } else if constexpr (std::is_same_v<Argument, char>) {
    return draw.any<char>({imTypeGrey, imTypeAscii, imTypeColor, imTypeXyz, imTypeFeatures,
                           imTypeWeights, imTypeWork, 0, -1});
  } else if constexpr (std::is_same_v<Argument, double>) {
    return draw.any<double>({0, 0.25, 0.5, 1, -1, 1e300, -1e300,
                             std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity()});
  } else if constexpr (std::is_same_v<Argument, const imImage *> ||
                       std::is_same_v<Argument, imImage *>) {
    return anyOf<imImage>(images_);
  } else if constexpr (std::is_same_v<Argument, const ifRoots *>) {
    return anyOf<ifRoots>(roots_);
  } else if constexpr (std::is_same_v<Argument, const ifGraph *> ||
                       std::is_same_v<Argument, ifGraph *>) {
    return anyOf<ifGraph>(graphs_);
  } else if constexpr (std::is_same_v<Argument, imNeighborhoodFn>) {
    return draw.any<imNeighborhoodFn>({imNeighborhood8, imNeighborhood4, imNeighborhood8forward,
                                       imNeighborhood4forward, imNeighborhood8Clockwise,
                                       farNeighborhood, noNeighborhood, wideNeighborhood, nullptr});
  } else if constexpr (std::is_same_v<Argument, ifArcWeightFn>) {
    return draw.any<ifArcWeightFn>({ifWatershedMetric, ifEuclideanDistance, ifMaxDistance,
                                    ifChanferDistance, wildWeight, nullptr});
  } else if constexpr (std::is_same_v<Argument, ifPathCostFn>) {
    return draw.any<ifPathCostFn>({ifPathCostMax, ifPathCostMin, ifPathCostSum, ifPathCostMaxLocal,
                                   ifPathCostMinLocal, wildCost, fallingCost, nullptr});
  } else if constexpr (std::is_same_v<Argument, ifGraphWeightFn>) {
    return draw.any<ifGraphWeightFn>({ifGraphEuclideanDistance, ifGraphMinDistance,
                                      ifGraphWatershedDistance, wildGraphWeight, nullptr});
  } else if constexpr (std::is_same_v<Argument, const char *>) {
    return draw.any<const char *>({"out", "no/file", "", nullptr});
  } else if constexpr (std::is_same_v<Argument, const imImage *const *>) {
    for (const imImage *&weights : weights_)
      weights = anyOf<imImage>(images_);
    return weights_.data();
  } else if constexpr (std::is_same_v<Argument, const ifRoots2 *>) {
    const ifRoots &roots = *roots_[draw.from(0, 1)];
    roots2_ = {roots.pixel, roots.label, roots.value, extra_.data(), roots.n};
    return isMissing ? nullptr : &roots2_;
  } else if (isMissing) {
    return nullptr;
  } else if constexpr (std::is_same_v<Argument, imImage **>) {
    return &made_[nextMade_++ % 2];
  } else if constexpr (std::is_same_v<Argument, ifRoots *>) {
    return &madeRoots_;
  } else if constexpr (std::is_same_v<Argument, ifRoots2 *>) {
    return &madeRoots2_;
  } else if constexpr (std::is_same_v<Argument, ufUnionFind *>) {
    return &sets;
  } else if constexpr (std::is_same_v<Argument, ifQueue *>) {
    return &queue;
  } else if constexpr (std::is_same_v<Argument, ifQueueNodes *>) {
    return &nodes;
  } else if constexpr (std::is_same_v<Argument, ifVertex *>) {
    return list.get();
  } else if constexpr (std::is_same_v<Argument, const int *>) {
    return numbers.data();
  } else if constexpr (std::is_same_v<Argument, int **>) {
    return &displacements_;
  } else if constexpr (std::is_same_v<Argument, float **>) {
    return &histogram_;
  } else if constexpr (std::is_same_v<Argument, int *>) {
    count_ = draw.hostileInt();
    return &count_;
  } else {
    static_assert(std::is_same_v<Argument, std::FILE *>);
    static std::FILE *const nowhere = std::fopen("/dev/null", "w");
    return nowhere;
  }
}
