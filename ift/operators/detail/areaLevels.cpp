// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/detail/areaLevels.h"

#include "base/arith.h"
#include "base/findRoot.h"
#include "base/report.h"
#include "ift/core/detail/forestTransforms.h"
#include "ift/operators/detail/areaFlood.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <numeric>
#include <utility>

namespace seedforest::detail {

namespace {

// One pass of a radix sort: sorts pixels by the `bits` bits at `shift` of their values, the largest
// first; equal ones keep their order.
void sortByDigit(const int *value, const int *from, int *to, int n, int shift, int bits) {
  const int mask = (1 << bits) - 1;
  Vector<int> place(std::size_t{1} << bits);
  for (int p = 0; p < n; ++p)
    ++place[value[p] >> shift & mask];
  int before = 0;
  for (auto entry = place.rbegin(); entry != place.rend(); ++entry)
    before += std::exchange(*entry, before);
  for (int i = 0; i < n; ++i)
    to[place[value[from[i]] >> shift & mask]++] = from[i];
}

// The pixels of an image by falling value, which is at least 0; equal ones in raster order.
Array<int> sortByFallingValue(const imImage *image) {
  constexpr int mostBits = 11; // with more bits, the scattered writes miss the cache
  const auto n = static_cast<std::size_t>(image->npixels);
  const int bits = std::bit_width(static_cast<unsigned>(largestValue(image, 0)));
  const int passes = (bits + mostBits - 1) / mostBits;
  Array<int> sorted = makeArray<int>(n);
  std::iota(sorted.get(), sorted.get() + n, 0);
  for (int pass = 0; pass < passes; ++pass) {
    Array<int> next = makeArray<int>(n);
    sortByDigit(image->band[0], sorted.get(), next.get(), image->npixels, pass * bits / passes,
                (pass + 1) * bits / passes - pass * bits / passes);
    sorted = std::move(next);
  }
  return sorted;
}

// Components that grow by pixels of falling value. One with `area` pixels is complete; a pixel that
// touches a complete component belongs to it, gets the number `late`, and completes the growing
// components that it touches. Other pixels get the number of the component to which they are added.
// Components that meet are linked to one of them, their leader. There are far fewer components than
// pixels, so the tables that are accessed at random stay in the cache.
class GrowingComponents {
public:
  GrowingComponents(const imImage *image, int area)
      : neighbors_(image, imNeighborhood8), area_(area),
        numberOf_(makeZeroedArray<int>(static_cast<std::size_t>(image->npixels))) {
    // No two components begin at neighbouring pixels, which bounds their number. Number 0 is not
    // used.
    const auto most = (std::size_t(image->ncols) + 1) / 2 * ((std::size_t(image->nrows) + 1) / 2);
    link_ = makeArray<int>(most + 1);
    last_ = makeArray<int>(most + 1);
  }

  void prefetch(int p) const { neighbors_.prefetch(numberOf_.get(), p); }

  // Adds a pixel, whose value is no larger than those of all before.
  void add(int p) {
    std::array<int, 8> met; // numbers of components around p
    int n = 0;
    bool isComplete = false;
    neighbors_.each(p, [&](int q, int) { // without branches, which would be unpredictable
      const int number = numberOf_[q];
      isComplete |= number == late;
      met[n] = number;
      n += number > absent ? 1 : 0;
    });
    int area = 1;
    int own = absent;
    for (int i = 0; i < n; ++i) {
      const int leader = find(met[i]);
      if (link_[leader] == complete) {
        isComplete = true;
      } else if (leader != own) {
        area -= link_[leader];
        if (own != absent) {
          link_[own] = leader;
          --growing_;
        }
        own = leader;
      }
    }
    if (own == absent) {
      if (isComplete) {
        numberOf_[p] = late;
        return;
      }
      own = ++count_;
      ++growing_;
    }
    numberOf_[p] = isComplete ? late : own;
    if (isComplete || area >= area_) {
      link_[own] = complete;
      last_[own] = p;
      --growing_;
    } else {
      link_[own] = -area;
    }
  }

  // Components that are not complete.
  int growing() const { return growing_; }

  // The pixel that completed the component of p; none while it is not complete.
  int lastOf(int p) {
    if (numberOf_[p] == late)
      return p;
    const int leader = find(numberOf_[p]);
    return link_[leader] == complete ? last_[leader] : none;
  }
  static constexpr int none = -1;

private:
  static constexpr int absent = 0; // the number of a pixel that has not been added
  static constexpr int late = -1;  // or that touched a complete component
  static constexpr int complete = minInt;

  int find(int number) {
    int *link = link_.get();
    return findRoot(
        number, [link](int i) { return link[i] < 0 ? i : link[i]; },
        [link](int i, int leader) { link[i] = leader; });
  }

