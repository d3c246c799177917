// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/detail/imMorphRuns.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inline.h"
#include "base/multiversion.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <utility>

namespace seedforest::detail {

namespace {

constexpr int batch = 4; // rows that come in together

// Rows are aligned and padded to multiples of this number of elements. Loops run to the padded end;
// what they compute behind a row's own end is not used.
constexpr std::ptrdiff_t lane = 64;

constexpr std::ptrdiff_t roundUp(std::ptrdiff_t n) {
  return (n + lane - 1) / lane * lane;
}

// The two extrema: the better of two elements, and the value at which a search starts.
struct Largest {
  template <class T>
  static constexpr T start = sizeof(T) < sizeof(int) ? std::numeric_limits<T>::lowest()
                                                     : static_cast<T>(leastStart);
  template <class T>
  static T of(T a, T b) {
    return a > b ? a : b;
  }
};

struct Smallest {
  template <class T>
  static constexpr T start = sizeof(T) < sizeof(int) ? std::numeric_limits<T>::max()
                                                     : static_cast<T>(mostStart);
  template <class T>
  static T of(T a, T b) {
    return a < b ? a : b;
  }
};

// Half-widths of a disc's runs by |dy| = 0, 1, ..., for as many dy as the image's height allows.
Vector<int> runsOf(int s, int nrows) {
  Vector<int> width(std::min(std::size_t{1} + truncatedSqrt(s), std::size_t{0} + nrows));
  for (int dy = 0; dy < static_cast<int>(width.size()); ++dy)
    width[dy] = truncatedSqrt(s - dy * dy);
  return width;
}

// The runs of the Minkowski sum of two discs: what a step by one and then by the other can reach.
// This holds at the image's border too, where the first step must stay inside: each displacement
// can be split into two of its signs that are no longer in x or in y, since a disc that holds (dx,
// dy) holds all displacements with smaller |dx| or |dy|.
Vector<int> sumOf(const Vector<int> &a, const Vector<int> &b) {
  const int reachA = static_cast<int>(a.size()) - 1;
  const int reachB = static_cast<int>(b.size()) - 1;
  Vector<int> sum(a.size() + b.size() - 1);
  for (int dy = 0; dy <= reachA + reachB; ++dy)
    for (int part = std::max(0, dy - reachB); part <= std::min(reachA, dy); ++part)
      sum[dy] = std::max(sum[dy], a[part] + b[dy - part]);
  return sum;
}

// A structuring element as a stack of runs, clipped to the image's size. A level is a row's running
// extremum of one half-width; level 0 is the row itself. Three reads of a level of half-width h
// give a half-width of at most 3h + 1, so some levels exist only as steps to a wider one.
struct Disc {
  int reach;                   // dy goes from -reach to reach
  Vector<int> halfWidth = {0}; // by level, ascending
  Vector<int> level;           // by |dy|

  Disc(const Vector<int> &runs, int ncols, int nrows)
      : reach(std::min(static_cast<int>(runs.size()), nrows) - 1), level(std::size_t{1} + reach) {
    for (int dy = reach; dy >= 0; --dy) {
      const int width = std::min(runs[dy], ncols - 1);
      while (halfWidth.back() < width)
        halfWidth.push_back(std::min(width, 3 * halfWidth.back() + 1));
      level[dy] = static_cast<int>(halfWidth.size()) - 1;
    }
  }

  int widest() const { return halfWidth.back(); }
};

// Rows of elements, element 0 of each aligned, with a margin before and after.
template <class T>
class Rows {
public:
  Rows(std::size_t count, std::ptrdiff_t margin, std::ptrdiff_t length, T fill)
      : pitch_(roundUp(margin) + roundUp(length)), memory_(makeArray<T>(count * pitch_ + lane)) {
    std::fill_n(memory_.get(), count * pitch_ + lane, fill);
    const auto address = reinterpret_cast<std::uintptr_t>(memory_.get()) / sizeof(T);
    first_ = memory_.get() + (lane - address % lane) % lane + roundUp(margin);
  }

  T *operator[](std::size_t i) const { return first_ + i * pitch_; }

private:
  std::ptrdiff_t pitch_;
  Array<T> memory_;
  T *first_;
};

// The rows that a stage holds in memory.
template <class T>
struct Window {
  Disc disc;
  std::ptrdiff_t ncols;
  int nrows;
  int ringSize;
  Rows<T> levels; // of the last batch of input rows: level j of its row i is at j * batch + i
  Rows<T> ring;   // output rows in the making, row y at y mod ringSize

