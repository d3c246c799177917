// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/iftPacked.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/findRoot.h"
#include "base/inline.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/wordsInBand.h"
#include "ift/core/ifCost.h"
#include "image/detail/rowWindow.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace seedforest::detail {

namespace {

// A pixel's word, from the lowest bit: its value or, for seeds and where a path has arrived, its
// cost; whether some of its neighbours are outside the image; in 7 bits, the displacement by which
// it was reached, or one of the names below.
template <class Word>
struct Packing {
  static constexpr int edgeShift = 8 * sizeof(Word) - 8;
  static constexpr int arcShift = edgeShift + 1;
  static constexpr Word valueMask = (Word{1} << edgeShift) - 1;
  static constexpr Word edge = Word{1} << edgeShift;
  static constexpr int fixed = 124; // a seed whose cost no path through its value can beat
  static constexpr int quiet = 125; // a seed that does not wait, since it would improve nothing
  static constexpr int seed = 126;
  static constexpr int unreached = 127;

  static Word pack(int value, int arc, Word edgeBit) {
    return static_cast<Word>(static_cast<Word>(value) | static_cast<Word>(arc) << arcShift |
                             edgeBit);
  }
  static int value(Word word) { return static_cast<int>(word & valueMask); }
  static int arc(Word word) { return static_cast<int>(word >> arcShift); }
  static bool mayBeConquered(Word word) { return word >= Word{quiet} << arcShift; }
  static bool isConquerableSeed(Word word) {
    return mayBeConquered(word) && arc(word) != unreached;
  }
  static bool isSeed(Word word) { return arc(word) >= fixed && arc(word) != unreached; }
};

// A bit for each pixel: it may be conquered. So the neighbours of a pixel are told apart by three
// reads of bytes that mostly are in the cache, in place of eight of words that mostly are not, which
// takes a tenth off the time. In the memory of the cost band, which is written after the flood.
class OpenPixels {
public:
  OpenPixels(int *band, int npixels)
      : bytes_(reinterpret_cast<unsigned char *>(band)), npixels_(npixels) {}

  template <class Word>
  void fill(const WordsInBand<Word> &words) const {
    for (int p = 0, n; p < npixels_; p += n) {
      n = std::min(8, npixels_ - p);
      unsigned bits = 0;
      for (int i = 0; i < n; ++i)
        bits |= static_cast<unsigned>(Packing<Word>::mayBeConquered(words[p + i])) << i;
      bytes_[p / 8] = static_cast<unsigned char>(bits);
    }
  }

  void close(int p) const {
    bytes_[static_cast<unsigned>(p) / 8] &= static_cast<unsigned char>(~(1U << p % 8));
  }

  /// The bits of p, p + 1 and p + 2.
  unsigned three(int p) const {
    const unsigned char *byte = at(p);
    return static_cast<unsigned>(byte[0] | byte[1] << 8) >> p % 8 & 7;
  }

  const unsigned char *at(int p) const { return bytes_ + static_cast<unsigned>(p) / 8; }

private:
  unsigned char *bytes_;
  int npixels_;
};

// Paths never get better as they grow, and pixels are settled by costs that never improve. So the
// first path to a pixel is its best, and only a seed can be conquered while it waits, by a path
// that is better than its own cost. Neighbours that the predecessor shares need no offer.
template <class Word, bool local>
class PackedTransform {
public:
  PackedTransform(WordsInBand<Word> words, OpenPixels open, const PackedProblem &problem)
      : words_(words), open_(open), value_(problem.value), mirror_(problem.mirror()),
        neighbors_(problem.neighbors), onward_(neighbors_), ncols_(problem.input->ncols),
        isWithinWindow_(neighbors_.isWithinWindow()) {
    std::array<unsigned, places> at = {};
    for (int k = 0; isWithinWindow_ && k < neighbors_.size(); ++k) {
      offset_[k] = neighbors_.offset(k);
      at[3 * (neighbors_.dy(k) + 1) + neighbors_.dx(k) + 1] |= 1U << k;
    }
    for (unsigned open = 1; open < displacements_.size(); ++open)
      displacements_[open] =
          static_cast<std::uint8_t>(displacements_[open & (open - 1)] | at[std::countr_zero(open)]);
  }

