// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Internal: dilations and erosions as a stream of rows, in the narrowest element type that holds an
// image's values.
//
// A disc is a stack of horizontal runs, one for each dy. Each input row is turned into its running
// extrema, one level for each half-width among the disc's runs; a level comes from the one before
// by two or three reads per pixel. Output row y is the extremum, over dy, of input row y + dy at
// the level of dy. Input rows are read in batches of four, so that an output row is loaded and
// stored once for four of them.
//
// The running extrema of van Herk ("A fast algorithm for local minimum and maximum filters", 1992)
// and of Gil and Werman ("Computing 2-D min, median, and max filters", 1993) take constant time per
// pixel for one width. A disc needs many widths, and here each is one step from the next narrower.
//
// Stages are chained: an opening, or a whole step of an alternating filter, passes over the image
// once, with only some rows of each stage in memory.
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

/// The values at which the search for an extremum starts. Elements of 8 and 16 bits, which stand
/// for values within these bounds, start at their type's limits instead.
inline constexpr int leastStart = -1000000;
inline constexpr int mostStart = 1000000;

/// A dilation (largest) or erosion (smallest) by the disc of squared radius s >= 0, then the same
/// by that of t >= 0, which is faster than two steps; t = 0 changes nothing.
struct Step {
  Extremum extremum;
  int s;
  int t = 0;
};

/// The rows of an image of ncols x nrows pixels after the step, each computed when it is asked for.
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

/// Widens `range` so that it spans n more values.
void widenRange(const int *value, int n, ValueRange &range);

/// Convert values v to elements v - base, and back. loadRow() returns whether all fit; storeRow()
/// returns the largest value, or `largest` where that is larger.
bool loadRow(const int *value, int n, int base, std::uint8_t *row);
bool loadRow(const int *value, int n, int base, std::int16_t *row);
bool loadRow(const int *value, int n, int base, int *row);
int storeRow(const std::uint8_t *row, int n, int base, int *value, int largest);
int storeRow(const std::int16_t *row, int n, int base, int *value, int largest);
int storeRow(const int *row, int n, int base, int *value, int largest);

} // namespace seedforest::detail
