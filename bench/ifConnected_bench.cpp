// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Area openings where many maxima each need a large area.

#include "bench.h"

#include "ift/operators/ifConnected.h"

namespace {

// Peaks on a plateau, one for every 16 pixels, each of which needs a quarter of the image: with one
// flood per peak the time would grow with the square of the image's size.
void areaOpenManyPeaks(benchmark::State &state) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, 1024, static_cast<int>(state.range(0))));
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = p % 4 == 0 && p / image->ncols % 4 == 0 ? 200 : 100;
  image->maxValue = 200;
  const SilentProgress silent;
  for (auto _ : state) {
    imImage *filtered = nullptr;
    imImage *labels = nullptr;
    ifAreaOpen(image.get(), &filtered, &labels, image->npixels / 4);
    const imImagePtr owners[] = {imImagePtr(filtered), imImagePtr(labels)};
  }
  reportPerItem(state, "ns/pixel", image->npixels);
}

BENCHMARK(areaOpenManyPeaks)
    ->ArgName("rows")
    ->RangeMultiplier(2)
    ->Range(256, 2048)
    ->Unit(benchmark::kMillisecond);

} // namespace
