// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Morphology with discs on an 8-bit micrograph: an erosion by several discs, and the gradient.
// Compared with a plain copy of the image.

#include "bench.h"
#include "images.h"

#include "image/imMorph.h"

#include <algorithm>

namespace {

struct Problem {
  imImagePtr in = bench::drawGrey({bench::Drawing::micrograph, benchSide});
  imImagePtr out{imCopyImage(in.get())};
};

const Problem &problem() {
  static const Problem shared;
  return shared;
}

template <class Work>
void measure(benchmark::State &state, Work work) {
  const Problem &p = problem();
  for (auto _ : state) {
    work(p.in.get(), p.out.get(), static_cast<int>(state.range(0)));
    benchmark::ClobberMemory();
  }
  reportPerItem(state, "ns/pixel", p.in->npixels);
  reportPeakMemory(state, p.in->npixels);
}

void copyImage(benchmark::State &state) {
  measure(state, [](const imImage *in, imImage *out, int) {
    std::copy_n(in->band[0], in->npixels, out->band[0]);
  });
}

void erode(benchmark::State &state) {
  measure(state, imMorphErode);
}

void gradient(benchmark::State &state) {
  measure(state, [](const imImage *in, imImage *out, int) { imMorphGrad(in, out); });
}

void discs(benchmark::internal::Benchmark *b) {
  b->ArgName("s")->ArgsProduct({{2, 5, 13, 25, 50, 100}})->Unit(benchmark::kMillisecond);
}
BENCHMARK(copyImage)->ArgName("s")->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(erode)->Apply(discs);
BENCHMARK(gradient)->ArgName("s")->Arg(0)->Unit(benchmark::kMillisecond);

} // namespace
