#include "ift/operators/detail/areaLevels.h"

#include "base/arith.h"
#include "ift/core/detail/iftRules.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace seedforest::detail {

namespace {

// Sorts pixels by the digit of `bits` bits, at `shift`, of their values, the largest first; those
// of equal digits keep their order.
void sortByDigit(const int *value, const int *from, int *to, int n, int shift, int bits) {
  const int mask = (1 << bits) - 1;
  std::vector<int> place(std::size_t{1} << bits);
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
  constexpr int mostBits = 11; // so many places are written to in turn without slowing down
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

// Components that grow pixel by pixel until they have a certain area, when they are complete. What
// touches a complete one is complete at once, and has no need of a number; other pixels have the
// number of the component that they were added to. Components that met are linked to one of them,
// which leads them. They are far fewer than pixels, so that what is followed in no order is small.
class GrowingComponents {
public:
  GrowingComponents(const imImage *image, int area)
      : neighbors_(image, imNeighborhood8), area_(area),
        numberOf_(makeZeroedArray<int>(static_cast<std::size_t>(image->npixels))) {
    // Components begin at pixels of which no two are neighbours; number 0 is no component's.
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
    neighbors_.each(p, [&](int q, int) { // without a branch: none could be foretold
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
  static constexpr int absent = 0; // numbers of pixels that have not been added
  static constexpr int late = -1;  // or whose component was complete already
  static constexpr int complete = minInt;

  int find(int number) {
    for (;;) {
      const int up = link_[number];
      if (up < 0)
        return number;
      const int next = link_[up];
      if (next < 0)
        return up;
      number = link_[number] = next;
    }
  }

  NeighborWalk neighbors_;
  int area_;
  int count_ = 0;
  int growing_ = 0;
  Array<int> numberOf_;
  // By number: the one to which a component is linked or, of a leader, minus its area, or complete;
  // and the pixel that completed it, whose value is its level.
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

void findByComponents(const imImage *image, const ifRoots *maxima, int count, int area,
                      AreaLevel *levels) {
  constexpr int lookahead = 16;
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
    components.prefetch(end - next > lookahead ? next[lookahead] : *next);
    components.add(*next);
  }
  forEachMaximum(maxima, count, [&](int label, int p) {
    const int last = components.lastOf(p);
    const bool isReached = last != components.none;
    levels[label] = {value[isReached ? last : end[-1]], isReached};
  });
}

// What waits in a flood's queue: as in MarkedEntries, but marks are labels, which need no clearing
// between floods.
struct FloodEntries {
  using Entry = MarkedEntries::Entry;
  int label = 0;
  Array<int> takenBy; // the label of the flood that took each pixel last

  template <class Arcs>
  void prefetch(const Arcs &, int) const {}
  template <class Rule>
  Entry make(const Rule &, int q, int, int cost) const {
    return {q, cost};
  }
  bool isDone(int q) const { return takenBy[q] == label; }
  void finish(Entry entry) { takenBy[entry.pixel] = label; }
  template <class Rule>
  bool isValid(const Rule &rule, Entry entry, int) const {
    return !isDone(entry.pixel) && rule.costOf(entry.pixel) == entry.cost;
  }
};

// The rule of a flood, and its arcs, of which there are none any more when it has its area. A pixel
// that an earlier flood reached counts as unreached.
struct FloodRule {
  NeighborWalk neighbors;
  const int *value;
  int maxCost;
  int area;
  Array<int> cost;
  Array<int> reachedBy; // the label of the flood that reached each pixel last
  int label = 0;
  int taken = 0;
  int level = 0;
  bool isTaking = false;

  template <class Offer>
  void visit(FloodEntries::Entry entry, Offer offer) const {
    if (isTaking)
      neighbors.each(entry.pixel, offer);
  }
  int weight(int, int q, int) const { return value[q]; }

  int costOf(int p) const { return cost[p]; }
  template <class Arcs>
  void prefetch(const Arcs &, int) const {}
  void finish(FloodEntries::Entry entry) {
    isTaking = taken < area;
    if (!isTaking)
      return;
    ++taken;
    level = entry.cost;
  }
  int extend(int p, int weight) const { return std::min(cost[p], weight); }
  bool improves(int offered, int q) const {
    return offered > (reachedBy[q] == label ? cost[q] : ifInfiniteCostInverted);
  }
  void conquer(int, int q, int, int offered) {
    cost[q] = offered;
    reachedBy[q] = label;
  }
  int bucket(int offered, int) const {
    return circularBucket(Maximising::key(offered, maxCost), std::int64_t{maxCost} + 1);
  }
};

// The flood of one maximum after the other, on the loop of the transforms.
void findByFloods(const imImage *image, const ifRoots *maxima, int count, int maxCost, int area,
                  AreaLevel *levels) {
  const auto n = static_cast<std::size_t>(image->npixels);
  FloodRule rule = {NeighborWalk(image, imNeighborhood8),
                    image->band[0],
                    maxCost,
                    area,
                    makeArray<int>(n),
                    makeZeroedArray<int>(n)};
  FloodEntries entries = {0, makeZeroedArray<int>(n)};
  BucketQueue<FloodEntries::Entry> queue(std::int64_t{maxCost} + 1, image->npixels);
  forEachMaximum(maxima, count, [&](int label, int p) {
    entries.label = rule.label = label;
    rule.taken = 0;
    rule.conquer(p, p, 0, image->band[0][p]);
    queue.append(rule.bucket(rule.cost[p], p), entries.make(rule, p, 0, rule.cost[p]));
    propagate(rule, rule, entries, queue);
    levels[label] = {rule.level, rule.taken == area};
  });
}

} // namespace

Array<AreaLevel> findAreaLevels(const imImage *image, const ifRoots *maxima, int count, int maxCost,
                                int area) {
  Array<AreaLevel> levels = makeArray<AreaLevel>(static_cast<std::size_t>(count) + 1);
  if (area <= 0) {
    std::fill_n(levels.get(), count + 1, AreaLevel{0, true});
  } else if (allWithin(image->band[0], image->npixels, 0, maxInt)) {
    findByComponents(image, maxima, count, area, levels.get());
  } else {
    findByFloods(image, maxima, count, maxCost, area, levels.get());
  }
  return levels;
}

} // namespace seedforest::detail
