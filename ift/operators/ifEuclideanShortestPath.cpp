// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/ifEuclideanShortestPath.h"

#include "base/arith.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/rootsTools.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

// Steps of 1 and steps of the square root of 2.
struct Length {
  int straight;
  int diagonal;

  bool operator==(const Length &) const = default;

  // excess < saved * sqrt(2), squared without losing the signs. Fits 63 bits.
  bool operator<(const Length &other) const {
    const std::int64_t excess = std::int64_t{straight} - other.straight;
    const std::int64_t saved = std::int64_t{other.diagonal} - diagonal;
    return excess * std::abs(excess) < 2 * saved * std::abs(saved);
  }

  Length after(bool isDiagonal) const {
    return isDiagonal ? Length{straight, diagonal + 1} : Length{straight + 1, diagonal};
  }
  Length before(bool isDiagonal) const {
    return isDiagonal ? Length{straight, diagonal - 1} : Length{straight - 1, diagonal};
  }

  // The integer part. The double is next to it; integers settle which.
  std::int64_t truncated() const {
    const std::int64_t square = 2 * std::int64_t{diagonal} * diagonal;
    auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(square)));
    while (root * root > square)
      --root;
    while (square - root * root > 2 * root)
      ++root;
    return straight + root;
  }
};
constexpr Length infinite = {maxInt, maxInt};
constexpr Length outside = {-1, -1}; // of the mask: shorter than every path, so none leads there

bool isDiagonal(const NeighborWalk &neighbors, int k) {
  return neighbors.dx(k) != 0 && neighbors.dy(k) != 0;
}

// The loop's cost is the kind of the last step, 1 for a diagonal one: with the pixel that was settled
// last, it says how long a path is. No step leads further than the next bucket but one.
class PathTransform {
public:
  static constexpr int nbuckets = 3;

  PathTransform(const NeighborWalk &neighbors, int target, Length *length)
      : neighbors_(neighbors), target_(target), length_(length) {}

  struct Entry {
    int pixel;
    Length length;
  };
  Entry entry(int q, int, int kind) const { return {q, offered_[kind]}; }
  bool isCurrent(Entry entry, int) const { return length_[entry.pixel] == entry.length; }
  void settle(Entry entry) {
    isFound_ |= entry.pixel == target_;
    for (const int kind : {0, 1}) {
      offered_[kind] = entry.length.after(kind == 1);
      bucket_[kind] = circularBucket(offered_[kind].truncated(), nbuckets);
    }
  }
  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    if (!isFound_) // else what waits is left to run out
      neighbors_.each(entry.pixel,
                      [&](int q, int k) { offer(q, k, isDiagonal(neighbors_, k) ? 1 : 0); });
  }
  bool improves(int kind, int q) const { return offered_[kind] < length_[q]; }
  void conquer(int, int q, int, int kind) { length_[q] = offered_[kind]; }
  int bucket(int kind, int) const { return bucket_[kind]; }

private:
  const NeighborWalk &neighbors_;
  int target_;
  Length *length_;
  bool isFound_ = false;
  Length offered_[2] = {};
  int bucket_[2] = {};
};

// The lengths of the paths to `to`, final for all pixels nearer than `from`.
Array<Length> lengthsTo(int to, int from, const imImage *mask, const NeighborWalk &neighbors) {
  Array<Length> length = makeArray<Length>(static_cast<std::size_t>(mask->npixels));
  for (int p = 0; p < mask->npixels; ++p)
    length[p] = mask->band[0][p] > 0 ? infinite : outside;
  if (length[to] == outside || length[from] == outside)
    return length;
  length[to] = {0, 0};
  PathTransform transform(neighbors, from, length.get());
  BucketQueue<PathTransform::Entry> queue(PathTransform::nbuckets, mask->npixels);
  queue.append(0, {to, length[to]});
  propagate(transform, queue);
  return length;
}

// The pixel after p on the path: the first neighbour that a shortest path leads through. That its
// length fits says that it is final.
int nextOnPath(int p, const imImage *mask, const NeighborWalk &neighbors, const Length *length) {
  int next = p;
  neighbors.any(p % mask->ncols, p / mask->ncols, [&](int q, int k) {
    const bool fits = length[q] == length[p].before(isDiagonal(neighbors, k));
    next = fits ? q : p;
    return fits;
  });
  return next;
}

int squaredDistance(int p, int q, int ncols) {
  const std::int64_t dx = p % ncols - q % ncols;
  const std::int64_t dy = p / ncols - q / ncols;
  return saturate(dx * dx + dy * dy);
}

} // namespace

ifRoots *ifEuclideanShortestPath(const imImage *mask, int from, int to) {
  const char *operation = "ifEuclideanShortestPath";
  requireBands(operation, mask, 1);
  requirePixel(operation, mask, from);
  requirePixel(operation, mask, to);
  const NeighborWalk neighbors(mask, imNeighborhood8);
  const Array<Length> length = lengthsTo(to, from, mask, neighbors);
  if (length[from] == infinite || length[from] == outside || length[to] == outside)
    return createRoots(0).release();
  ifRootsPtr path = createRoots(length[from].straight + length[from].diagonal + 1);
  for (int i = 0, p = from; i < path->n; ++i) {
    path->pixel[i] = p;
    path->label[i] = i + 1;
    path->value[i] = squaredDistance(p, from, mask->ncols);
    p = nextOnPath(p, mask, neighbors, length.get());
  }
  return path.release();
}
