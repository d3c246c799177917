// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/reconstructValues.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "ift/core/detail/forestTransforms.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/detail/rowWindow.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <cstdint>

namespace seedforest::detail {

namespace {

template <class Towards>
int better(int a, int b) {
  return Towards::isBetter(a, b) ? a : b;
}

template <class Towards>
int worse(int a, int b) {
  return Towards::isBetter(a, b) ? b : a;
}

// The costs that lower to, or rise to, the reconstruction, each settled once.
template <class Towards>
struct ValuesTransform {
  NeighborWalk neighbors;
  const int *value;
  int *cost;
  int maxCost;

  struct Entry {
    int pixel;
  };
  Entry entry(int q, int, int) const { return {q}; }
  bool isCurrent(Entry entry, int b) const { return bucket(cost[entry.pixel], 0) == b; }
  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    neighbors.each(entry.pixel,
                   [&](int q, int k) { offer(q, k, worse<Towards>(cost[entry.pixel], value[q])); });
  }
  bool improves(int offered, int q) const { return Towards::isBetter(offered, cost[q]); }
  void conquer(int, int q, int, int offered) { cost[q] = offered; }
  int bucket(int offered, int) const { return bucketOf<Towards>(offered, maxCost); }
};

// Extends paths to each row from the one before it, forward or backward, and then along the row.
template <class Towards>
void sweep(const imImage *f, int *cost, bool isForward) {
  const Array<int> reached = makeArray<int>(static_cast<std::size_t>(f->ncols));
  Meter meter(f->npixels);
  const int lastRow = f->nrows - 1;
  const int lastColumn = f->ncols - 1;
  for (int i = 0; i <= lastRow; ++i) {
    const int y = isForward ? i : lastRow - i;
    const int *before = cost + f->row[isForward ? std::max(y - 1, 0) : std::min(y + 1, lastRow)];
    const int *value = f->band[0] + f->row[y];
    int *row = cost + f->row[y];
    meter.advance(f->ncols);
    forEachColumn(f->ncols, [=, out = reached.get()](int left, int x, int right) {
      out[x] = better<Towards>(better<Towards>(before[left], before[right]),
                               better<Towards>(before[x], row[x]));
    });
    int last = reached[isForward ? 0 : lastColumn];
    for (int j = 0; j <= lastColumn; ++j) {
      const int x = isForward ? j : lastColumn - j;
      row[x] = last = worse<Towards>(better<Towards>(last, reached[x]), value[x]);
    }
  }
}

// Puts the pixels that improve a neighbour into the queue.
template <class Towards, class Queue>
void queueImproving(const ValuesTransform<Towards> &transform, const imImage *f, Queue &queue) {
  const int *cost = transform.cost;
  const int never = Towards::direction.best == Extremum::largest ? maxInt : minInt;
  const Array<int> toBeat = makeArray<int>(static_cast<std::size_t>(f->npixels));
  for (int p = 0; p < f->npixels; ++p)
    toBeat[p] = cost[p] == f->band[0][p] ? never : cost[p];
  const Array<int> improves = makeArray<int>(static_cast<std::size_t>(f->ncols));
  for (int y = 0; y < f->nrows; ++y) {
    const RowWindow window(toBeat.get(), f, y);
    const int *row = cost + f->row[y];
    forEachColumn(f->ncols, [=, out = improves.get()](int left, int x, int right) {
      out[x] = window.any(left, x, right, [c = row[x]](int b) { return Towards::isBetter(c, b); });
    });
    for (int x = 0, p = f->row[y]; x < f->ncols; ++x, ++p)
      if (improves[x] != 0)
        queue.append(transform.bucket(cost[p], p), {p});
  }
}

template <class Towards>
void reconstructTowards(const imImage *f, imImage *result, int maxCost) {
  using Transform = ValuesTransform<Towards>;
  int *cost = result->band[0];
  sweep<Towards>(f, cost, true);
  sweep<Towards>(f, cost, false);
  Transform transform = {NeighborWalk(f, imNeighborhood8), f->band[0], cost, maxCost};
  BucketQueue<typename Transform::Entry> queue(std::int64_t{maxCost} + 1, f->npixels);
  queueImproving(transform, f, queue);
  propagate(transform, queue);
}

} // namespace

imImagePtr reconstructValues(const Direction &direction, const imImage *f, const imImage *marker) {
  if (f->nbands < 1 || marker->nbands < 1 || !allWithin(f->band[0], f->npixels, 0, maxInt - 1) ||
      !allWithin(marker->band[0], f->npixels, 0, maxInt - 1))
    return nullptr;
  imImagePtr result = createLike(f, 1, f->type);
  std::copy_n(marker->band[0], f->npixels, result->band[0]);
  const int maxCost = std::max(largestValue(f, 0), largestValue(marker, 0));
  if (direction.best == Extremum::largest)
    reconstructTowards<Maximising>(f, result.get(), maxCost);
  else
    reconstructTowards<Minimising>(f, result.get(), maxCost);
  result->maxValue = largestValue(result.get(), 0);
  return result;
}

} // namespace seedforest::detail