  NeighborWalk neighbors_;
  int area_;
  int count_ = 0;
  int growing_ = 0;
  Array<int> numberOf_;
  // By number. link_: the component to which this one is linked; for a leader, minus its area, or
  // `complete`. last_: the pixel that completed it, whose value is its level.
  Array<int> link_;
  Array<int> last_;
};

// Calls look(label, first root's pixel) for the labels 1 .. count in turn.
template <class Look>
void forEachMaximum(const ifRoots *maxima, int count, Look look) {
  int label = 0;
  for (int i = 0; label < count; ++i)
    if (maxima->label[i] > label)
      look(++label, maxima->pixel[i]);
}

void findByDepthFirstFlood(const imImage *image, const ifRoots *maxima, int count, int area,
                           AreaLevel *levels) {
  AreaFlood flood(image, std::min(area, image->npixels)); // all pixels, where there are fewer
  flood.run();
  const bool isReached = area <= image->npixels;
  forEachMaximum(maxima, count, [&](int label, int p) {
    levels[label] = {flood.levelOf(p), isReached};
  });
}

void findByComponents(const imImage *image, const ifRoots *maxima, int count, int area,
                      AreaLevel *levels) {
  constexpr int lookahead = 16;
  constexpr int stride = 4096;
  Meter meter(image->npixels);
  GrowingComponents components(image, area);
  const Array<int> sorted = sortByFallingValue(image);
  const int *value = image->band[0];
  int lowestStart = maxInt;
  forEachMaximum(maxima, count, [&](int, int p) { lowestStart = std::min(lowestStart, value[p]); });
  const int *begin = sorted.get();
  const int *end = begin + image->npixels;
  const int *lowerPixels =
      std::partition_point(begin, end, [=](int p) { return value[p] >= lowestStart; });
  for (const int *next = begin; next != end; ++next) {
    if (components.growing() == 0 && next >= lowerPixels)
      break; // every maximum has its level
    if ((next - begin) % stride == stride - 1)
      meter.advance(stride);
    components.prefetch(end - next > lookahead ? next[lookahead] : *next);
    components.add(*next);
  }
  forEachMaximum(maxima, count, [&](int label, int p) {
    const int last = components.lastOf(p);
    const bool isReached = last != components.none;
    levels[label] = {value[isReached ? last : end[-1]], isReached};
  });
}

// Runs one flood after the other. Pixels reached and settled are marked with the flood's label, so
// nothing is cleared in between. A flood that has taken its area makes no more offers.
class FloodTransform {
public:
  FloodTransform(const imImage *image, int maxCost, int area)
      : neighbors_(image, imNeighborhood8), value_(image->band[0]), maxCost_(maxCost), area_(area),
        cost_(makeArray<int>(static_cast<std::size_t>(image->npixels))),
        reachedBy_(makeZeroedArray<int>(static_cast<std::size_t>(image->npixels))),
        settledBy_(makeZeroedArray<int>(static_cast<std::size_t>(image->npixels))) {}

  /// Begins the flood of a label at pixel p.
  void start(int label, int p, BucketQueue<CostedEntry> &queue) {
    label_ = label;
    taken_ = 0;
    conquer(p, p, 0, value_[p]);
    queue.append(bucket(cost_[p], p), entry(p, 0, cost_[p]));
  }

  /// The lowest value on the way to the pixel settled last.
  AreaLevel level() const { return {level_, taken_ == area_}; }

  using Entry = CostedEntry;
  Entry entry(int q, int, int cost) const { return {q, cost}; }
  bool isCurrent(Entry entry, int) const {
    return settledBy_[entry.pixel] != label_ && cost_[entry.pixel] == entry.cost;
  }
  void settle(Entry entry) {
    settledBy_[entry.pixel] = label_;
    isTaking_ = taken_ < area_;
    if (!isTaking_)
      return;
    ++taken_;
    level_ = entry.cost;
  }
  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    if (!isTaking_)
      return;
    neighbors_.each(entry.pixel, [&](int q, int k) {
      if (settledBy_[q] != label_)
        offer(q, k, std::min(entry.cost, value_[q]));
    });
  }
  bool improves(int cost, int q) const {
    return cost > (reachedBy_[q] == label_ ? cost_[q] : ifInfiniteCostInverted);
  }
  void conquer(int, int q, int, int cost) {
    cost_[q] = cost;
    reachedBy_[q] = label_;
  }
  int bucket(int cost, int) const { return bucketOf<Maximising>(cost, maxCost_); }

private:
  NeighborWalk neighbors_;
  const int *value_;
  int maxCost_;
  int area_;
  Array<int> cost_;
  Array<int> reachedBy_; // the label of the flood that reached each pixel last
  Array<int> settledBy_;
  int label_ = 0;
  int taken_ = 0;
  int level_ = 0;
  bool isTaking_ = false;
};

void findByFloods(const imImage *image, const ifRoots *maxima, int count, int maxCost, int area,
                  AreaLevel *levels) {
  FloodTransform transform(image, maxCost, area);
  BucketQueue<CostedEntry> queue(std::int64_t{maxCost} + 1, image->npixels);
  forEachMaximum(maxima, count, [&](int label, int p) {
    transform.start(label, p, queue);
    propagate(transform, queue);
    levels[label] = transform.level();
  });
}

} // namespace

Array<AreaLevel> findAreaLevels(const imImage *image, const ifRoots *maxima, int count, int maxCost,
                                int area) {
  Array<AreaLevel> levels = makeArray<AreaLevel>(static_cast<std::size_t>(count) + 1);
  if (area <= 0) {
    std::fill_n(levels.get(), count + 1, AreaLevel{0, true});
  } else if (AreaFlood::canNumber(image) &&
             allWithin(image->band[0], image->npixels, 0, AreaFlood::highestValue)) {
    findByDepthFirstFlood(image, maxima, count, area, levels.get());
  } else if (allWithin(image->band[0], image->npixels, 0, maxInt)) {
    findByComponents(image, maxima, count, area, levels.get());
  } else {
    findByFloods(image, maxima, count, maxCost, area, levels.get());
  }
  return levels;
}

} // namespace seedforest::detail
