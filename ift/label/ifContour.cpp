// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/ifContour.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inline.h"
#include "base/multiversion.h"
#include "base/report.h"
#include "base/require.h"
#include "ift/label/detail/borderPixels.h"
#include "ift/label/detail/labelIndex.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

void ifRegionsToContours(const imImage *labels, imImage *output) {
  requireBands("ifRegionsToContours", labels, 1);
  requireBands("ifRegionsToContours", output, 1);
  requireSameSize("ifRegionsToContours", labels, output);
  forEachBorderPixel(labels, imNeighborhood4, [output](int p) { output->band[0][p] = 255; });
  output->maxValue = 255;
}

int labelContours(const imImage *contour, imImage *labels) {
  requireBands("labelContours", contour, 1);
  requireBands("labelContours", labels, 1);
  requireSameSize("labelContours", contour, labels);
  constexpr int straightSteps = 4; // the diagonal ones follow them
  const NeighborWalk neighbors(contour, imNeighborhood8);
  const int *value = contour->band[0];
  int *label = labels->band[0];
  const auto npixels = static_cast<std::size_t>(contour->npixels);
  const Array<bool> visited = makeZeroedArray<bool>(npixels);
  const Array<int> fifo = makeArray<int>(npixels); // every pixel visited, in order
  std::int64_t n = 0;                              // the last number; curves' ends skip numbers
  int count = 0;
  const auto visit = [&](int p) {
    visited[p] = true;
    fifo[count++] = p;
    label[p] = saturate(++n);
  };
  int next = 0; // the first in the FIFO whose neighbors have not been looked at
  for (int p = 0; p < contour->npixels; ++p) {
    if (value[p] <= 0 || visited[p])
      continue;
    visit(p);
    while (next < count) {
      const int q = fifo[next++];
      bool straight = false;
      neighbors.each(q, [&](int r, int k) {
        if (value[r] == 0 || visited[r] || (straight && k >= straightSteps))
          return;
        visit(r);
        straight = straight || k < straightSteps;
      });
    }
    n += 2;
    label[fifo[count - 1]] = saturate(n);
  }
  labels->maxValue = saturate(n);
  return count;
}

namespace {

// A step of a contour, and the positions beside the pixel that it leads to, relative to that pixel,
// at which shape and background are required.
struct Step {
  int dx, dy;
  int shapeX, shapeY;
  int groundX, groundY;
};

constexpr int nSteps = 8;
constexpr Step steps[nSteps] = {
    {0, -1, -1, 0, 1, 0}, // above
    {0, 1, 1, 0, -1, 0},  // below
    {1, 0, 0, -1, 0, 1},  // right
    {-1, 0, 0, 1, 0, -1}, // left
    {1, -1, -1, 0, 0, 1}, // above right
    {1, 1, 0, -1, -1, 0}, // below right
    {-1, -1, 0, 1, 1, 0}, // above left
    {-1, 1, 1, 0, 0, -1}, // below left
};

// The value of pixel (x, y); background outside the image.
int valueAt(const imImage *image, std::int64_t x, std::int64_t y) {
  const bool inside = x >= 0 && x < image->ncols && y >= 0 && y < image->nrows;
  return inside ? image->band[0][image->row[y] + x] : 0;
}

// Whether a contour goes on to the pixel (x, y), `offset` pixels further in raster order. In images
// of one or two columns several steps have the same offset: the first in the table decides.
bool goesOn(const imImage *mask, const imImage *shape, std::int64_t x, std::int64_t y,
            std::int64_t offset) {
  if (valueAt(mask, x, y) < 1)
    return false;
  const Step *step = std::find_if(steps, steps + nSteps, [&](const Step &s) {
    return s.dx + std::int64_t{s.dy} * shape->ncols == offset;
  });
  return step != steps + nSteps && valueAt(shape, x + step->shapeX, y + step->shapeY) > 0 &&
         valueAt(shape, x + step->groundX, y + step->groundY) == 0;
}

} // namespace

void ifContourFollow(ifRoots2 *record, int *count, int contour, imImage *mask, const imImage *shape,
                     int p, const int *displacements) {
  requireGiven("ifContourFollow", "roots record", record);
  requireGiven("ifContourFollow", "count", count);
  requireBands("ifContourFollow", mask, 1);
  requireBands("ifContourFollow", shape, 1);
  requireSameSize("ifContourFollow", mask, shape);
  requirePixel("ifContourFollow", mask, p);
  requireGiven("ifContourFollow", "list of displacements", displacements);
  struct Place {
    int pixel;
    int tried; // displacements
  };
  Stack<Place> path; // from p to the pixel being followed
  const auto append = [&](int q) {
    if (*count < 0 || *count >= mask->npixels)
      fatal("ifContourFollow: no entry %d in a record of %d\n", *count, mask->npixels);
    record->pixel[*count] = q;
    record->value[*count] = contour;
    record->label[*count] = *count + 1;
    ++*count;
    mask->band[0][q] = 0;
    path.push({q, 0});
  };
  append(p);
  while (!path.isEmpty()) {
    Place &place = path.top();
    if (place.tried == nSteps) {
      path.pop();
      continue;
    }
    const std::int64_t dx = displacements[2 * place.tried];
    const std::int64_t dy = displacements[2 * place.tried + 1];
    ++place.tried;
    const std::int64_t x = place.pixel % mask->ncols + dx;
    const std::int64_t y = place.pixel / mask->ncols + dy;
    const std::int64_t offset = dx + dy * mask->ncols;
    if (goesOn(mask, shape, x, y, offset))
      append(static_cast<int>(place.pixel + offset));
  }
}

