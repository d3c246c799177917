// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The forest transform as a watershed from markers: the largest value on the way, 8-connected, a
// label, a cost and a predecessor for each pixel. Compared with the literal loop on the public
// queue, a plain copy of the image and, where the library is installed, VIGRA's watershed.

#include "bench.h"
#include "images.h"

#include "ift/core/detail/forestTransforms.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/core/iftForest.h"
#include "image/detail/neighborWalk.h"
#include "tests/reference/literalTransform.h"

#include <algorithm>

#ifdef SEEDFOREST_BENCH_VIGRA
#include "bench/peerVigra.h"
#endif

namespace {

using namespace seedforest::detail;

// A marker every 40 pixels or so, each a single seed.
ifRootsPtr gridSeeds(const imImage *image) {
  const int step = 40;
  const int columns = (image->ncols + step - 1) / step;
  const int rows = (image->nrows + step - 1) / step;
  ifRootsPtr seeds = createRoots(columns * rows);
  for (int i = 0; i < seeds->n; ++i) {
    const int p = i % columns * step + image->row[i / columns * step];
    seeds->pixel[i] = p;
    seeds->label[i] = i + 1;
    seeds->value[i] = image->band[0][p];
  }
  return seeds;
}

struct Problem {
  imImagePtr image;
  ifRootsPtr seeds;
  imImagePtr forest;

  explicit Problem(const benchmark::State &state)
      : image(benchImage(state.range(1), static_cast<int>(state.range(0)))),
        seeds(gridSeeds(image.get())),
        forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows)) {}
};

void watershed(benchmark::State &state) {
  const Problem problem(state);
  for (auto _ : state)
    iftNonNormalized(problem.image.get(), problem.forest.get(), imNeighborhood8, ifWatershedMetric,
                     255, ifPathCostMax, problem.seeds.get());
  reportPerItem(state, "ns/pixel", problem.image->npixels);
  reportPeakMemory(state, problem.image->npixels);
}

// A function that the transform does not recognise runs in its general form.
int destinationValue(const imImage *image, int, int q) {
  return image->band[0][q];
}

void watershedThroughPointers(benchmark::State &state) {
  const Problem problem(state);
  for (auto _ : state)
    iftNonNormalized(problem.image.get(), problem.forest.get(), imNeighborhood8, destinationValue,
                     255, ifPathCostMax, problem.seeds.get());
  reportPerItem(state, "ns/pixel", problem.image->npixels);
}

void literalWatershed(benchmark::State &state) {
  const Problem problem(state);
  const int *value = problem.image->band[0];
  const auto weigh = [value](int, int q) { return value[q]; };
  const auto extend = [](int cost, int weight) { return std::max(cost, weight); };
  int **band = problem.forest->band;
  for (auto _ : state) {
    std::fill_n(band[1], problem.image->npixels, ifInfiniteCost);
    literalTransform(
        ForestTransform<Minimising, AdjacencyArcs<decltype(weigh)>, decltype(extend)>{
            {band[0], band[1], band[2], 255},
            {NeighborWalk(problem.image.get(), imNeighborhood8), weigh},
            extend},
        256, problem.image->npixels, *problem.seeds);
  }
  reportPerItem(state, "ns/pixel", problem.image->npixels);
}

#ifdef SEEDFOREST_BENCH_VIGRA
void vigraWatershed(benchmark::State &state) {
  const Problem problem(state);
  VigraWatershed peer(problem.image->ncols, problem.image->nrows);
  std::copy_n(problem.image->band[0], problem.image->npixels, peer.image());
  for (int i = 0; i < problem.seeds->n; ++i)
    peer.markers()[problem.seeds->pixel[i]] = static_cast<unsigned>(problem.seeds->label[i]);
  for (auto _ : state)
    peer.run();
  reportPerItem(state, "ns/pixel", problem.image->npixels);
}
#endif

void sizesAndImages(benchmark::internal::Benchmark *b) {
  sidesAndImages(b, {1024, 2048, benchSide});
}
BENCHMARK(copyImage)->Apply(sizesAndImages);
BENCHMARK(watershed)->Apply(sizesAndImages);
BENCHMARK(watershedThroughPointers)->Apply(sizesAndImages);
BENCHMARK(literalWatershed)->Apply(sizesAndImages);
#ifdef SEEDFOREST_BENCH_VIGRA
BENCHMARK(vigraWatershed)->Apply(sizesAndImages);
#endif

} // namespace
