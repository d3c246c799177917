// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/detail/packedTree.h"

#include "base/inline.h"
#include "ift/core/detail/forestTransforms.h"
#include "ift/core/detail/iftPropagate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace seedforest::detail {

namespace {

// A pixel's word, from the lowest bit: its value, less the smallest one; whether some of its
// neighbours are outside the image; the displacement of its edge, or one of the names below; and
// the weight that an edge must be below to take its place, 0 once the pixel is settled.
using Word = std::uint32_t;
constexpr int valueBits = 10;
constexpr int arcShift = valueBits + 1;
constexpr int arcBits = 10;
constexpr int weightShift = arcShift + arcBits;
constexpr Word edge = Word{1} << valueBits;
constexpr int largestWeight = (fixedBuckets - 1) / weightScale; // heavier ones go round the buckets
constexpr Word beyondWeights = (Word{1} << (32 - weightShift)) - 1;
constexpr int root = (1 << arcBits) - 2;
constexpr int unreached = (1 << arcBits) - 1;
static_assert(largestWeight < 1 << valueBits);

int valueOf(Word word) {
  return static_cast<int>(word & (edge - 1));
}
int arcOf(Word word) {
  return static_cast<int>(word >> arcShift & unreached);
}
int weightToBeat(Word word) {
  return static_cast<int>(word >> weightShift);
}
Word pack(Word valueAndEdge, int arc, Word weight) {
  return valueAndEdge | static_cast<Word>(arc) << arcShift | weight << weightShift;
}

// The weights, of the values at both ends.
struct Difference {
  static int between(int a, int b) { return std::abs(a - b); }
};
struct Destination {
  static int between(int, int b) { return b; }
};

// `most` is no less than the number of displacements, or 0 where they are many.
template <class Weight, int most>
class PackedTreeTransform {
public:
  PackedTreeTransform(Word *words, const NeighborWalk &neighbors)
      : words_(words), neighbors_(neighbors) {
    for (int k = 0; k < std::min(most, neighbors.size()); ++k)
      offset_[k] = neighbors.offset(k);
  }

  struct Entry {
    int pixel;
  };
  Entry entry(int q, int, int) const { return {q}; }
  // A settled pixel has no second entry of weight 0, since only a lighter edge could have added it.
  bool isCurrent(Entry entry, int bucket) const {
    return weightToBeat(words_[entry.pixel]) == bucket;
  }
  void settle(Entry entry) { words_[entry.pixel] &= (Word{1} << weightShift) - 1; }

  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int p = entry.pixel;
    const Word word = words_[p];
    const auto offerTo = [&](int q, int k) SEEDFOREST_INLINE {
      offer(q, k, Weight::between(valueOf(word), valueOf(words_[q])));
    };
    if (most > 0 && (word & edge) == 0) {
      for (unsigned rest = lighterAround(p, word); rest != 0; rest &= rest - 1) {
        const int k = std::countr_zero(rest);
        offerTo(p + offset_[k], k);
      }
    } else {
      neighbors_.each(p, offerTo);
    }
  }
  bool improves(int weight, int q) const { return weight < weightToBeat(words_[q]); }
  void conquer(int, int q, int k, int weight) {
    words_[q] = pack(words_[q] & (2 * edge - 1), k, static_cast<Word>(weight));
  }
  int bucket(int weight, int) const { return weight; }
  SEEDFOREST_INLINE void prefetch(int p) const { neighbors_.prefetch(words_, p); }

private:
  // The displacements, as bits, of the neighbours to which p, which is settled, has a lighter edge.
  // Without branches, which would be unpredictable. A displacement that does not exist is 0, to p.
  unsigned lighterAround(int p, Word word) const {
    unsigned bits = 0;
    for (int k = 0; k < most; ++k) {
      const Word other = words_[p + offset_[k]];
      const int weight = Weight::between(valueOf(word), valueOf(other));
      bits |= static_cast<unsigned>(weight < weightToBeat(other)) << k;
    }
    return bits;
  }

  Word *words_;
  const NeighborWalk &neighbors_;
  std::array<int, static_cast<std::size_t>(most)> offset_ = {};
};

struct Problem {
  const imImage *image;
  const NeighborWalk &neighbors;
  int smallest; // value
  int largest;  // weight
  int *cost;
  int *pred;
};

template <class Weight, int most>
void grow(const Problem &problem) {
  const imImage *image = problem.image;
  const NeighborWalk &neighbors = problem.neighbors;
  const int *value = image->band[0];
  auto *words = reinterpret_cast<Word *>(problem.pred);
  for (int p = 0, y = 0; y < image->nrows; ++y)
    for (int x = 0; x < image->ncols; ++x, ++p)
      words[p] = pack(static_cast<Word>(value[p] - problem.smallest) |
                          (neighbors.isInner(x, y) ? 0 : edge),
                      unreached, beyondWeights);
  {
    PulledBackQueue<typename PackedTreeTransform<Weight, most>::Entry> queue(
        std::int64_t{problem.largest} + 1, image->npixels);
    words[0] = pack(words[0] & (2 * edge - 1), root, 0);
    queue.append(0, {0});
    PackedTreeTransform<Weight, most> transform(words, neighbors);
    propagate(transform, queue);
  }
  std::array<int, unreached + 1> offset = {};
  for (int k = 0; k < neighbors.size(); ++k)
    offset[k] = neighbors.offset(k);
  for (int p = 0; p < image->npixels; ++p) {
    const int arc = arcOf(words[p]);
    const int q = p - offset[arc];
    problem.pred[p] = q;
    problem.cost[p] =
        arc == unreached ? ifInfiniteCost : weightScale * Weight::between(value[q], value[p]);
  }
  problem.cost[0] = 0;
}

template <class Weight>
void grow(const Problem &problem) {
  if (problem.neighbors.size() <= 4)
    grow<Weight, 4>(problem);
  else if (problem.neighbors.size() <= 8)
    grow<Weight, 8>(problem);
  else
    grow<Weight, 0>(problem);
}

} // namespace

bool growPackedTree(const imImage *image, const NeighborWalk &neighbors, ifArcWeightFn arcWeight,
                    int *cost, int *pred) {
  const bool isDifference = arcWeight == ifMaxDistance || arcWeight == ifEuclideanDistance;
  if (!(isDifference ? image->nbands == 1 : arcWeight == ifWatershedMetric) ||
      neighbors.size() > root || image->band[0] == cost || image->band[0] == pred)
    return false;
  const auto [least, greatest] =
      std::minmax_element(image->band[0], image->band[0] + image->npixels);
  const int smallest = isDifference ? *least : 0;
  const std::int64_t largest = std::int64_t{*greatest} - smallest;
  if (*least < smallest || largest > largestWeight)
    return false;
  ++packedTrees;
  const Problem problem = {image, neighbors, smallest, static_cast<int>(largest), cost, pred};
  if (isDifference)
    grow<Difference>(problem);
  else
    grow<Destination>(problem);
  return true;
}

} // namespace seedforest::detail
