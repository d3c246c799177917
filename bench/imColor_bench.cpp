// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Conversions between colour spaces, on colours that change little from pixel to pixel, as in
// photographs. Compared with a plain copy of three bands and, where the library is installed,
// OpenCV's conversions of floating-point pixels on one thread (without the gamma of sRGB).

#include "bench.h"

#include "image/imColor.h"

#include <algorithm>
#include <random>

#ifdef SEEDFOREST_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using Conversion = void (*)(const imImage *, imImage *);

struct Problem {
  imImagePtr rgb{imCreateImage(3, imTypeColor, benchSide, benchSide)};
  imImagePtr in{imCreateImage(3, imTypeXyz, benchSide, benchSide)};
  imImagePtr out{imCreateImage(3, imTypeXyz, benchSide, benchSide)};

  Problem();
};

void copyBands(const imImage *in, imImage *out) {
  for (int b = 0; b < 3; ++b)
    std::copy_n(in->band[b], in->npixels, out->band[b]);
}

Problem::Problem() {
  std::mt19937 random(9);
  for (int b = 0; b < 3; ++b)
    for (int p = 0, v = 128; p < rgb->npixels; ++p) {
      v = std::clamp(v + static_cast<int>(random() % 17) - 8, 0, 255);
      rgb->band[b][p] = v;
    }
  copyBands(rgb.get(), out.get()); // touches its pages
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
MEASURE(copyBands, imRgb2xyz);
MEASURE(imRgb2xyz, imXyz2rgb);
MEASURE(imRgb2xyz, imXyz2lab);
MEASURE(imRgb2lab, imLab2xyz);
MEASURE(imRgb2xyz, imXyz2luv);
MEASURE(imRgb2luv, imLuv2xyz);
MEASURE(copyBands, imRgb2ycbcr);
MEASURE(imRgb2ycbcr, imYcbcr2rgb);
MEASURE(copyBands, imRgb2hsv);
MEASURE(imRgb2hsv, imHsv2rgb);
MEASURE(copyBands, imRgb2lab);
MEASURE(imRgb2lab, imLab2rgb);
MEASURE(copyBands, imRgb2luv);
MEASURE(imRgb2luv, imLuv2rgb);

#ifdef SEEDFOREST_BENCH_OPENCV
template <int code>
void openCv(benchmark::State &state) {
  cv::setNumThreads(1);
  const imImage *rgb = problem().rgb.get();
  cv::Mat in(rgb->nrows, rgb->ncols, CV_32FC3);
  for (int p = 0; p < rgb->npixels; ++p)
    for (int b = 0; b < 3; ++b)
      in.ptr<float>()[3 * std::size_t(p) + b] = static_cast<float>(rgb->band[b][p]) / 255;
  cv::Mat out = in.clone();
  for (auto _ : state)
    cv::cvtColor(in, out, code);
  reportPerItem(state, "ns/pixel", rgb->npixels);
}
#define MEASURE_PEER(code)                                                                         \
  BENCHMARK(openCv<cv::COLOR_##code>)->Name("openCv" #code)->Unit(benchmark::kMillisecond)
MEASURE_PEER(RGB2XYZ);
MEASURE_PEER(RGB2YCrCb);
MEASURE_PEER(RGB2HSV);
MEASURE_PEER(LRGB2Lab);
MEASURE_PEER(LRGB2Luv);
#endif

} // namespace
