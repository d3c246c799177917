// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imMorph.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/multiversion.h"
#include "base/report.h"
#include "image/detail/imMorphRuns.h"
#include "image/detail/imageTools.h"
#include "image/detail/rowWindow.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

using namespace seedforest::detail;

namespace {

using Steps = Vector<Step>;

void requireOutput(const char *operation, const imImage *in, const imImage *out, int nbands) {
  requireBands(operation, out, nbands);
  requireSameSize(operation, in, out);
}

// The rows of one band.
template <class T>
class BandRows : public RowSource<T> {
public:
  BandRows(const imImage *image, int b, int base)
      : at_(image->band[b]), ncols_(image->ncols), base_(base) {}

  void next(T *row) override {
    fit_ &= loadRow(at_, ncols_, base_, row);
    at_ += ncols_;
  }

  /// Whether T could hold all values so far.
  bool fit() const { return fit_; }

private:
  const int *at_;
  int ncols_;
  int base_;
  bool fit_ = true;
};

// The rows of an array of elements.
template <class T>
class PlaneRows : public RowSource<T> {
public:
  PlaneRows(const T *plane, int ncols) : at_(plane), ncols_(ncols) {}

  void next(T *row) override {
    std::copy_n(at_, ncols_, row);
    at_ += ncols_;
  }

private:
  const T *at_;
  int ncols_;
};

// The rows that result from a sequence of steps.
template <class T>
class Chain {
public:
  Chain(const Steps &steps, const imImage *image, RowSource<T> &from) : last_(&from) {
    for (const Step &step : steps) {
      stages_.push_back(runStep(step, image->ncols, image->nrows, *last_));
      last_ = stages_.back().get();
    }
  }

