// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/detail/packedTree.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inline.h"
#include "ift/core/detail/forestTransforms.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/lightestFirstQueue.h"
#include "image/detail/framedWords.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace seedforest::detail {

namespace {

// A pixel's word, from the lowest bit: its value, less the smallest one; and the weight that an edge
// to it must be below, 0 once it is settled. The largest weight that the bits can hold also stands
// for a pixel that is not reached. Edges of that weight do not exclude one another then, and the one
// that waits in front is taken.
template <class Word>
struct Packing {
  static constexpr int bits = 4 * sizeof(Word);
  static constexpr int most = (1 << bits) - 1;

  static int value(Word word) { return static_cast<int>(word & most); }
  static int weight(Word word) { return static_cast<int>(word >> bits); }
  static Word pack(int value, int weight) {
    return static_cast<Word>(static_cast<unsigned>(value) | static_cast<unsigned>(weight) << bits);
  }
  static bool isLighter(int offered, Word word) {
    const int toBeat = weight(word);
    return offered < toBeat + static_cast<int>(toBeat == most);
  }
};

// The weights, of the values at both ends.
struct Difference {
  static int between(int a, int b) { return std::abs(a - b); }
};
struct Destination {
  static int between(int, int b) { return b; }
};

// An edge to a pixel, by the displacement along which it leads there.
constexpr int placeBits = 29;
constexpr int mostArcs = 1 << (32 - placeBits);
struct Edge {
  unsigned pixel : placeBits; // its place among the words
  unsigned arc : 32 - placeBits;
};

// `n` is no less than the number of displacements.
template <class Word, class Weight, int n>
class PackedTreeTransform {
public:
  PackedTreeTransform(FramedWords<Word> &words, const NeighborWalk &neighbors)
      : words_(words), arrival_(makeArray<unsigned char>(words.size())) {
    for (int k = 0; k < neighbors.size(); ++k)
      offset_[k] = neighbors.dx(k) + neighbors.dy(k) * words.stride();
  }

  using Entry = Edge;
  Entry entry(int q, int k, int) const {
    return {static_cast<unsigned>(q), static_cast<unsigned>(k)};
  }
  // A settled pixel has no second edge of weight 0, since only a lighter one is added.
  bool isCurrent(Entry entry, int bucket) const {
    return Bits::weight(words_[entry.pixel]) == bucket;
  }
  void settle(Entry entry) {
    words_[entry.pixel] &= Bits::most;
    arrival_[entry.pixel] = entry.arc;
  }
  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int p = entry.pixel;
    const int value = Bits::value(words_[p]);
    for (unsigned rest = lighterAround(p, value); rest != 0; rest &= rest - 1) {
      const int k = std::countr_zero(rest);
      const int q = p + offset_[k];
      offer(q, k, Weight::between(value, Bits::value(words_[q])));
    }
  }
  bool improves(int weight, int q) const { return Bits::isLighter(weight, words_[q]); }
  void conquer(int, int q, int, int weight) {
    words_[q] = Bits::pack(Bits::value(words_[q]), weight);
  }
  int bucket(int weight, int) const { return weight; }
  SEEDFOREST_INLINE void prefetch(int p) const { words_.prefetch(p); }

  /// The displacement by which the pixel at a place was reached, when it is settled.
  int arrivalAt(int place) const { return arrival_[place]; }

private:
  using Bits = Packing<Word>;

  // The displacements, as bits, of the neighbours to which p, which is settled, has a lighter edge.
  // Without branches, which would be unpredictable. A displacement that does not exist is 0, to p.
  unsigned lighterAround(int p, int value) const {
    unsigned bits = 0;
    for (int k = 0; k < n; ++k) {
      const Word other = words_[p + offset_[k]];
      const int weight = Weight::between(value, Bits::value(other));
      bits |= static_cast<unsigned>(Bits::isLighter(weight, other)) << k;
    }
    return bits;
  }

  FramedWords<Word> &words_;
  Array<unsigned char> arrival_;
  std::array<int, static_cast<std::size_t>(n)> offset_ = {};
};

struct Problem {
  const imImage *image;
  const NeighborWalk &neighbors;
  int smallest; // value
  int largest;  // weight
  int *cost;
  int *pred;
};

template <class Word, class Weight, int n>
void grow(const Problem &problem) {
  using Bits = Packing<Word>;
  const imImage *image = problem.image;
  FramedWords<Word> words(
      image, 0, [&problem](int value) { return Bits::pack(value - problem.smallest, Bits::most); });
  PackedTreeTransform<Word, Weight, n> transform(words, problem.neighbors);
  {
    LightestFirstQueue<Edge> queue(problem.largest + 1, image->npixels);
    const int first = words.indexOf(0);
    words[first] = Bits::pack(Bits::value(words[first]), 0);
    queue.append(0, transform.entry(first, 0, 0));
    propagate(transform, queue);
  }
  for (int p = 0, y = 0; y < image->nrows; ++y)
    for (int x = 0, place = words.indexOf(p); x < image->ncols; ++x, ++p, ++place) {
      const bool isReached = Bits::weight(words[place]) == 0;
      const int q =
          isReached && p > 0 ? p - problem.neighbors.offset(transform.arrivalAt(place)) : p;
      problem.pred[p] = q;
      problem.cost[p] = isReached
                            ? weightScale * Weight::between(image->band[0][q], image->band[0][p])
                            : ifInfiniteCost;
    }
  problem.cost[0] = 0;
}

template <class Word, class Weight>
void grow(const Problem &problem) {
  if (problem.neighbors.size() <= 4)
    grow<Word, Weight, 4>(problem);
  else
    grow<Word, Weight, mostArcs>(problem);
}

template <class Weight>
void grow(const Problem &problem) {
  if (problem.largest <= Packing<std::uint16_t>::most)
    grow<std::uint16_t, Weight>(problem);
  else
    grow<std::uint32_t, Weight>(problem);
}

bool areTouching(const NeighborWalk &neighbors) {
  for (int k = 0; k < neighbors.size(); ++k)
    if (std::abs(neighbors.dx(k)) > 1 || std::abs(neighbors.dy(k)) > 1)
      return false;
  return true;
}

} // namespace

bool growPackedTree(const imImage *image, const NeighborWalk &neighbors, ifArcWeightFn arcWeight,
                    int *cost, int *pred) {
  constexpr int largestWeight = (fixedBuckets - 1) / weightScale; // others go round the buckets
  static_assert(largestWeight < LightestFirstQueue<Edge>::mostBuckets);
  const bool isDifference = arcWeight == ifMaxDistance || arcWeight == ifEuclideanDistance;
  if (!(isDifference ? image->nbands == 1 : arcWeight == ifWatershedMetric) ||
      image->band[0] == cost || image->band[0] == pred || neighbors.size() > mostArcs ||
      !areTouching(neighbors) || FramedWords<char>::sizeFor(image) >= 1 << placeBits)
    return false;
  const auto [least, greatest] = rangeOf(image->band[0], image->npixels);
  const int smallest = isDifference ? least : 0;
  const std::int64_t largest = std::int64_t{greatest} - smallest;
  if (least < smallest || largest > largestWeight)
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