namespace {

constexpr int noDifference = -100000;
constexpr int nextToHigher = maxInt; // a marker until the largest difference is known

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

// Calls visit(begin, end) for each run of pixels of one label.
template <class Visit>
void forEachRun(const int *label, int begin, int end, Visit visit) {
  while (begin < end) {
    int p = begin + 1;
    while (p < end && label[p] == label[begin])
      ++p;
    visit(begin, p);
    begin = p;
  }
}

// The ranges of the labels 1 .. maxValue.
class Ranges {
public:
  Ranges(const imImage *value, const imImage *label)
      : index_(label), maxLabel_(label->maxValue), range_(makeArray<Range>(index_.size())) {
    std::fill_n(range_.get(), index_.size(), noRange);
    forEachRun(label->band[0], 0, label->npixels, [&](int begin, int end) {
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

// The differences at a pixel, and the largest of all.
class Differences {
public:
  Differences(const imImage *values, const imImage *labels, imImage *output, bool absolute)
      : value_(values->band[0]), label_(labels->band[0]), difference_(output->band[0]),
        absolute_(absolute), ranges_(values, labels), neighbors_(labels, imNeighborhood4) {}

  void look(int x, int y, int p) {
    const Range *range = ranges_.find(label_[p]);
    int difference = noDifference;
    neighbors_.any(x, y, [&](int q, int) {
      if (label_[p] < label_[q])
        difference = nextToHigher;
      else if (label_[p] == label_[q] && range != nullptr)
        difference = std::max(difference, alongContour(*range, value_[p], value_[q], absolute_));
      else
        return false;
      if (difference == nextToHigher)
        return true;
      largest_ = std::max(largest_, difference);
      return false;
    });
    difference_[p] = difference;
  }

  /// Whether the differences of these values fit into 32 bits, so that lookAtRow() may be called.
  bool areNarrow(int npixels) const { return allWithin(value_, npixels, -narrow, narrow); }

  /// All pixels of row y but the first and the last; not of the image's first or last row.
  void lookAtRow(int y, int ncols, int *whole) {
    const int row = y * ncols;
    forEachRun(label_, row, row + ncols, [&](int begin, int end) {
      const Range *range = ranges_.find(label_[begin]);
      std::fill(whole + begin - row, whole + end - row,
                range == nullptr ? noRangeAtAll : range->largest - range->smallest);
    });
    const Row data = {value_ + row, label_ + row, whole, difference_ + row, ncols};
    largest_ = std::max(largest_, absolute_ ? lookAtAbsolute(data) : lookAtSigned(data));
  }

  int largest() const { return largest_; }

private:
  static constexpr int narrow = 1 << 28;
  static constexpr int noRangeAtAll = -1;

  struct Row {
    const int *value;
    const int *label;
    const int *whole; // the length of the contour of that label
    int *difference;
    int ncols;
  };
  static int lookAtSigned(const Row &row);
  static int lookAtAbsolute(const Row &row);

  // The same as look() without branches, which would be mispredicted once a pixel.
  template <bool absolute>
  SEEDFOREST_INLINE static int lookAt(const Row &row) {
    const int ncols = row.ncols;
    int largest = noDifference;
    for (int x = 1; x < ncols - 1; ++x) {
      const int label = row.label[x];
      const int value = row.value[x];
      const int whole = row.whole[x];
      int difference = noDifference;
      int isLower = 0; // than a neighbour before
      const auto compare = [&](int q) SEEDFOREST_INLINE {
        isLower |= static_cast<int>(label < row.label[q]);
        int d = row.value[q] - value;
        if (absolute)
          d = std::abs(d);
        d = d > whole >> 1 ? whole - d : d;
        const int counts = static_cast<int>(label == row.label[q]) &
                           static_cast<int>(whole != noRangeAtAll) & ~isLower;
        difference = std::max(difference, counts != 0 ? d : noDifference);
      };
      compare(x + 1);
      compare(x + ncols);
      compare(x - ncols);
      compare(x - 1);
      row.difference[x] = isLower != 0 ? nextToHigher : difference;
      largest = std::max(largest, difference);
    }
    return largest;
  }

  const int *value_;
  const int *label_;
  int *difference_;
  bool absolute_;
  int largest_ = noDifference;
  Ranges ranges_;
  NeighborWalk neighbors_;
};

SEEDFOREST_MULTIVERSION int Differences::lookAtSigned(const Row &row) {
  return lookAt<false>(row);
}
SEEDFOREST_MULTIVERSION int Differences::lookAtAbsolute(const Row &row) {
  return lookAt<true>(row);
}

} // namespace

void ifLabelDifferences(const imImage *values, const imImage *labels, imImage *output,
                        int absolute) {
  requireBands("ifLabelDifferences", values, 1);
  requireBands("ifLabelDifferences", labels, 1);
  requireBands("ifLabelDifferences", output, 1);
  requireSameSize("ifLabelDifferences", values, labels);
  requireSameSize("ifLabelDifferences", values, output);
  Differences differences(values, labels, output, absolute != 0);
  const bool areNarrow = differences.areNarrow(values->npixels);
  const int lastRow = output->nrows - 1;
  const int lastColumn = output->ncols - 1;
  const Array<int> whole = makeArray<int>(static_cast<std::size_t>(output->ncols));
  for (int y = 0; y <= lastRow; ++y) {
    const bool isInner = areNarrow && y > 0 && y < lastRow && lastColumn > 0;
    if (isInner)
      differences.lookAtRow(y, output->ncols, whole.get());
    for (int x = 0; x <= lastColumn; x += isInner ? lastColumn : 1)
      differences.look(x, y, output->row[y] + x);
  }
  output->maxValue = saturate(std::int64_t{differences.largest()} + 1);
  std::replace(output->band[0], output->band[0] + output->npixels, nextToHigher, output->maxValue);
}