  void next(T *row) { last_->next(row); }

private:
  Vector<std::unique_ptr<RowSource<T>>> stages_;
  RowSource<T> *last_;
};

// Calls work(base, T()) with the narrowest element type T that can hold v - base for every value v
// of the image. The first try is 8 bits and base 0, without a pass over the values: the work
// returns false as soon as a value does not fit, and is then called again with another type. Values
// beyond the start of a search need all 32 bits; with others no result is a start, since each pixel
// is in its own disc.
template <class Work>
void inNarrowestType(const imImage *image, Work work) {
  if (work(0, std::uint8_t()))
    return;
  ValueRange range = {maxInt, minInt};
  for (int b = 0; b < image->nbands; ++b)
    widenRange(image->band[b], image->npixels, range);
  const std::int64_t span = std::int64_t{range.most} - range.least;
  if (range.least < leastStart || range.most > mostStart || span > 65535)
    work(0, int());
  else if (span > 255)
    work(range.least + 32768, std::int16_t());
  else
    work(range.least, std::uint8_t());
}

// An empty disc finds nothing: every value stays at its start.
void fillWithStart(const imImage *in, imImage *out, Extremum extremum) {
  const int start = extremum == Extremum::largest ? leastStart : mostStart;
  for (int b = 0; b < in->nbands; ++b)
    std::fill_n(out->band[b], out->npixels, start);
  out->maxValue = in->nbands > 0 ? start : leastStart;
}

void runSteps(const char *operation, const imImage *in, imImage *out, const Steps &steps) {
  requireBands(operation, in, 0);
  requireOutput(operation, in, out, in->nbands);
  if (steps.back().s < 0)
    return fillWithStart(in, out, steps.back().extremum);
  inNarrowestType(in, [&]<class T>(int base, T) {
    const Array<T> row = makeArray<T>(in->ncols);
    Meter meter(std::int64_t{in->npixels} * in->nbands);
    int largest = leastStart;
    for (int b = 0; b < in->nbands; ++b) {
      BandRows<T> from(in, b, base);
      Chain<T> chain(steps, in, from);
      for (int y = 0; y < in->nrows; ++y, meter.advance(in->ncols)) {
        chain.next(row.get());
        if (!from.fit())
          return false;
        largest = storeRow(row.get(), in->ncols, base, out->band[b] + out->row[y], largest);
      }
    }
    out->maxValue = largest;
    return true;
  });
}

// Step i of n of a filter that alternates erosions and dilations: outer, inner, inner, outer, all
// by the disc of squared radius i. The inner two are merged into one; so are the last outer one and
// the first of the next step.
Steps filterSteps(Extremum outer, Extremum inner, int i, int n) {
  Steps steps;
  if (i == 1)
    steps.push_back({outer, 1});
  steps.push_back({inner, i, i});
  steps.push_back({outer, i, i < n ? i + 1 : 0});
  return steps;
}

// The values stay in narrow form from step to step. Steps work in place: an output row is stored
// only after the input row there has been read.
void alternate(const char *operation, const imImage *in, imImage *out, int n, const char *line,
               Extremum outer, Extremum inner) {
  requireBands(operation, in, 0);
  requireOutput(operation, in, out, in->nbands);
  inNarrowestType(in, [&]<class T>(int base, T) {
    const std::size_t npixels = in->npixels;
    const Array<T> planes = makeArray<T>(npixels * in->nbands);
    for (int b = 0; b < in->nbands; ++b)
      if (!loadRow(in->band[b], in->npixels, base, planes.get() + npixels * b))
        return false;
    constexpr int manySteps = 1 << 20; // nobody waits for the end of more
    const std::int64_t stepCost = std::int64_t{in->npixels} * in->nbands;
    Meter meter(stepCost * std::min(n, manySteps));
    const std::int64_t width = in->ncols - 1;
    const std::int64_t height = in->nrows - 1;
    for (int i = 1; i <= n; ++i) {
      progress(line, i);
      if (i > width * width + height * height) { // a disc as large as the image has left one value
        meter.advance(stepCost);
        continue;
      }
      for (int b = 0; b < in->nbands; ++b) {
        T *plane = planes.get() + npixels * b;
        PlaneRows<T> from(plane, in->ncols);
        Chain<T> chain(filterSteps(outer, inner, i, n), in, from);
        for (int y = 0; y < in->nrows; ++y, meter.advance(in->ncols))
          chain.next(plane + in->row[y]);
      }
    }
    for (int b = 0; b < in->nbands; ++b)
      storeRow(planes.get() + npixels * b, in->npixels, base, out->band[b], 0);
    return true;
  });
}

// Raises a row of the output to the gradient of one of the input, and returns the largest gradient
// or `largest`.
SEEDFOREST_MULTIVERSION int raiseToGradient(const RowWindow &window, int ncols, int *__restrict out,
                                            int largest) {
  forEachColumn(ncols, [=, &largest](int left, int x, int right) {
    const auto over = [=](auto best) {
      const auto inRow = [=](const int *line) {
        return best(best(line[left], line[x]), line[right]);
      };
      return best(best(inRow(window.above), inRow(window.row)), inRow(window.below));
    };
    const int hi = over([](int a, int b) { return std::max(a, b); });
    const int lo = over([](int a, int b) { return std::min(a, b); });
    // The difference of any two ints fits an unsigned.
    const int g = static_cast<int>(
        std::min(static_cast<unsigned>(hi) - static_cast<unsigned>(lo), unsigned{maxInt}));
    out[x] = std::max(out[x], g);
    largest = std::max(largest, g);
  });
  return largest;
}

} // namespace

void imMorphDilate(const imImage *in, imImage *out, int s) {
  runSteps("imMorphDilate", in, out, {{Extremum::largest, s}});
}

void imMorphErode(const imImage *in, imImage *out, int s) {
  runSteps("imMorphErode", in, out, {{Extremum::smallest, s}});
}

void imMorphOpen(const imImage *in, imImage *out, int s) {
  runSteps("imMorphOpen", in, out, {{Extremum::smallest, s}, {Extremum::largest, s}});
}

void imMorphClose(const imImage *in, imImage *out, int s) {
  runSteps("imMorphClose", in, out, {{Extremum::largest, s}, {Extremum::smallest, s}});
}

void imMorphAsfCO(const imImage *in, imImage *out, int n) {
  alternate("imMorphAsfCO", in, out, n, "squared radius is %d\n", Extremum::largest,
            Extremum::smallest);
}

void imMorphAsfOC(const imImage *in, imImage *out, int n) {
  alternate("imMorphAsfOC", in, out, n, "radius is %d\n", Extremum::smallest, Extremum::largest);
}

void imMorphGrad(const imImage *in, imImage *out) {
  requireBands("imMorphGrad", in, 0);
  requireOutput("imMorphGrad", in, out, std::min(in->nbands, 1));
  int largest = -1;
  for (int b = 0; b < in->nbands; ++b)
    for (int y = 0; y < in->nrows; ++y)
      largest =
          raiseToGradient(RowWindow(in, b, y), in->ncols, out->band[0] + out->row[y], largest);
  out->maxValue = largest;
}
