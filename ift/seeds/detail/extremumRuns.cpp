// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Two pixels that touch and have no better neighbour have the same value. So plateaus without a
// better neighbour are components of such pixels, the candidates; a component is no extremum if one
// of its pixels has a neighbour of its own value that is no candidate. All that is kept of the image
// are a few rows and the runs of candidates. Minima are the maxima of the values' complements.

#include "ift/seeds/detail/extremumRuns.h"

#include "base/arith.h"
#include "base/multiversion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace seedforest::detail {

namespace {

constexpr int lowest = std::numeric_limits<int>::min();

// Rows of an image, the last three, with a column of `lowest` on each side.
class Rows {
public:
  explicit Rows(int ncols)
      : stride_(static_cast<std::size_t>(ncols) + 2), value_(makeArray<int>(3 * stride_)) {
    std::fill_n(value_.get(), 3 * stride_, lowest);
  }
  int *operator[](int y) const {
    return value_.get() + static_cast<std::size_t>((y + 3) % 3) * stride_ + 1;
  }

private:
  std::size_t stride_;
  Array<int> value_;
};

SEEDFOREST_MULTIVERSION void flipValues(const int *value, int flip, int n, int *flipped) {
  for (int x = 0; x < n; ++x)
    flipped[x] = value[x] ^ flip;
}

// The largest value of each 3 x 3 window of three rows.
SEEDFOREST_MULTIVERSION void windowMaxima(const int *above, const int *row, const int *below, int n,
                                          int *columns, int *largest) {
  for (std::int64_t x = -1; x <= n; ++x) // n may be the largest int
    columns[x] = std::max(std::max(above[x], row[x]), below[x]);
  for (int x = 0; x < n; ++x)
    largest[x] = std::max(std::max(columns[x - 1], columns[x]), columns[x + 1]);
}

// The values of the pixels that are no candidates, and `lowest` for the candidates.
SEEDFOREST_MULTIVERSION void dropCandidates(const int *value, const int *largest, int end, int n,
                                            int *rest) {
  for (int x = 0; x < n; ++x)
    rest[x] = value[x] == largest[x] && value[x] != end ? lowest : value[x];
}

// Marks the candidates, and the pixels in whose window one that is none has their own value: where
// such a pixel is a candidate, its plateau goes on.
SEEDFOREST_MULTIVERSION void markCandidates(const int *value, const int *rest,
                                            const int *largestRest, int n, Word *candidate,
                                            Word *goesOn) {
  setBits(
      n, [&](int x) SEEDFOREST_INLINE { return rest[x] == lowest; }, candidate);
  setBits(
      n, [&](int x) SEEDFOREST_INLINE { return value[x] == largestRest[x]; }, goesOn);
}

class Finder {
public:
  Finder(const imImage *image, Extremum kind, Runs &runs)
      : image_(image), flip_(kind == Extremum::largest ? 0 : -1), runs_(runs),
        values_(image->ncols), rest_(image->ncols), scratch_(image->ncols) {
    const int scale = image->type == imTypeGrey ? 255 : maxInt;
    end_ = kind == Extremum::largest ? 0 : scale ^ flip_;
  }

  // Rows of candidates are known when the row below is loaded, and those that go on one row later.
  void run() {
    load(0);
    for (int y = 0; y <= image_->nrows; ++y) {
      load(y + 1);
      findCandidates(y);
      if (y > 0)
        addRuns(y - 1);
    }
  }

private:
  void load(int y) {
    if (y < image_->nrows)
      flipValues(image_->band[0] + image_->row[y], flip_, image_->ncols, values_[y]);
    else
      std::fill_n(values_[y], image_->ncols, lowest);
  }

  void findCandidates(int y) {
    int *largest = scratch_[1];
    windowMaxima(values_[y - 1], values_[y], values_[y + 1], image_->ncols, scratch_[0], largest);
    dropCandidates(values_[y], largest, end_, image_->ncols, rest_[y]);
  }

  void addRuns(int y) {
    int *largest = scratch_[1];
    windowMaxima(rest_[y - 1], rest_[y], rest_[y + 1], image_->ncols, scratch_[0], largest);
    markCandidates(values_[y], rest_[y], largest, image_->ncols, runs_.objects(), runs_.rejected());
    runs_.addRow();
  }

  const imImage *image_;
  const int flip_; // for the complement where minima are looked for
  int end_ = 0;
  Runs &runs_;
  Rows values_;
  Rows rest_;
  Rows scratch_;
};

} // namespace

ExtremumRuns::ExtremumRuns(const imImage *image, Extremum kind)
    : image_(image), runs_(image->ncols, image->nrows),
      inRow_(makeArray<LabelledRun>((static_cast<std::size_t>(image->ncols) + 1) / 2)) {
  Finder(image, kind, runs_).run();
  int n = 0;
  for (int pair = 0; pair < runs_.pairs(); ++pair)
    n = runs_.number(pair, nullptr, n);
}

SEEDFOREST_MULTIVERSION int ExtremumRuns::findInRow(int y) const {
  LabelledRun *begun = inRow_.get();
  LabelledRun *ended = inRow_.get();
  PairWalk pair = runs_.walk(y / 2);
  Word before = 0;
  for (std::size_t w = 0; w < runs_.words(); ++w) {
    pair.enter(w);
    const Word objects = runs_.row(y)[w];
    const Word left = leftOf(objects, before);
    const int first = static_cast<int>(w) * wordBits;
    forEachBit(objects & ~left, [&](int x) SEEDFOREST_INLINE {
      begun->start = first + x;
      begun->label = ~runs_.numbers()[pair.runAt(x)];
      ++begun;
    });
    forEachBit(left & ~objects, [&](int x) SEEDFOREST_INLINE { (ended++)->end = first + x; });
    before = objects;
  }
  return static_cast<int>(ended - inRow_.get());
}

std::int64_t ExtremumRuns::pixels() const {
  std::int64_t n = 0;
  forEach([&n](int start, int end, int) { n += end - start; });
  return n;
}

} // namespace seedforest::detail
