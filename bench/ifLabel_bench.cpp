// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Connected components and regional extrema of images of 4096 x 4096 pixels, compared with a plain
// copy of the image.

#include "bench.h"
#include "images.h"

#include "ift/label/ifLabel.h"
#include "ift/seeds/ifExtrema.h"

#include <algorithm>

namespace {

void copyImage(benchmark::State &state) {
  const imImagePtr image = benchImage(state.range(0), benchSide);
  const imImagePtr copy(imCopyImage(image.get()));
  for (auto _ : state) {
    std::copy_n(image->band[0], image->npixels, copy->band[0]);
    benchmark::ClobberMemory();
  }
  reportPerItem(state, "ns/pixel", image->npixels);
}

void labelComponents(benchmark::State &state) {
  const SilentProgress silent;
  const imImagePtr binary = benchBinary(state.range(0), benchSide);
  for (auto _ : state) {
    const imImagePtr labels(imCreateImage(1, imTypeAscii, benchSide, benchSide));
    ifLabelImage(binary.get(), labels.get());
    benchmark::DoNotOptimize(labels->maxValue);
  }
  reportPerItem(state, "ns/pixel", binary->npixels);
  reportPeakMemory(state, binary->npixels);
}

void regionalMaxima(benchmark::State &state) {
  const SilentProgress silent;
  const imImagePtr image = benchImage(state.range(0), benchSide);
  for (auto _ : state)
    imImagePtr(ifRegionalMaxima(image.get()));
  reportPerItem(state, "ns/pixel", image->npixels);
  reportPeakMemory(state, image->npixels);
}

void regionalMaximaAsRoots(benchmark::State &state) {
  const SilentProgress silent;
  const imImagePtr image = benchImage(state.range(0), benchSide);
  for (auto _ : state)
    ifRootsPtr(ifRegionalMaximaAsRoots(image.get()));
  reportPerItem(state, "ns/pixel", image->npixels);
}

void allImages(benchmark::internal::Benchmark *b) {
  b->ArgName("image")->ArgsProduct({benchImageNumbers()})->Unit(benchmark::kMillisecond);
}
BENCHMARK(copyImage)->Apply(allImages);
BENCHMARK(labelComponents)->Apply(allImages);
BENCHMARK(regionalMaxima)->Apply(allImages);
BENCHMARK(regionalMaximaAsRoots)->Apply(allImages);

} // namespace
