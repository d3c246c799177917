// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/ifContour.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "base/require.h"
#include "ift/label/detail/borderPixels.h"
#include "ift/label/detail/labelIndex.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <cstdint>

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

// The ranges of the labels 1 .. maxValue.
class Ranges {
public:
  Ranges(const imImage *value, const imImage *label)
      : index_(label), maxLabel_(label->maxValue), range_(makeArray<Range>(index_.size())) {
    std::fill_n(range_.get(), index_.size(), noRange);
    for (int p = 0; p < label->npixels; ++p)
      if (Range *range = find(label->band[0][p]))
        range->include(value->band[0][p]);
  }

  Range *find(int label) const {
    return label >= 1 && label <= maxLabel_ ? &range_[index_(label)] : nullptr;
  }

private:
  LabelIndex index_;
  int maxLabel_;
  Array<Range> range_;
};

} // namespace

void ifLabelDifferences(const imImage *values, const imImage *labels, imImage *output,
                        int absolute) {
  requireBands("ifLabelDifferences", values, 1);
  requireBands("ifLabelDifferences", labels, 1);
  requireBands("ifLabelDifferences", output, 1);
  requireSameSize("ifLabelDifferences", values, labels);
  requireSameSize("ifLabelDifferences", values, output);
  const Ranges ranges(values, labels);
  const NeighborWalk neighbors(labels, imNeighborhood4);
  const int *value = values->band[0];
  const int *label = labels->band[0];
  int *difference = output->band[0];
  int largest = noDifference;
  int p = 0;
  for (int y = 0; y < output->nrows; ++y)
    for (int x = 0; x < output->ncols; ++x, ++p) {
      const Range *range = ranges.find(label[p]);
      difference[p] = noDifference;
      neighbors.any(x, y, [&](int q, int) {
        if (label[p] < label[q])
          difference[p] = nextToHigher;
        else if (label[p] == label[q] && range != nullptr)
          difference[p] =
              std::max(difference[p], alongContour(*range, value[p], value[q], absolute != 0));
        else
          return false;
        if (difference[p] == nextToHigher)
          return true;
        largest = std::max(largest, difference[p]);
        return false;
      });
    }
  output->maxValue = saturate(std::int64_t{largest} + 1);
  std::replace(difference, difference + output->npixels, nextToHigher, output->maxValue);
}
