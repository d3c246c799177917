// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Fuzzy connectedness of two and of eight objects on the micrograph, 8-connected, compared with a
// plain copy of the image. The debug images are formatted, but not stored.

#include "bench.h"
#include "images.h"

#include "ift/core/detail/rootsTools.h"
#include "ift/operators/iftFuzzy.h"

#include <algorithm>
#include <vector>

namespace {

// A seed every 40 pixels or so, of the object whose mean is nearest. Means are spread evenly over
// the values of the micrograph.
struct Problem {
  imImagePtr image;
  imImagePtr labels;
  imImagePtr costs;
  ifRootsPtr seeds;
  std::vector<int> mean;
  std::vector<int> sigma;
  int nObjects;

  explicit Problem(const benchmark::State &state)
      : image(bench::drawGrey({bench::Drawing::micrograph, static_cast<int>(state.range(0))})),
        labels(imCreateImage(1, imTypeAscii, image->ncols, image->nrows)),
        costs(imCreateImage(1, imTypeAscii, image->ncols, image->nrows)),
        seeds(seedforest::detail::createRoots((image->npixels - 1) / spacing + 1)),
        nObjects(static_cast<int>(state.range(1))) {
    const int width = 160 / nObjects;
    for (int o = 0; o <= nObjects; ++o) {
      mean.push_back(o * width);
      sigma.push_back(width * width);
    }
    for (int i = 0; i < seeds->n; ++i) {
      seeds->pixel[i] = i * spacing;
      seeds->label[i] = std::clamp(image->band[0][i * spacing] / width, 1, nObjects);
    }
  }

private:
  static constexpr int spacing = 1601;
};

void copyImage(benchmark::State &state) {
  const Problem problem(state);
  for (auto _ : state) {
    std::copy_n(problem.image->band[0], problem.image->npixels, problem.costs->band[0]);
    benchmark::ClobberMemory();
  }
  reportPerItem(state, "ns/pixel", problem.image->npixels);
}

void fuzzyObjects(benchmark::State &state) {
  const ScratchFolder folder({"tmp1.pgm", "tmp2.pgm"});
  const Problem problem(state);
  for (auto _ : state)
    iftFuzzy(problem.image.get(), problem.labels.get(), problem.costs.get(), imNeighborhood8,
             problem.seeds.get(), problem.mean.data(), problem.sigma.data(), problem.nObjects);
  reportPerItem(state, "ns/pixel/object", double{1} * problem.image->npixels * problem.nObjects);
  reportPeakMemory(state, problem.image->npixels);
}

void linkCosts(benchmark::State &state) {
  const Problem problem(state);
  for (auto _ : state)
    imImagePtr(ifFuzzyEdgesWeight(problem.image.get(), imNeighborhood8, 80, 400));
  reportPerItem(state, "ns/pixel", problem.image->npixels);
}

void sizesAndObjects(benchmark::internal::Benchmark *b) {
  b->ArgNames({"side", "objects"})->ArgsProduct({{1024, 4096}, {2, 8}});
  b->Unit(benchmark::kMillisecond);
}
BENCHMARK(copyImage)->Apply(sizesAndObjects);
BENCHMARK(fuzzyObjects)->Apply(sizesAndObjects);
BENCHMARK(linkCosts)->Apply(sizesAndObjects);

} // namespace
