// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Reading and writing images of 4096 x 4096 pixels, from and to files in the system's file cache.

#include "bench.h"

#include "base/buffer.h"
#include "image/imIO.h"

#include <random>

namespace {

using seedforest::detail::Array;
using seedforest::detail::makeArray;

constexpr double pixels = double(benchSide) * benchSide;

imImagePtr randomBytes(int nbands, char type) {
  imImagePtr image(imCreateImage(nbands, type, benchSide, benchSide));
  std::mt19937 random(1);
  for (int b = 0; b < nbands; ++b)
    for (int p = 0; p < image->npixels; ++p)
      image->band[b][p] = static_cast<int>(random() & 255);
  return image;
}

// The pass to compare with: bytes widened to 32 bits, in memory that has been touched before.
void plainWidening(benchmark::State &state) {
  const Array<unsigned char> bytes = makeArray<unsigned char>(std::size_t(pixels));
  const Array<int> values = makeArray<int>(std::size_t(pixels));
  std::fill_n(bytes.get(), std::size_t(pixels), static_cast<unsigned char>(7));
  for (auto _ : state) {
    for (std::size_t p = 0; p < std::size_t(pixels); ++p)
      values[p] = bytes[p];
    benchmark::DoNotOptimize(values.get());
    benchmark::ClobberMemory();
  }
  reportPerItem(state, "ns/pixel", pixels);
}
BENCHMARK(plainWidening)->Unit(benchmark::kMillisecond);

void readImage(benchmark::State &state, int nbands, char type) {
  const ScratchFile file;
  imSaveImage(file.path(), randomBytes(nbands, type).get());
  for (auto _ : state) {
    imImage *image = nullptr;
    imReadImage(file.path(), &image);
    benchmark::DoNotOptimize(image);
    imReleaseImage(&image);
  }
  reportPerItem(state, "ns/pixel", pixels);
}
BENCHMARK_CAPTURE(readImage, P5, 1, imTypeGrey)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readImage, P6, 3, imTypeColor)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readImage, P2, 1, imTypeAscii)->Unit(benchmark::kMillisecond);

void saveImage(benchmark::State &state, int nbands, char type) {
  const ScratchFile file;
  const imImagePtr image = randomBytes(nbands, type);
  for (auto _ : state)
    imSaveImage(file.path(), image.get());
  reportPerItem(state, "ns/pixel", pixels);
}
BENCHMARK_CAPTURE(saveImage, P5, 1, imTypeGrey)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(saveImage, P6, 3, imTypeColor)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(saveImage, P2, 1, imTypeAscii)->Unit(benchmark::kMillisecond);

} // namespace