  Window(const Vector<int> &runs, int columns, int rows, T start)
      : disc(runs, columns, rows), ncols(columns), nrows(rows), ringSize(2 * disc.reach + batch),
        levels(disc.halfWidth.size() * batch, disc.widest() + lane, ncols + disc.widest() + lane,
               start),
        ring(ringSize, 0, ncols, start) {}

  T *level(int j, int i) const { return levels[std::size_t{batch} * j + i]; }
  T *out(int y) const { return ring[y % ringSize]; }
};

// The running extrema of half-width h + d from those of half-width h; d is at most 2h + 1. They are
// computed for `beyond` columns outside the image too, which wider runs will read.
template <class Best, class T>
SEEDFOREST_INLINE inline void widen(const T *from, std::ptrdiff_t h, std::ptrdiff_t d,
                                    std::ptrdiff_t beyond, std::ptrdiff_t ncols, T *to) {
  const std::ptrdiff_t begin = -roundUp(beyond);
  const std::ptrdiff_t n = roundUp(ncols + beyond - begin);
  T *__restrict at = to + begin;
  const T *left = from + begin - d;
  const T *middle = from + begin;
  const T *right = from + begin + d;
  if (d <= h)
    for (std::ptrdiff_t x = 0; x < n; ++x)
      at[x] = Best::of(left[x], right[x]);
  else
    for (std::ptrdiff_t x = 0; x < n; ++x)
      at[x] = Best::of(Best::of(left[x], right[x]), middle[x]);
}

// The extremum of the rows row[k], and of `to` itself unless it is new, in each of n columns. Each
// count of rows has a loop of its own, with the rows' addresses in registers.
template <class Best, class T, std::size_t... k>
SEEDFOREST_INLINE inline void joinAll(const T *const *row, std::index_sequence<k...>,
                                      std::ptrdiff_t n, bool isNew, T *__restrict to) {
  const auto loop = [n, to](auto value, auto... from) {
    for (std::ptrdiff_t x = 0; x < n; ++x) {
      T best = value[x];
      ((best = Best::of(best, from[x])), ...);
      to[x] = best;
    }
  };
  if (isNew)
    loop(row[k]...);
  else
    loop(to, row[k]...);
}

// The same for a count of rows known only at run time: calls the joinAll() of that count.
template <class Best, class T, std::size_t... counts>
SEEDFOREST_INLINE inline void join(const T *const *row, std::size_t rows,
                                   std::index_sequence<counts...>, std::ptrdiff_t n, bool isNew,
                                   T *to) {
  ((rows == counts + 1 ? joinAll<Best>(row, std::make_index_sequence<counts + 1>(), n, isNew, to)
                       : void()),
   ...);
}

// Adds the input rows y0 .. y1 - 1, stored at level 0, to the output rows that they belong to.
template <class Best, class T>
SEEDFOREST_INLINE inline void takeInAs(const Window<T> &window, int y0, int y1) {
  const Disc &disc = window.disc;
  for (int i = 0; i < y1 - y0; ++i)
    for (std::size_t j = 1; j < disc.halfWidth.size(); ++j) {
      const int h = disc.halfWidth[j - 1];
      widen<Best>(window.level(j - 1, i), h, disc.halfWidth[j] - h,
                  disc.widest() - disc.halfWidth[j], window.ncols, window.level(j, i));
    }
  const int reach = disc.reach;
  const int end = y1 + std::min(reach, window.nrows - y1);
  for (int y = std::max(y0 - reach, 0); y < end; ++y) {
    const T *from[batch];
    int n = 0;
    for (int q = std::max(y0, y - reach); q < y1 && q - y <= reach; ++q)
      from[n++] = window.level(disc.level[std::abs(q - y)], q - y0);
    join<Best>(from, n, std::make_index_sequence<batch>(), roundUp(window.ncols), y - reach >= y0,
               window.out(y));
  }
}

SEEDFOREST_MULTIVERSION void takeIn(Largest, const Window<std::uint8_t> &window, int y0, int y1) {
  takeInAs<Largest>(window, y0, y1);
}
SEEDFOREST_MULTIVERSION void takeIn(Largest, const Window<std::int16_t> &window, int y0, int y1) {
  takeInAs<Largest>(window, y0, y1);
}
SEEDFOREST_MULTIVERSION void takeIn(Largest, const Window<int> &window, int y0, int y1) {
  takeInAs<Largest>(window, y0, y1);
}
SEEDFOREST_MULTIVERSION void takeIn(Smallest, const Window<std::uint8_t> &window, int y0, int y1) {
  takeInAs<Smallest>(window, y0, y1);
}
SEEDFOREST_MULTIVERSION void takeIn(Smallest, const Window<std::int16_t> &window, int y0, int y1) {
  takeInAs<Smallest>(window, y0, y1);
}
SEEDFOREST_MULTIVERSION void takeIn(Smallest, const Window<int> &window, int y0, int y1) {
  takeInAs<Smallest>(window, y0, y1);
}

template <class T, class Best>
class Stage : public RowSource<T> {
public:
  Stage(const Vector<int> &runs, int ncols, int nrows, RowSource<T> &from)
      : window_(runs, ncols, nrows, Best::template start<T>), from_(from) {}

