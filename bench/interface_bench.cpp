// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The overhead of the C++ interface: its watershed against the library's own, and a transform with
// a lambda as weight against one with a plain function. Where the machine is noisy, count
// instructions: valgrind --tool=callgrind with a --benchmark_filter.

#include "bench.h"
#include "images.h"

#include "ift/ift.h"
#include "seedforest/seedforest.hpp"

#include <cstdlib>

namespace sf = seedforest;

namespace {

struct Problem {
  sf::Image image;
  sf::Roots roots;

  explicit Problem(const benchmark::State &state)
      : image(sf::gradient(sf::Image(bench::drawGrey(
            {static_cast<bench::Drawing>(state.range(1)), static_cast<int>(state.range(0))})))) {
    for (int p = 0; p < image.npixels(); p += 997)
      roots.push_back({p, p + 1, image.pixels()[p]});
  }
};

template <class Work>
void measure(benchmark::State &state, Work work) {
  const Problem problem(state);
  for (auto _ : state)
    work(problem);
  reportPerItem(state, "ns/pixel", problem.image.npixels());
}

void watershedOfTheLibrary(benchmark::State &state) {
  measure(state, [](const Problem &problem) {
    const imImage *image = problem.image.get();
    const imImagePtr forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
    iftNonNormalized(image, forest.get(), imNeighborhood8, ifWatershedMetric, image->maxValue,
                     ifPathCostMax, problem.roots.get());
    benchmark::DoNotOptimize(forest->band[0][0]);
  });
}

void watershedOfTheInterface(benchmark::State &state) {
  measure(state, [](const Problem &problem) {
    const sf::Forest forest = sf::watershed(problem.image, problem.roots);
    benchmark::DoNotOptimize(forest.labels.at(0, 0));
  });
}

int difference(const imImage *image, int p, int q) {
  return std::abs(image->band[0][p] - image->band[0][q]);
}

void weighedByAFunction(benchmark::State &state) {
  measure(state, [](const Problem &problem) {
    const sf::Forest forest =
        sf::forest(problem.image, problem.roots, sf::pathCost::max, difference);
    benchmark::DoNotOptimize(forest.labels.at(0, 0));
  });
}

void weighedByALambda(benchmark::State &state) {
  measure(state, [](const Problem &problem) {
    const auto differ = [pixels = problem.image.pixels()](int p, int q) {
      return std::abs(pixels[static_cast<std::size_t>(p)] - pixels[static_cast<std::size_t>(q)]);
    };
    const sf::Forest forest = sf::forest(problem.image, problem.roots, sf::pathCost::max, differ);
    benchmark::DoNotOptimize(forest.labels.at(0, 0));
  });
}

void sizes(benchmark::internal::Benchmark *b) {
  b->ArgNames({"side", "image"})
      ->ArgsProduct({{512}, {int(bench::Drawing::micrograph), int(bench::Drawing::noise)}});
  b->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(watershedOfTheLibrary)->Apply(sizes);
BENCHMARK(watershedOfTheInterface)->Apply(sizes);
BENCHMARK(weighedByAFunction)->Apply(sizes);
BENCHMARK(weighedByALambda)->Apply(sizes);
