// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Euclidean distances from the borders of binary shapes, compared with a plain copy of the image
// and, where the library is installed, with VIGRA's distance transform, which gives the vector to
// the nearest feature.

#include "bench.h"
#include "images.h"

#include "ift/core/detail/rootsTools.h"
#include "ift/core/ifExactDistance.h"
#include "ift/core/iftEuclidean.h"
#include "ift/seeds/ifContourSeeds.h"

#include <algorithm>

#ifdef SEEDFOREST_BENCH_VIGRA
#include "bench/peerVigra.h"
#endif

namespace {

struct Problem {
  imImagePtr binary;
  ifRootsPtr roots = seedforest::detail::createRoots(0);
  imImagePtr result;

  explicit Problem(const benchmark::State &state)
      : binary(benchBinary(state.range(1), static_cast<int>(state.range(0)))),
        result(imCreateImage(3, imTypeWork, binary->ncols, binary->nrows)) {
    ifReleaseRoots(roots.get());
    ifDistTransfRoots(binary.get(), roots.get(), 1);
  }
};

void distance(benchmark::State &state) {
  const Problem problem(state);
  for (auto _ : state)
    iftEuclideanDT(problem.binary.get(), problem.result.get(), imNeighborhood8,
                   problem.roots.get());
  reportPerItem(state, "ns/pixel", problem.binary->npixels);
  reportPeakMemory(state, problem.binary->npixels);
}

void exactDistance(benchmark::State &state) {
  const Problem problem(state);
  for (auto _ : state)
    ifExactDistance(problem.binary.get(), problem.result.get(), problem.roots.get());
  reportPerItem(state, "ns/pixel", problem.binary->npixels);
  reportPeakMemory(state, problem.binary->npixels);
}

#ifdef SEEDFOREST_BENCH_VIGRA
void vigraDistance(benchmark::State &state) {
  const Problem problem(state);
  VigraDistance peer(problem.binary->ncols, problem.binary->nrows);
  std::fill_n(peer.image(), problem.binary->npixels, static_cast<unsigned char>(0));
  for (int i = 0; i < problem.roots->n; ++i)
    peer.image()[problem.roots->pixel[i]] = 1;
  for (auto _ : state)
    peer.run();
  reportPerItem(state, "ns/pixel", problem.binary->npixels);
}
#endif

void sizesAndImages(benchmark::internal::Benchmark *b) {
  sidesAndImages(b);
}
BENCHMARK(copyImage)->Apply(sizesAndImages);
BENCHMARK(distance)->Apply(sizesAndImages);
BENCHMARK(exactDistance)->Apply(sizesAndImages);
#ifdef SEEDFOREST_BENCH_VIGRA
BENCHMARK(vigraDistance)->Apply(sizesAndImages);
#endif

} // namespace
