// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Saving and loading a million roots. Loading prints a line for each root on standard output: send
// it to /dev/null and read the figures from --benchmark_out=FILE.

#include "bench.h"

#include "ift/core/detail/rootsTools.h"
#include "ift/core/ifRoots.h"

namespace {

constexpr int million = 1000000;

ifRootsPtr scatteredRoots(const imImage *image) {
  ifRootsPtr roots = seedforest::detail::createRoots(million);
  for (int i = 0; i < million; ++i) {
    roots->pixel[i] = static_cast<int>(i * 16411LL % image->npixels);
    roots->label[i] = i + 1;
  }
  return roots;
}

void saveRoots(benchmark::State &state) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, benchSide, benchSide));
  const ifRootsPtr roots = scatteredRoots(image.get());
  const ScratchFile file;
  for (auto _ : state)
    ifSaveRoots(file.path(), image.get(), roots.get());
  reportPerItem(state, "ns/root", million);
}
BENCHMARK(saveRoots)->Unit(benchmark::kMillisecond);

void loadRoots(benchmark::State &state) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, benchSide, benchSide));
  const ScratchFile file;
  ifSaveRoots(file.path(), image.get(), scatteredRoots(image.get()).get());
  for (auto _ : state)
    ifRootsPtr(ifReadRoots(file.path(), image.get()));
  reportPerItem(state, "ns/root", million);
}
BENCHMARK(loadRoots)->Unit(benchmark::kMillisecond);

} // namespace