  struct Entry {
    int pixel;
  };
  Entry entry(int q, int, int) const { return {q}; }
  bool isCurrent(Entry entry, int bucket) const {
    return Bits::value(words_[entry.pixel]) == bucket;
  }

  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int p = entry.pixel;
    const Word word = words_[p];
    const int cost = Bits::value(word);
    const auto extendTo = [&](int q, int k) SEEDFOREST_INLINE {
      const Word other = words_[q];
      if (!Bits::isConquerableSeed(other))
        offer(q, k, extend(cost, Bits::value(other)));
      else if (cost < Bits::value(other)) // else there is no need for its value, far away
        offer(q, k, extend(cost, mirror_(value_[q])));
    };
    if (isWithinWindow_ && (word & Bits::edge) == 0) {
      for (unsigned rest = conquerableAround(p); rest != 0; rest &= rest - 1) {
        const int k = std::countr_zero(rest);
        extendTo(p + offset_[k], k);
      }
    } else {
      onward_.each(p, Bits::isSeed(word) ? UnsharedNeighborWalk::start : Bits::arc(word), extendTo);
    }
  }
  bool improves(int cost, int q) const {
    const Word word = words_[q];
    return Bits::mayBeConquered(word) &&
           cost < (Bits::isConquerableSeed(word) ? Bits::value(word) : ifInfiniteCost);
  }
  void conquer(int, int q, int k, int cost) {
    words_.set(q, Bits::pack(cost, k, words_[q] & Bits::edge));
    open_.close(q);
  }
  int bucket(int cost, int) const { return cost; }
  SEEDFOREST_INLINE void prefetch(int p) const {
    neighbors_.prefetchAround(p, [this](int q) SEEDFOREST_INLINE { return words_.at(q); });
    neighbors_.prefetchAround(p, [this](int q) SEEDFOREST_INLINE { return open_.at(q); });
  }

private:
  using Bits = Packing<Word>;
  static constexpr int places = 9; // in a window of 3 x 3

  // The displacements, as bits, of the neighbours of p that may be conquered. Without branches,
  // which would be unpredictable.
  unsigned conquerableAround(int p) const {
    const int left = p - 1;
    return displacements_[open_.three(left - ncols_) | open_.three(left) << 3 |
                          open_.three(left + ncols_) << 6];
  }

  static int extend(int cost, int weight) {
    if constexpr (local)
      return cost < weight ? ifInfiniteCost : cost;
    else
      return std::max(cost, weight);
  }

