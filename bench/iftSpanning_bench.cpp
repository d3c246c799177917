// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The minimum spanning tree of an image's pixels, 4-connected, by the difference of values,
// compared with a plain copy of the image.

#include "bench.h"
#include "images.h"

#include "ift/regions/iftSpanning.h"

#include <algorithm>

namespace {

struct Problem {
  imImagePtr image;
  imImagePtr forest;

  explicit Problem(const benchmark::State &state)
      : image(benchImage(state.range(1), static_cast<int>(state.range(0)))),
        forest(imCreateImage(2, imTypeWork, image->ncols, image->nrows)) {}
};

void pixelTree(benchmark::State &state) {
  const Problem problem(state);
  for (auto _ : state)
    iftPrim(problem.image.get(), problem.forest.get(), imNeighborhood4, ifMaxDistance);
  reportPerItem(state, "ns/pixel", problem.image->npixels);
  reportPeakMemory(state, problem.image->npixels);
}

void sizesAndImages(benchmark::internal::Benchmark *b) {
  sidesAndImages(b);
}
BENCHMARK(copyImage)->Apply(sizesAndImages);
BENCHMARK(pixelTree)->Apply(sizesAndImages);

} // namespace
