// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/detail/labelDifferences.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inline.h"
#include "base/multiversion.h"
#include "ift/label/detail/labelIndex.h"
#include "ift/label/ifContour.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

constexpr int noDifference = -100000;

// The smallest and largest position on a contour.
struct Range {
  int smallest;
  int largest;

  void include(int value) {
    smallest = std::min(smallest, value);
    largest = std::max(largest, value);
  }
};

constexpr Range noRange = {100000, -1}; // positions are expected between these

// The length of the way along a contour of this range from one position to another, the shorter
// way.
int alongContour(const Range &range, int from, int to, bool absolute) {
  std::int64_t d = std::int64_t{to} - from;
  if (absolute && d < 0)
    d = -d;
  const std::int64_t whole = std::int64_t{range.largest} - range.smallest;
  return saturate(d > whole >> 1 ? whole - d : d);
}

// Calls visit(begin, end) for each run of n values; runOf(value) is the test whether a value goes on
// with the run of this one.
template <class RunOf, class Visit>
void forEachRun(const int *value, int n, RunOf runOf, Visit visit) {
  for (int begin = 0; begin < n;) {
    const auto goesOn = runOf(value[begin]);
    int end = begin + 1;
    while (end < n && goesOn(value[end]))
      ++end;
    visit(begin, end);
    begin = end;
  }
}

auto sameAs(int first) {
  return [first](int value) { return value == first; };
}

// The ranges of the labels 1 .. maxValue.
class Ranges {
public:
  Ranges(const imImage *value, const imImage *label)
      : index_(label), maxLabel_(label->maxValue), range_(makeArray<Range>(index_.size())) {
    std::fill_n(range_.get(), index_.size(), noRange);
    forEachRun(label->band[0], label->npixels, sameAs, [&](int begin, int end) {
      if (Range *range = find(label->band[0][begin]))
        for (int p = begin; p < end; ++p)
          range->include(value->band[0][p]);
    });
  }

  Range *find(int label) const {
    return label >= 1 && label <= maxLabel_ ? &range_[index_(label)] : nullptr;
  }

private:
  LabelIndex index_;
  int maxLabel_;
  Array<Range> range_;
};

// Pixels of a row, and one more at each end that is equal to no label and below all of them, in
// place of those that do not exist.
class Row {
public:
  explicit Row(int ncols)
      : ncols_(ncols), memory_(makeArray<int>(3 * (static_cast<std::size_t>(ncols) + 2))) {
    clear();
  }

  int *value() const { return memory_.get() + 1; }
  int *label() const { return value() + ncols_ + 2; }
  int *whole() const { return label() + ncols_ + 2; } // the length of the contour of that label

  void clear() {
    std::fill_n(value() - 1, ncols_ + 2, 0);
    std::fill_n(label() - 1, ncols_ + 2, minInt);
    std::fill_n(whole() - 1, ncols_ + 2, noContour);
  }

  static constexpr int noContour = -1;

private:
  int ncols_;
  Array<int> memory_;
};

// Rows of images of positions and labels.
class LabelledRows {
public:
  LabelledRows(const imImage *values, const imImage *labels)
      : values_(values), labels_(labels), ranges_(values, labels) {}

  void load(int y, Row &row) const {
    const int ncols = labels_->ncols;
    std::copy_n(values_->band[0] + labels_->row[y], ncols, row.value());
    std::copy_n(labels_->band[0] + labels_->row[y], ncols, row.label());
    forEachRun(row.label(), ncols, sameAs, [&](int begin, int end) {
      const Range *range = ranges_.find(row.label()[begin]);
      std::fill(row.whole() + begin, row.whole() + end,
                range == nullptr ? Row::noContour : range->largest - range->smallest);
    });
  }

  const Ranges &ranges() const { return ranges_; }

private:
  const imImage *values_;
  const imImage *labels_;
  Ranges ranges_;
};

// Rows of positions on contours that were numbered one after the other.
class FollowedRows {
public:
  FollowedRows(const imImage *positions, const ifRoots2 &roots)
      : positions_(positions), contourOf_(roots.value),
        contours_(makeArray<Contour>(static_cast<std::size_t>(contourAt(roots.n)) + 1)) {
    contours_[0] = {0, 0, Row::noContour};
    forEachRun(roots.value, roots.n, sameAs, [&](int begin, int end) {
      Range range = noRange;
      range.include(begin + 1);
      range.include(end);
      contours_[roots.value[begin]] = {begin + 1, end, range.largest - range.smallest};
    });
  }

  void load(int y, Row &row) const {
    const int ncols = positions_->ncols;
    const int *position = positions_->band[0] + positions_->row[y];
    std::copy_n(position, ncols, row.value());
    const auto onContourOf = [this](int first) {
      return [contour = contours_[contourAt(first)]](int other) {
        return contour.first <= other && other <= contour.last;
      };
    };
    forEachRun(position, ncols, onContourOf, [&](int begin, int end) {
      const int contour = contourAt(position[begin]);
      std::fill(row.label() + begin, row.label() + end, contour);
      std::fill(row.whole() + begin, row.whole() + end, contours_[contour].whole);
    });
  }

private:
  struct Contour {
    int first;
    int last;
    int whole; // its length
  };

