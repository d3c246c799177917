// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Conversions between colour spaces, on colours that change little from pixel to pixel, as in
// photographs. Compared with a plain copy of three bands.

#include "bench.h"
#include "images.h"

#include "image/imColor.h"

#include <algorithm>

namespace {

using Conversion = void (*)(const imImage *, imImage *);

struct Problem {
  imImagePtr rgb = bench::drawColour({bench::Drawing::micrograph, benchSide});
  imImagePtr in{imCreateImage(3, imTypeXyz, benchSide, benchSide)};
  imImagePtr out{imCopyImage(rgb.get())}; // touches its pages
};

void copyBands(const imImage *in, imImage *out) {
  for (int b = 0; b < 3; ++b)
    std::copy_n(in->band[b], in->npixels, out->band[b]);
}

const Problem &problem() {
  static const Problem shared;
  return shared;
}

// The input is the RGB image converted by `before`.
template <Conversion before, Conversion conversion>
void measure(benchmark::State &state) {
  const Problem &p = problem();
  before(p.rgb.get(), p.in.get());
  for (auto _ : state) {
    conversion(p.in.get(), p.out.get());
    benchmark::ClobberMemory();
  }
  reportPerItem(state, "ns/pixel", p.in->npixels);
}

#define MEASURE(before, conversion)                                                                \
  BENCHMARK(measure<before, conversion>)->Name(#conversion)->Unit(benchmark::kMillisecond)
MEASURE(copyBands, copyBands);
MEASURE(imRgb2xyz, imXyz2rgb);
MEASURE(imRgb2xyz, imXyz2lab);
MEASURE(imRgb2lab, imLab2xyz);
MEASURE(imRgb2xyz, imXyz2luv);
MEASURE(imRgb2luv, imLuv2xyz);
MEASURE(imRgb2ycbcr, imYcbcr2rgb);
MEASURE(imRgb2hsv, imHsv2rgb);
MEASURE(imRgb2lab, imLab2rgb);
MEASURE(imRgb2luv, imLuv2rgb);

} // namespace
