#include "image/imMorph.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "image/imMorphRuns.h"
#include "image/rowWindow.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

using namespace seedforest::detail;

namespace {

struct Step {
  Extremum extremum;
  int s;
};
using Steps = std::vector<Step>;

Steps openingBy(int s) {
  return {{Extremum::smallest, s}, {Extremum::largest, s}};
}

Steps closingBy(int s) {
  return {{Extremum::largest, s}, {Extremum::smallest, s}};
}

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
    loadRow(at_, ncols_, base_, row);
    at_ += ncols_;
  }

private:
  const int *at_;
  int ncols_;
  int base_;
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

// What comes of rows in a row of steps.
template <class T>
class Chain {
public:
  Chain(const Steps &steps, const imImage *image, RowSource<T> &from) : last_(&from) {
    for (const Step &step : steps) {
      stages_.push_back(extremaOverDisc(step.extremum, step.s, image->ncols, image->nrows, *last_));
      last_ = stages_.back().get();
    }
  }

  void next(T *row) { last_->next(row); }

private:
  std::vector<std::unique_ptr<RowSource<T>>> stages_;
  RowSource<T> *last_;
};

// Calls work(base, T()) with the narrowest element type T that can stand for every value of the
// image as v - base. Values beyond the start of a search need all 32 bits; of others no result is a
// start, since each pixel is in its own disc.
template <class Work>
void inNarrowestType(const imImage *image, Work work) {
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
    int largest = leastStart;
    for (int b = 0; b < in->nbands; ++b) {
      BandRows<T> from(in, b, base);
      Chain<T> chain(steps, in, from);
      for (int y = 0; y < in->nrows; ++y) {
        chain.next(row.get());
        largest = storeRow(row.get(), in->ncols, base, out->band[b] + out->row[y], largest);
      }
    }
    out->maxValue = largest;
  });
}

// An alternating filter: the values stay in narrow form from step to step, in place, since a row
// goes out only after it has come in.
template <class StepsOf>
void alternate(const char *operation, const imImage *in, imImage *out, int n, const char *line,
               StepsOf stepsOf) {
  requireBands(operation, in, 0);
  requireOutput(operation, in, out, in->nbands);
  inNarrowestType(in, [&]<class T>(int base, T) {
    const std::size_t npixels = in->npixels;
    const Array<T> planes = makeArray<T>(npixels * in->nbands);
    for (int b = 0; b < in->nbands; ++b)
      loadRow(in->band[b], in->npixels, base, planes.get() + npixels * b);
    for (int i = 1; i <= n; ++i) {
      progress(line, i);
      for (int b = 0; b < in->nbands; ++b) {
        T *plane = planes.get() + npixels * b;
        PlaneRows<T> from(plane, in->ncols);
        Chain<T> chain(stepsOf(i), in, from);
        for (int y = 0; y < in->nrows; ++y)
          chain.next(plane + in->row[y]);
      }
    }
    for (int b = 0; b < in->nbands; ++b)
      storeRow(planes.get() + npixels * b, in->npixels, base, out->band[b], 0);
  });
}

// Both, one after the other.
Steps joined(Steps first, const Steps &second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

} // namespace

void imMorphDilate(const imImage *in, imImage *out, int s) {
  runSteps("imMorphDilate", in, out, {{Extremum::largest, s}});
}

void imMorphErode(const imImage *in, imImage *out, int s) {
  runSteps("imMorphErode", in, out, {{Extremum::smallest, s}});
}

void imMorphOpen(const imImage *in, imImage *out, int s) {
  runSteps("imMorphOpen", in, out, openingBy(s));
}

void imMorphClose(const imImage *in, imImage *out, int s) {
  runSteps("imMorphClose", in, out, closingBy(s));
}

void imMorphAsfCO(const imImage *in, imImage *out, int n) {
  alternate("imMorphAsfCO", in, out, n, "squared radius is %d\n",
            [](int i) { return joined(closingBy(i), openingBy(i)); });
}

void imMorphAsfOC(const imImage *in, imImage *out, int n) {
  alternate("imMorphAsfOC", in, out, n, "radius is %d\n",
            [](int i) { return joined(openingBy(i), closingBy(i)); });
}

void imMorphGrad(const imImage *in, imImage *out) {
  requireBands("imMorphGrad", in, 0);
  requireOutput("imMorphGrad", in, out, std::min(in->nbands, 1));
  int largest = -1;
  for (int b = 0; b < in->nbands; ++b)
    for (int y = 0; y < in->nrows; ++y) {
      const RowWindow window(in, b, y);
      int *gradient = out->band[0] + out->row[y];
      forEachColumn(in->ncols, [=, &largest](int left, int x, int right) {
        int hi = window.row[x];
        int lo = window.row[x];
        for (const int *line : {window.above, window.row, window.below})
          for (const int column : {left, x, right}) {
            hi = std::max(hi, line[column]);
            lo = std::min(lo, line[column]);
          }
        const int g = saturate(std::int64_t{hi} - lo);
        gradient[x] = std::max(gradient[x], g);
        largest = std::max(largest, g);
      });
    }
  out->maxValue = largest;
}
