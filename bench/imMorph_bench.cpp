// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Morphology with discs on an 8-bit micrograph: one dilation and erosion for several discs, and the
// alternating filter. Compared with a plain copy of the image, the plain dilation and, where the
// library is installed, OpenCV's dilation and erosion with the same disc on one thread, on 8-bit
// and on floating-point pixels.

#include "bench.h"
#include "images.h"

#include "image/imMorph.h"
#include "image/imNeighborhood.h"
#include "tests/reference/plainMorph.h"

#include <algorithm>

#ifdef SEEDFOREST_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

struct Problem {
  imImagePtr in = benchImage(micrographImage, benchSide);
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

void dilate(benchmark::State &state) {
  measure(state, imMorphDilate);
}

void erode(benchmark::State &state) {
  measure(state, imMorphErode);
}

void plainDilation(benchmark::State &state) {
  measure(state, plainDilate);
}

void gradient(benchmark::State &state) {
  measure(state, [](const imImage *in, imImage *out, int) { imMorphGrad(in, out); });
}

// Its progress lines appear between those of the report.
void alternatingFilter(benchmark::State &state) {
  measure(state, imMorphAsfOC);
}

#ifdef SEEDFOREST_BENCH_OPENCV
// The same displacements as a matrix.
cv::Mat kernelOf(int s) {
  int *list = nullptr;
  const int n = imNeighborhood(&list, s);
  const seedforest::detail::Array<int> disc(list);
  const int reach = -disc[0];
  cv::Mat kernel = cv::Mat::zeros(2 * reach + 1, 2 * reach + 1, CV_8U);
  for (int k = 0; k < n; ++k)
    kernel.at<unsigned char>(disc[2 * k + 1] + reach, disc[2 * k] + reach) = 1;
  return kernel;
}

using PeerFn = void (*)(cv::InputArray, cv::OutputArray, cv::InputArray, cv::Point, int, int,
                        const cv::Scalar &);

template <PeerFn operation, int type>
void openCv(benchmark::State &state) {
  cv::setNumThreads(1);
  const imImage *image = problem().in.get();
  cv::Mat in;
  cv::Mat(image->nrows, image->ncols, CV_32S, image->band[0]).convertTo(in, type);
  cv::Mat out = in.clone();
  const cv::Mat kernel = kernelOf(static_cast<int>(state.range(0)));
  for (auto _ : state)
    operation(in, out, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
              cv::morphologyDefaultBorderValue());
  reportPerItem(state, "ns/pixel", image->npixels);
}
#endif

void discs(benchmark::internal::Benchmark *b) {
  b->ArgName("s")->ArgsProduct({{2, 5, 13, 25, 50, 100}})->Unit(benchmark::kMillisecond);
}
BENCHMARK(copyImage)->ArgName("s")->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(dilate)->Apply(discs);
BENCHMARK(erode)->Apply(discs);
BENCHMARK(plainDilation)->ArgName("s")->Arg(2)->Arg(13)->Unit(benchmark::kMillisecond);
BENCHMARK(gradient)->ArgName("s")->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(alternatingFilter)->ArgName("steps")->Arg(5)->Arg(20)->Unit(benchmark::kMillisecond);
#ifdef SEEDFOREST_BENCH_OPENCV
BENCHMARK(openCv<cv::dilate, CV_8U>)->Name("openCvDilate8Bit")->Apply(discs);
BENCHMARK(openCv<cv::erode, CV_8U>)->Name("openCvErode8Bit")->Apply(discs);
BENCHMARK(openCv<cv::dilate, CV_32F>)->Name("openCvDilateFloat")->Apply(discs);
BENCHMARK(openCv<cv::erode, CV_32F>)->Name("openCvErodeFloat")->Apply(discs);
#endif

} // namespace
