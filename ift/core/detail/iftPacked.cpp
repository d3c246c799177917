// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/iftPacked.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/findRoot.h"
#include "base/inline.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/ifCost.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace seedforest::detail {

namespace {

// A pixel's word, from the lowest bit: its value or, once it is reached, its cost; whether some of
// its neighbours are outside the image; the displacement by which it was reached, in 7 bits.
template <class Word>
struct Packing {
  static constexpr int edgeShift = 8 * sizeof(Word) - 8;
  static constexpr int arcShift = edgeShift + 1;
  static constexpr Word valueMask = (Word{1} << edgeShift) - 1;
  static constexpr Word edge = Word{1} << edgeShift;
  static constexpr int seed = 126;
  static constexpr int unreached = 127;

  static Word pack(int value, int arc, Word edgeBit) {
    return static_cast<Word>(static_cast<Word>(value) | static_cast<Word>(arc) << arcShift |
                             edgeBit);
  }
  static int value(Word word) { return static_cast<int>(word & valueMask); }
  static int arc(Word word) { return static_cast<int>(word >> arcShift); }
  static bool mayBeConquered(Word word) { return word >= Word{seed} << arcShift; }
};

// Words in the memory of a band, which later receives its values: read and written as bytes.
template <class Word>
class WordsInBand {
public:
  explicit WordsInBand(int *band) : bytes_(reinterpret_cast<unsigned char *>(band)) {}

  unsigned char *at(int p) const { return bytes_ + sizeof(Word) * static_cast<std::size_t>(p); }
  Word operator[](int p) const {
    Word word;
    std::memcpy(&word, at(p), sizeof(Word));
    return word;
  }
  void set(int p, Word word) const { std::memcpy(at(p), &word, sizeof(Word)); }

private:
  unsigned char *bytes_;
};

// Paths never get better as they grow, and pixels are settled by costs that never improve. So the
// first path to a pixel is its best, and only a seed can be conquered while it waits, by a path
// that is better than its own cost. Neighbours that the predecessor shares need no offer.
template <class Word, bool local>
class PackedTransform {
public:
  PackedTransform(WordsInBand<Word> words, const PackedProblem &problem)
      : words_(words), seedCost_(problem.cost), neighbors_(problem.neighbors), onward_(neighbors_),
        isSmall_(neighbors_.size() <= most) {
    for (int k = 0; isSmall_ && k < neighbors_.size(); ++k)
      offset_[k] = neighbors_.offset(k);
  }

  struct Entry {
    int pixel;
  };
  Entry entry(int q, int, int) const { return {q}; }
  bool isCurrent(Entry entry, int bucket) const { return costOf(entry.pixel) == bucket; }

  void settle(Entry entry) {
    const int p = entry.pixel;
    if (const Word word = words_[p]; Bits::arc(word) == Bits::seed)
      words_.set(p, Bits::pack(seedCost_[p], Bits::seed, word & Bits::edge));
  }

  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int p = entry.pixel;
    const Word word = words_[p];
    const int cost = Bits::value(word);
    const auto extendTo = [&](int q, int k) SEEDFOREST_INLINE {
      offer(q, k, extend(cost, Bits::value(words_[q])));
    };
    if (isSmall_ && (word & Bits::edge) == 0) {
      for (unsigned rest = conquerableAround(p); rest != 0; rest &= rest - 1) {
        const int k = std::countr_zero(rest);
        extendTo(p + offset_[k], k);
      }
    } else {
      const int k = Bits::arc(word);
      onward_.each(p, k == Bits::seed ? UnsharedNeighborWalk::start : k, extendTo);
    }
  }
  bool improves(int cost, int q) const {
    const Word word = words_[q];
    return Bits::mayBeConquered(word) &&
           cost < (Bits::arc(word) == Bits::seed ? seedCost_[q] : ifInfiniteCost);
  }
  void conquer(int, int q, int k, int cost) {
    words_.set(q, Bits::pack(cost, k, words_[q] & Bits::edge));
  }
  int bucket(int cost, int) const { return cost; }
  SEEDFOREST_INLINE void prefetch(int p) const {
    neighbors_.prefetchAround(p, [this](int q) SEEDFOREST_INLINE { return words_.at(q); });
  }

private:
  using Bits = Packing<Word>;
  static constexpr int most = 8;

  // The displacements, as bits, of the neighbours of p that may be conquered. Without branches,
  // which would be unpredictable. A displacement that does not exist is 0, to p, which is never improved.
  unsigned conquerableAround(int p) const {
    unsigned bits = 0;
    for (int k = 0; k < most; ++k)
      bits |= static_cast<unsigned>(Bits::mayBeConquered(words_[p + offset_[k]])) << k;
    return bits;
  }