  void next(T *row) override {
    while (in_ < window_.nrows && in_ - out_ <= window_.disc.reach)
      takeInBatch();
    std::copy_n(window_.out(out_++), window_.ncols, row);
  }

private:
  void takeInBatch() {
    const int n = std::min(batch, window_.nrows - in_);
    for (int i = 0; i < n; ++i) {
      T *row = window_.level(0, i);
      from_.next(row);
      if (sizeof(T) == sizeof(int)) // narrower elements are never beyond the start
        std::transform(row, row + window_.ncols, row,
                       [](T v) { return Best::of(v, Best::template start<T>); });
    }
    takeIn(Best(), window_, in_, in_ + n);
    in_ += n;
  }

  Window<T> window_;
  RowSource<T> &from_;
  int in_ = 0;  // input rows read
  int out_ = 0; // output rows returned
};

template <class T>
SEEDFOREST_INLINE inline bool loadAs(const int *value, int n, int base, T *__restrict row) {
  unsigned lost = 0;
  for (int x = 0; x < n; ++x) {
    const unsigned element = static_cast<unsigned>(value[x]) - static_cast<unsigned>(base);
    row[x] = static_cast<T>(element);
    lost |= element ^ static_cast<unsigned>(static_cast<T>(element));
  }
  return lost == 0;
}

template <class T>
SEEDFOREST_INLINE inline int storeAs(const T *row, int n, int base, int *__restrict value,
                                     int largest) {
  for (int x = 0; x < n; ++x) {
    value[x] = row[x] + base;
    largest = Largest::of(largest, value[x]);
  }
  return largest;
}

} // namespace

template <class T>
std::unique_ptr<RowSource<T>> runStep(const Step &step, int ncols, int nrows, RowSource<T> &from) {
  const Vector<int> runs = sumOf(runsOf(step.s, nrows), runsOf(step.t, nrows));
  if (step.extremum == Extremum::largest)
    return makeUnique<Stage<T, Largest>>(runs, ncols, nrows, from);
  return makeUnique<Stage<T, Smallest>>(runs, ncols, nrows, from);
}

template std::unique_ptr<RowSource<std::uint8_t>> runStep(const Step &, int, int,
                                                          RowSource<std::uint8_t> &);
template std::unique_ptr<RowSource<std::int16_t>> runStep(const Step &, int, int,
                                                          RowSource<std::int16_t> &);
template std::unique_ptr<RowSource<int>> runStep(const Step &, int, int, RowSource<int> &);

SEEDFOREST_MULTIVERSION void widenRange(const int *value, int n, ValueRange &range) {
  int least = range.least;
  int most = range.most;
  for (int x = 0; x < n; ++x) {
    least = Smallest::of(least, value[x]);
    most = Largest::of(most, value[x]);
  }
  range = {least, most};
}

SEEDFOREST_MULTIVERSION bool loadRow(const int *value, int n, int base, std::uint8_t *row) {
  return loadAs(value, n, base, row);
}
SEEDFOREST_MULTIVERSION bool loadRow(const int *value, int n, int base, std::int16_t *row) {
  return loadAs(value, n, base, row);
}
bool loadRow(const int *value, int n, int base, int *row) {
  return loadAs(value, n, base, row);
}

SEEDFOREST_MULTIVERSION int storeRow(const std::uint8_t *row, int n, int base, int *value,
                                     int largest) {
  return storeAs(row, n, base, value, largest);
}
SEEDFOREST_MULTIVERSION int storeRow(const std::int16_t *row, int n, int base, int *value,
                                     int largest) {
  return storeAs(row, n, base, value, largest);
}
SEEDFOREST_MULTIVERSION int storeRow(const int *row, int n, int base, int *value, int largest) {
  return storeAs(row, n, base, value, largest);
}

} // namespace seedforest::detail
