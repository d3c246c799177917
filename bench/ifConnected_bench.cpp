// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Area openings, compared with a plain copy of the image; and how their time grows where many
// maxima each need a large area.

#include "bench.h"
#include "images.h"

#include "ift/operators/ifConnected.h"

#include <algorithm>

namespace {

void copyImage(benchmark::State &state) {
  const imImagePtr image = benchImage(micrographImage, benchSide);
  const imImagePtr copy(imCopyImage(image.get()));
  for (auto _ : state) {
    std::copy_n(image->band[0], image->npixels, copy->band[0]);
    benchmark::ClobberMemory();
  }
  reportPerItem(state, "ns/pixel", image->npixels);
}

void openTimed(benchmark::State &state, const imImage *image, int area) {
  const SilentProgress silent;
  for (auto _ : state) {
    imImage *filtered = nullptr;
    imImage *labels = nullptr;
    ifAreaOpen(image, &filtered, &labels, area);
    const imImagePtr owners[] = {imImagePtr(filtered), imImagePtr(labels)};
  }
  reportPerItem(state, "ns/pixel", image->npixels);
  reportPeakMemory(state, image->npixels);
}

void areaOpen(benchmark::State &state) {
  const imImagePtr image = benchImage(state.range(0), static_cast<int>(state.range(1)));
  openTimed(state, image.get(), static_cast<int>(state.range(2)));
}

// Peaks on a plateau, one for every 16 pixels, each of which needs a quarter of the image: with one
// flood per peak the time would grow with the square of the image's size.
void areaOpenManyPeaks(benchmark::State &state) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, 1024, static_cast<int>(state.range(0))));
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = p % 4 == 0 && p / image->ncols % 4 == 0 ? 200 : 100;
  image->maxValue = 200;
  openTimed(state, image.get(), image->npixels / 4);
}

BENCHMARK(copyImage)->Unit(benchmark::kMillisecond);
BENCHMARK(areaOpen)
    ->ArgNames({"image", "side", "area"})
    ->ArgsProduct({benchImageNumbers(), {1024, benchSide}, {50, 1000}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(areaOpenManyPeaks)
    ->ArgName("rows")
    ->RangeMultiplier(2)
    ->Range(256, 2048)
    ->Unit(benchmark::kMillisecond);

} // namespace