  int contourAt(int position) const { return position > 0 ? contourOf_[position - 1] : 0; }

  const imImage *positions_;
  const int *contourOf_; // by root
  Array<Contour> contours_;
};

// Looks at a row, as lookAtPixel() does but without branches, which would be mispredicted once a
// pixel. Values are so small that differences fit into 32 bits. Returns the largest difference.
template <bool absolute>
SEEDFOREST_INLINE inline int lookAtRow(std::array<const Row *, 3> rows, int ncols,
                                       int *difference) {
  const auto &[above, here, below] = rows;
  const int *values[] = {here->value() + 1, below->value(), above->value(), here->value() - 1};
  const int *labels[] = {here->label() + 1, below->label(), above->label(), here->label() - 1};
  const int *value = here->value();
  const int *label = here->label();
  const int *whole = here->whole();
  int largest = noDifference;
  for (int x = 0; x < ncols; ++x) {
    int most = noDifference;
    int isLower = 0; // than a neighbour before
    for (int k = 0; k < 4; ++k) {
      isLower |= static_cast<int>(label[x] < labels[k][x]);
      int d = values[k][x] - value[x];
      if (absolute)
        d = std::abs(d);
      d = d > whole[x] >> 1 ? whole[x] - d : d;
      const int counts = static_cast<int>(label[x] == labels[k][x]) &
                         static_cast<int>(whole[x] != Row::noContour) & ~isLower;
      most = std::max(most, counts != 0 ? d : noDifference);
    }
    difference[x] = isLower != 0 ? nextToHigher : most;
    largest = std::max(largest, most);
  }
  return largest;
}

SEEDFOREST_MULTIVERSION int lookAtSigned(std::array<const Row *, 3> rows, int ncols,
                                         int *difference) {
  return lookAtRow<false>(rows, ncols, difference);
}
SEEDFOREST_MULTIVERSION int lookAtAbsolute(std::array<const Row *, 3> rows, int ncols,
                                           int *difference) {
  return lookAtRow<true>(rows, ncols, difference);
}

// A row is loaded before the differences of the one above it are written: output may be an image that
// rows are loaded from. Returns the largest difference.
template <class Rows>
int lookAtRows(const Rows &rows, imImage *output, bool absolute) {
  std::array<Row, 3> row = {Row(output->ncols), Row(output->ncols), Row(output->ncols)};
  const auto load = [&](int y) {
    if (y < output->nrows)
      rows.load(y, row[y % 3]);
    else
      row[y % 3].clear();
  };
  int largest = noDifference;
  load(0);
  for (int y = 0; y < output->nrows; ++y) {
    load(y + 1);
    const std::array<const Row *, 3> window = {&row[(y + 2) % 3], &row[y % 3], &row[(y + 1) % 3]};
    int *difference = output->band[0] + output->row[y];
    largest = std::max(largest, absolute ? lookAtAbsolute(window, output->ncols, difference)
                                         : lookAtSigned(window, output->ncols, difference));
  }
  return largest;
}

// Any values. Returns the largest difference.
int lookAtPixels(const Ranges &ranges, const imImage *values, const imImage *labels,
                 imImage *output, bool absolute) {
  const NeighborWalk neighbors(labels, imNeighborhood4);
  const int *value = values->band[0];
  const int *label = labels->band[0];
  int largest = noDifference;
  for (int y = 0, p = 0; y < output->nrows; ++y)
    for (int x = 0; x < output->ncols; ++x, ++p) {
      const Range *range = ranges.find(label[p]);
      int difference = noDifference;
      const bool isLower = neighbors.any(x, y, [&](int q, int) {
        if (label[p] == label[q] && range != nullptr)
          difference = std::max(difference, alongContour(*range, value[p], value[q], absolute));
        return label[p] < label[q];
      });
      largest = std::max(largest, difference);
      output->band[0][p] = isLower ? nextToHigher : difference;
    }
  return largest;
}

} // namespace

void ifLabelDifferences(const imImage *values, const imImage *labels, imImage *output,
                        int absolute) {
  requireBands("ifLabelDifferences", values, 1);
  requireBands("ifLabelDifferences", labels, 1);
  requireBands("ifLabelDifferences", output, 1);
  requireSameSize("ifLabelDifferences", values, labels);
  requireSameSize("ifLabelDifferences", values, output);
  constexpr int narrow = 1 << 28; // differences of such values fit into 32 bits
  const LabelledRows rows(values, labels);
  const int largest = allWithin(values->band[0], values->npixels, -narrow, narrow)
                          ? lookAtRows(rows, output, absolute != 0)
                          : lookAtPixels(rows.ranges(), values, labels, output, absolute != 0);
  output->maxValue = saturate(std::int64_t{largest} + 1);
  std::replace(output->band[0], output->band[0] + output->npixels, nextToHigher, output->maxValue);
}

int seedforest::detail::differencesAlongContours(const ifRoots2 &roots, imImage *image) {
  return lookAtRows(FollowedRows(image, roots), image, false) + 1;
}