  int costOf(int p) const {
    const Word word = words_[p];
    return Bits::arc(word) == Bits::seed ? seedCost_[p] : Bits::value(word);
  }
  static int extend(int cost, int weight) {
    if constexpr (local)
      return cost < weight ? ifInfiniteCost : cost;
    else
      return std::max(cost, weight);
  }

  WordsInBand<Word> words_;
  const int *seedCost_;
  const NeighborWalk &neighbors_;
  UnsharedNeighborWalk onward_;
  bool isSmall_;
  std::array<int, most> offset_ = {};
};

// Gives each pixel the label at the start of its path. `up` holds predecessors, and is changed to
// those starts. In two passes each pixel leaps over two others, most of which have leapt before;
// that leaves one pixel in a hundred to be walked.
void handDown(int npixels, int *up, int *label) {
  const auto leap = [up](int p) { up[p] = up[up[up[p]]]; };
  for (int p = 0; p < npixels; ++p)
    leap(p);
  for (int p = npixels - 1; p >= 0; --p)
    leap(p);
  for (int p = 0; p < npixels; ++p)
    label[p] = label[findRoot(
        p, [up](int q) { return up[q]; }, [up](int q, int root) { up[q] = root; })];
}

template <class Word, bool local>
void run(const PackedProblem &problem) {
  using Bits = Packing<Word>;
  using Transform = PackedTransform<Word, local>;
  const imImage *input = problem.input;
  const NeighborWalk &neighbors = problem.neighbors;
  // Turns a cost into a key, and a key into a cost.
  const auto mirror = [&problem](int v) { return problem.maximise ? problem.maxCost - v : v; };
  const WordsInBand<Word> words(problem.pred);
  for (int p = 0, y = 0; y < input->nrows; ++y)
    for (int x = 0; x < input->ncols; ++x, ++p)
      words.set(p, Bits::pack(mirror(input->band[0][p]), Bits::unreached,
                              neighbors.isInner(x, y) ? Word{0} : Bits::edge));
  std::fill_n(problem.label, input->npixels, 0);
  {
    BucketQueue<typename Transform::Entry> queue(std::int64_t{problem.maxCost} + 1, input->npixels);
    const ifRoots &seeds = *problem.seeds;
    forEachSeed(pixelsOf(seeds), problem.cost, [&](int i, int p) {
      const int cost = mirror(seeds.value[i]);
      const Word word = words[p];
      words.set(p, Bits::pack(Bits::value(word), Bits::seed, word & Bits::edge));
      problem.cost[p] = cost;
      problem.label[p] = seeds.label[i];
      queue.append(cost, {p});
    });
    Transform transform(words, problem);
    propagate(transform, queue);
  }
  Array<int> offset = makeZeroedArray<int>(Bits::unreached + 1);
  for (int k = 0; k < neighbors.size(); ++k)
    offset[k] = neighbors.offset(k);
  for (int p = 0; p < input->npixels; ++p)
    problem.cost[p] = p - offset[Bits::arc(words[p])];
  handDown(input->npixels, problem.cost, problem.label);
  const int unreached = problem.maximise ? ifInfiniteCostInverted : ifInfiniteCost;
  for (int p = input->npixels - 1; p >= 0; --p) { // words lie before the predecessors
    const Word word = words[p];
    const int k = Bits::arc(word);
    problem.pred[p] = p - offset[k];
    problem.cost[p] = k == Bits::unreached ? unreached : mirror(Bits::value(word));
  }
}

template <class Word>
void run(const PackedProblem &problem) {
  if (problem.local)
    run<Word, true>(problem);
  else
    run<Word, false>(problem);
}

} // namespace

bool runPacked(const PackedProblem &problem) {
  using Narrow = Packing<std::uint16_t>;
  using Wide = Packing<std::uint32_t>;
  const imImage *input = problem.input;
  const ifRoots *seeds = problem.seeds;
  if (problem.maxCost > static_cast<int>(Wide::valueMask) ||
      problem.neighbors.size() > Wide::seed ||
      !allWithin(input->band[0], input->npixels, 0, problem.maxCost) ||
      !allWithin(seeds->value, seeds->n, 0, problem.maxCost))
    return false;
  ++packedRuns;
  if (problem.maxCost <= static_cast<int>(Narrow::valueMask))
    run<std::uint16_t>(problem);
  else
    run<std::uint32_t>(problem);
  return true;
}

} // namespace seedforest::detail