  WordsInBand<Word> words_;
  OpenPixels open_;
  const int *value_;
  Mirror mirror_;
  const NeighborWalk &neighbors_;
  UnsharedNeighborWalk onward_;
  int ncols_;
  bool isWithinWindow_;
  std::array<int, 8> offset_ = {};
  std::array<std::uint8_t, 1 << places> displacements_ = {}; // for each set of open places
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

// Where seeds are many, most need not wait for their turn. One that costs more than its own
// value and more than a neighbour is bound to be conquered first, whatever its cost: it is no seed
// (not with local costs, whose paths may be blocked). One that would improve no neighbour, even at
// their own costs as seeds, is quiet. In a reconstruction from all pixels of the image lowered by
// one, that leaves a tenth to wait, in half to two thirds of the time.
template <class Word, bool local>
void sortOutSeeds(const PackedProblem &problem, const WordsInBand<Word> &words) {
  using Bits = Packing<Word>;
  const imImage *image = problem.input;
  const int *value = problem.value;
  const Mirror mirror = problem.mirror();
  int *seedCost = problem.cost;
  int *toBeat = problem.label; // the costs of seeds that some path could conquer
  constexpr int none = -1;
  for (int p = 0; p < image->npixels; ++p) {
    const Word word = words[p];
    const int cost = Bits::isSeed(word) ? Bits::value(word) : ifInfiniteCost;
    seedCost[p] = cost;
    toBeat[p] = cost > mirror(value[p]) ? cost : none;
  }
  const Array<int> arcs = makeArray<int>(static_cast<std::size_t>(image->ncols));
  for (int y = 0; y < image->nrows; ++y) {
    const RowWindow costs(seedCost, image, y);
    const RowWindow best(toBeat, image, y);
    forEachColumn(image->ncols, [=, out = arcs.get()](int left, int x, int right) {
      const int cost = costs.row[x];
      const int isBound = static_cast<int>(!local) & static_cast<int>(best.row[x] != none) &
                          costs.any(left, x, right, [=](int c) { return c < cost; });
      const int isLoud = best.any(left, x, right, [=](int c) { return c > cost; });
      const int isNone = isBound | static_cast<int>(cost == ifInfiniteCost);
      const int loud = best.row[x] == none ? Bits::fixed : Bits::seed;
      out[x] = isNone != 0 ? Bits::unreached : isLoud != 0 ? loud : Bits::quiet;
    });
    for (int x = 0, p = image->row[y]; x < image->ncols; ++x, ++p)
      words.set(p, Bits::pack(arcs[x] == Bits::unreached ? mirror(value[p]) : seedCost[p], arcs[x],
                              words[p] & Bits::edge));
  }
}

template <class Word, bool local, class Queue>
void plantSeeds(const PackedProblem &problem, const WordsInBand<Word> &words, Queue &queue) {
  using Bits = Packing<Word>;
  const ifRoots &seeds = *problem.seeds;
  const Mirror mirror = problem.mirror();
  const std::span<const int> pixels = pixelsOf(seeds);
  forEachSeed(pixels, problem.label, [&](int i, int p) {
    const int cost = mirror(seeds.value[i]);
    const int arc = cost > Bits::value(words[p]) ? Bits::seed : Bits::fixed;
    words.set(p, Bits::pack(cost, arc, words[p] & Bits::edge));
  });
  if (seeds.n > problem.input->npixels / 4 && problem.neighbors.isWindow())
    sortOutSeeds<Word, local>(problem, words);
  std::fill_n(problem.label, problem.input->npixels, 0);
  forEachSeed(pixels, problem.cost, [&](int i, int p) {
    problem.label[p] = seeds.label[i];
    if (Bits::isSeed(words[p]) && Bits::arc(words[p]) != Bits::quiet)
      queue.append(Bits::value(words[p]), {p});
  });
}

template <class Word>
void packValues(const PackedProblem &problem, const WordsInBand<Word> &words) {
  using Bits = Packing<Word>;
  const imImage *input = problem.input;
  const NeighborWalk &neighbors = problem.neighbors;
  const int *value = problem.value;
  const Mirror mirror = problem.mirror();
  for (int p = 0; p < input->npixels; ++p)
    words.set(p, Bits::pack(mirror(value[p]), Bits::unreached, 0));
  const auto markEdge = [&](int p) { words.set(p, words[p] | Bits::edge); };
  for (int y = 0; y < input->nrows; ++y) {
    int x = 0;
    for (; x < input->ncols && !neighbors.isInner(x, y); ++x)
      markEdge(x + input->row[y]);
    for (int last = input->ncols - 1; last > x && !neighbors.isInner(last, y); --last)
      markEdge(last + input->row[y]);
  }
}

template <class Word, bool local>
void run(const PackedProblem &problem) {
  using Bits = Packing<Word>;
  using Transform = PackedTransform<Word, local>;
  const imImage *input = problem.input;
  const NeighborWalk &neighbors = problem.neighbors;
  const Mirror mirror = problem.mirror();
  const WordsInBand<Word> words(problem.pred);
  packValues(problem, words);
  {
    BucketQueue<typename Transform::Entry> queue(std::int64_t{problem.maxCost} + 1, input->npixels);
    plantSeeds<Word, local>(problem, words, queue);
    const OpenPixels open(problem.cost, input->npixels);
    open.fill(words);
    Transform transform(words, open, problem);
    propagate(transform, queue);
  }
  std::array<int, Bits::unreached + 1> offset = {};
  for (int k = 0; k < neighbors.size(); ++k)
    offset[k] = neighbors.offset(k);
  int *pred = problem.pred;
  int *cost = problem.cost;
  for (int p = 0; p < input->npixels; ++p)
    cost[p] = p - offset[Bits::arc(words[p])];
  handDown(input->npixels, cost, problem.label);
  const int unreached = problem.maximise ? ifInfiniteCostInverted : ifInfiniteCost;
  for (int p = input->npixels - 1; p >= 0; --p) { // words lie before the predecessors
    const Word word = words[p];
    const int k = Bits::arc(word);
    pred[p] = p - offset[k];
    cost[p] = k == Bits::unreached ? unreached : mirror(Bits::value(word));
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
  if (problem.value == problem.label || problem.value == problem.cost ||
      problem.value == problem.pred) { // values are read to the end
    const Array<int> copy = makeArray<int>(static_cast<std::size_t>(input->npixels));
    std::copy_n(problem.value, input->npixels, copy.get());
    PackedProblem apart = problem;
    apart.value = copy.get();
    return runPacked(apart);
  }
  if (problem.maxCost > static_cast<int>(Wide::valueMask) ||
      problem.neighbors.size() > Wide::fixed ||
      !allWithin(problem.value, input->npixels, 0, problem.maxCost) ||
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
