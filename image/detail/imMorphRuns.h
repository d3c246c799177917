// Internal: dilations and erosions as a stream of rows, in the narrowest element type that holds an
// image's values.
//
// A disc is a stack of horizontal runs, one for each dy. So a row that comes in is first turned
// into its running extrema, one for each half-width that the disc's runs have, every level from
// the one before by two or three reads per pixel; and each row that goes out is the extremum, over
// dy, of row y + dy at the level of dy. Rows come in four at a time, so that a row on its way out
// is taken up once for four of those that it is made of.
//
// Stages are chained: an opening or a whole step of a filter runs through the image once, with only
// some rows of each stage in memory.
#pragma once

#include "base/extremum.h"

#include <cstdint>
#include <memory>

namespace seedforest::detail {

/// Hands out the rows of an image from top to bottom.
template <class T>
class RowSource {
public:
  RowSource() = default;
  RowSource(const RowSource &) = delete;
  RowSource &operator=(const RowSource &) = delete;
  virtual ~RowSource() = default;

  /// Stores the next row, of as many elements as the image has columns.
  virtual void next(T *row) = 0;
};

/// Where the search for an extremum starts. Elements of 8 and 16 bits start at their type's limits
/// instead: they stand for values within these bounds.
inline constexpr int leastStart = -1000000;
inline constexpr int mostStart = 1000000;

/// A dilation (of largest values) or erosion by the disc of squared radius s >= 0, then another by
/// that of t >= 0, which costs less than two steps; the disc of 0 changes nothing.
struct Step {
  Extremum extremum;
  int s;
  int t = 0;
};

/// The rows of an image of ncols x nrows pixels after the step, made as they are asked for.
template <class T>
std::unique_ptr<RowSource<T>> runStep(const Step &step, int ncols, int nrows, RowSource<T> &from);

extern template std::unique_ptr<RowSource<std::uint8_t>> runStep(const Step &, int, int,
                                                                 RowSource<std::uint8_t> &);
extern template std::unique_ptr<RowSource<std::int16_t>> runStep(const Step &, int, int,
                                                                 RowSource<std::int16_t> &);
extern template std::unique_ptr<RowSource<int>> runStep(const Step &, int, int, RowSource<int> &);

struct ValueRange {
  int least;
  int most;
};

/// The range of n values and those that `range` spans.
void widenRange(const int *value, int n, ValueRange &range);

/// Elements that stand for values v as v - base, and back. loadRow() returns whether all fit;
/// storeRow() returns the largest value, or `largest` where that is larger.
bool loadRow(const int *value, int n, int base, std::uint8_t *row);
bool loadRow(const int *value, int n, int base, std::int16_t *row);
bool loadRow(const int *value, int n, int base, int *row);
int storeRow(const std::uint8_t *row, int n, int base, int *value, int largest);
int storeRow(const std::int16_t *row, int n, int base, int *value, int largest);
int storeRow(const int *row, int n, int base, int *value, int largest);

} // namespace seedforest::detail
