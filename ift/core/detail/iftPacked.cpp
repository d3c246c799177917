// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/iftPacked.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/fetchAhead.h"
#include "base/findRoot.h"
#include "base/inline.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/margined.h"
#include "ift/core/detail/wordsInBand.h"
#include "ift/core/ifCost.h"
#include "image/detail/rowWindow.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace seedforest::detail {

namespace {

// A pixel's word, from the lowest bit: its value or, for seeds and where a path has arrived, its
// cost; in 7 bits, the displacement by which it was reached, or one of the names below.
template <class Word>
struct Packing {
  static constexpr int arcShift = 8 * sizeof(Word) - 7;
  static constexpr Word valueMask = (Word{1} << arcShift) - 1;
  static constexpr int fixed = 124; // a seed whose cost no path through its value can beat
  static constexpr int quiet = 125; // a seed that does not wait, since it would improve nothing
  static constexpr int seed = 126;
  static constexpr int unreached = 127;

  static Word pack(int value, int arc) {
    return static_cast<Word>(static_cast<Word>(value) | static_cast<Word>(arc) << arcShift);
  }
  static int value(Word word) { return static_cast<int>(word & valueMask); }
  static int arc(Word word) { return static_cast<int>(word >> arcShift); }
  static bool mayBeConquered(Word word) { return word >= Word{quiet} << arcShift; }
  static bool isSeed(Word word) { return arc(word) >= fixed && arc(word) != unreached; }
};

// A bit for each place: it is a pixel that is to be offered a path. So the neighbours of a pixel are
// told apart by three reads of words that mostly are in the cache, in place of eight that mostly are
// not. In the memory of the cost band, which is written after the flood.
class OpenPixels {
public:
  OpenPixels(const Margined &places, unsigned char *memory)
      : places_(places), words_(reinterpret_cast<unsigned *>(memory)) {}

  static std::size_t nbytes(const Margined &places) {
    return (static_cast<std::size_t>(places.size() + 2 * std::int64_t{places.ahead()}) / wordBits +
            2) *
           sizeof(unsigned);
  }

  template <class Word>
  void fill(const WordsInBand<Word> &words) const {
    std::memset(words_, 0xff, nbytes(places_));
    for (int i = 0; i < places_.ahead(); ++i) {
      close(i - places_.ahead());
      close(i + places_.size());
    }
    places_.eachOfMargin([this](int place) { close(place); });
    places_.each([this, &words](int, int place) SEEDFOREST_INLINE {
      if (!Packing<Word>::mayBeConquered(words[place]))
        close(place);
    });
  }

  void close(int place) const {
    const unsigned i = index(place);
    words_[i / wordBits] &= ~(1U << i % wordBits);
  }

  /// The bits of a place and the two behind it. Those in `closing` are cleared.
  unsigned three(int place, unsigned closing) const {
    const unsigned i = index(place);
    unsigned *word = words_ + i / wordBits;
    const std::uint64_t both = std::uint64_t{word[1]} << wordBits | word[0];
    const std::uint64_t kept = both & ~(std::uint64_t{closing} << i % wordBits);
    word[0] = static_cast<unsigned>(kept);
    word[1] = static_cast<unsigned>(kept >> wordBits);
    return static_cast<unsigned>(both >> i % wordBits) & 7;
  }

  SEEDFOREST_INLINE void prefetchAround(int p) const {
    for (const int row : {p - places_.stride(), p, p + places_.stride()})
      prefetchAt(words_ + index(row) / wordBits);
  }

private:
  static constexpr unsigned wordBits = 32;
  unsigned index(int place) const { return static_cast<unsigned>(place + places_.ahead()); }

  Margined places_;
  unsigned *words_;
};

// Paths never get better as they grow, and pixels are settled by costs that never improve. So the
// first path to a pixel is its best, and only a seed can be conquered while it waits, by a path that
// is better than its own cost. Later paths cost as much or more: a pixel is offered one, and closes.
// Only local costs have to keep it open until it is conquered, since a worse path may go where a
// better one is blocked. Neighbours that the predecessor shares need no offer.
//
// So offers do not wait for those made before them, and pixels are settled in runs: no branch depends
// on how many open neighbours a pixel has, and words that are far away are fetched together, which
// takes a quarter to a third off the time. With local costs a run may note a pixel twice; its second
// offer is refused.
template <class Word, bool local>
class PackedTransform {
public:
  PackedTransform(const PackedProblem &problem, const Margined &places, WordsInBand<Word> words,
                  const OpenPixels &open)
      : places_(places), words_(words), open_(open), value_(problem.value),
        mirror_(problem.mirror()), onward_(problem.neighbors), n_(problem.neighbors.size()),
        isWithinWindow_(problem.neighbors.isWithinWindow()) {
    const NeighborWalk &neighbors = problem.neighbors;
    std::array<unsigned, windowSize> arcsTo = {};
    for (int k = 0; k < n_; ++k) {
      offset_[k] = places.offset(neighbors.dx(k), neighbors.dy(k));
      if (isWithinWindow_)
        arcsTo[3 * (neighbors.dy(k) + 1) + neighbors.dx(k) + 1] |= 1U << k;
    }
    for (int place = 0; place < windowSize; ++place)
      if (!local && arcsTo[place] != 0)
        closing_[place / 3] |= 1U << place % 3;
    for (unsigned open = 0; open < arcs_.size(); ++open) {
      unsigned arcs = 0;
      for (unsigned rest = open; rest != 0; rest &= rest - 1)
        arcs |= arcsTo[std::countr_zero(rest)];
      for (; arcs != 0; arcs &= arcs - 1)
        arcs_[open].k[arcs_[open].n++] = static_cast<std::uint8_t>(std::countr_zero(arcs));
    }
  }

  struct Entry {
    int pixel; // its place
  };

  Entry entry(int q) const { return {q}; }
  int longestRun() const { return std::min(longest, roomForOffers / std::max(n_, 1)); }
  SEEDFOREST_INLINE void prefetch(int p) const { open_.prefetchAround(p); }

  void startRun(int bucket) {
    cost_ = bucket;
    noffers_ = 0;
  }

  // Notes the arcs from a pixel to open ones. A seed that was conquered while it waited has closed
  // its neighbours since then; with local costs it has to be looked for.
  SEEDFOREST_INLINE void gather(Entry entry) {
    const int p = entry.pixel;
    if (local && Bits::value(words_[p]) != cost_)
      return;
    if (isWithinWindow_) {
      const int left = p - 1;
      const Arcs &arcs = arcs_[open_.three(left - places_.stride(), closing_[0]) |
                               open_.three(left, closing_[1]) << 3 |
                               open_.three(left + places_.stride(), closing_[2]) << 6];
      std::memcpy(&arc_[noffers_], arcs.k, sizeof(arcs.k)); // all, so that n does not matter
      std::fill_n(&from_[noffers_], std::size(arcs.k), p);
      noffers_ += arcs.n;
      return;
    }
    const Word word = words_[p];
    const int arrival = Bits::isSeed(word) ? UnsharedNeighborWalk::start : Bits::arc(word);
    for (const int k : onward_.of(arrival))
      if ((open_.three(p + offset_[k], local ? 0 : 1) & 1) != 0) {
        arc_[noffers_] = static_cast<std::uint8_t>(k);
        from_[noffers_++] = p;
      }
  }

  template <class Append>
  SEEDFOREST_INLINE void offerAll(Append append) {
    for (int i = 0; i < noffers_; ++i)
      prefetchAt(words_.at(end(i)));
    for (int i = 0; i < noffers_; ++i)
      offer(end(i), arc_[i], append);
  }

private:
  using Bits = Packing<Word>;
  static constexpr int windowSize = 9;
  static constexpr int longest = 128; // by trial: a tenth faster than 32
  static constexpr int roomForOffers = 1024;

  // The arcs to the open pixels of a window, in order.
  struct Arcs {
    std::uint8_t n;
    std::uint8_t k[8];
  };

  // The pixel to which the path of offer i leads.
  int end(int i) const { return from_[i] + offset_[arc_[i]]; }

  template <class Append>
  SEEDFOREST_INLINE void offer(int q, int k, Append append) {
    const Word word = words_[q];
    int weight = Bits::value(word);
    if (Bits::arc(word) != Bits::unreached) {
      const int best = weight; // of a seed, its cost
      if (!Bits::mayBeConquered(word) || cost_ >= best)
        return;
      weight = mirror_(value_[places_.pixelOf(q)]);
      if (weight >= best)
        return;
    }
    if constexpr (local) {
      if (cost_ < weight)
        return;
      open_.close(q);
    }
    const int more = weight - cost_;
    const int cost = cost_ + (more & -static_cast<int>(more > 0)); // the larger, without a branch
    words_.set(q, Bits::pack(cost, k));
    append(cost, q);
  }

  Margined places_;
  WordsInBand<Word> words_;
  OpenPixels open_;
  const int *value_;
  Mirror mirror_;
  UnsharedNeighborWalk onward_;
  int n_;
  bool isWithinWindow_;
  std::array<int, Bits::unreached + 1> offset_ = {};
  std::array<unsigned, 3> closing_ = {};        // of each row of a window
  std::array<Arcs, 1 << windowSize> arcs_ = {}; // for each set of open places
  int cost_ = 0;                                // of the paths to the pixels of a run
  int noffers_ = 0;
  std::array<int, roomForOffers + 8> from_;
  std::array<std::uint8_t, roomForOffers + 8> arc_ = {};
};

// Gives each pixel the label at the start of its path. `up` holds predecessors, and is changed to
// those starts. In two passes each pixel leaps over two others, most of which have leapt before;
// that leaves one pixel in a hundred to be walked. Fetching far ahead takes 5 ns a pixel of a large
// image down to 2.
void handDown(int npixels, int *up, int *label) {
  const auto leap = [up](int p) { up[p] = up[up[up[p]]]; };
  forEachFetched(npixels, leap, up);
  forEachFetchedBackwards(npixels, leap, up);
  const auto takeLabel = [=](int p) {
    label[p] = label[findRoot(
        p, [up](int q) { return up[q]; }, [up](int q, int root) { up[q] = root; })];
  };
  forEachFetched(npixels, takeLabel, up, label);
}

// Where seeds are many, most need not wait for their turn. One that costs more than its own
// value and more than a neighbour is bound to be conquered first, whatever its cost: it is no seed
// (not with local costs, whose paths may be blocked). One that would improve no neighbour, even at
// their own costs as seeds, is quiet. In a reconstruction from all pixels of the image lowered by
// one, that leaves a tenth to wait, in half to two thirds of the time.
template <class Word, bool local>
void sortOutSeeds(const PackedProblem &problem, const Margined &places,
                  const WordsInBand<Word> &words) {
  using Bits = Packing<Word>;
  const imImage *image = problem.input;
  const int *value = problem.value;
  const Mirror mirror = problem.mirror();
  int *seedCost = problem.cost;
  int *toBeat = problem.label; // the costs of seeds that some path could conquer
  constexpr int none = -1;
  places.each([=](int p, int place) {
    const Word word = words[place];
    const int cost = Bits::isSeed(word) ? Bits::value(word) : ifInfiniteCost;
    seedCost[p] = cost;
    toBeat[p] = cost > mirror(value[p]) ? cost : none;
  });
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
    const int start = y * places.stride();
    for (int x = 0, p = image->row[y]; x < image->ncols; ++x, ++p)
      words.set(start + x,
                Bits::pack(arcs[x] == Bits::unreached ? mirror(value[p]) : seedCost[p], arcs[x]));
  }
}

template <class Word, bool local, class Queue>
void plantSeeds(const PackedProblem &problem, const Margined &places,
                const WordsInBand<Word> &words, Queue &queue) {
  using Bits = Packing<Word>;
  const ifRoots &seeds = *problem.seeds;
  const Mirror mirror = problem.mirror();
  const std::span<const int> pixels = pixelsOf(seeds);
  forEachSeed(pixels, problem.label, [&](int i, int p) {
    const int cost = mirror(seeds.value[i]);
    const int place = places.placeOf(p);
    const int arc = cost > Bits::value(words[place]) ? Bits::seed : Bits::fixed;
    words.set(place, Bits::pack(cost, arc));
  });
  if (seeds.n > problem.input->npixels / 4 && problem.neighbors.isWindow())
    sortOutSeeds<Word, local>(problem, places, words);
  std::fill_n(problem.label, problem.input->npixels, 0);
  forEachSeed(pixels, problem.cost, [&](int i, int p) {
    problem.label[p] = seeds.label[i];
    const int place = places.placeOf(p);
    const Word word = words[place];
    if (Bits::isSeed(word) && Bits::arc(word) != Bits::quiet)
      queue.append(Bits::value(word), {place});
  });
}

template <class Word, bool local>
void run(const PackedProblem &problem, const Margined &places) {
  using Bits = Packing<Word>;
  using Transform = PackedTransform<Word, local>;
  const imImage *input = problem.input;
  const NeighborWalk &neighbors = problem.neighbors;
  const Mirror mirror = problem.mirror();
  const ScratchInBand wordMemory(problem.pred, input->npixels,
                                 sizeof(Word) * static_cast<std::size_t>(places.size()));
  const WordsInBand<Word> words(wordMemory.bytes());
  places.each([=, value = problem.value](int p, int place) {
    words.set(place, Bits::pack(mirror(value[p]), Bits::unreached));
  });
  {
    BucketQueue<typename Transform::Entry> queue(std::int64_t{problem.maxCost} + 1, input->npixels);
    plantSeeds<Word, local>(problem, places, words, queue);
    const ScratchInBand openMemory(problem.cost, input->npixels, OpenPixels::nbytes(places));
    const OpenPixels open(places, openMemory.bytes());
    open.fill(words);
    Transform transform(problem, places, words, open);
    propagateInRuns(transform, queue);
  }
  std::array<int, Bits::unreached + 1> offset = {};
  for (int k = 0; k < neighbors.size(); ++k)
    offset[k] = neighbors.offset(k);
  int *pred = problem.pred;
  int *cost = problem.cost;
  places.each([=, &offset](int p, int place) { cost[p] = p - offset[Bits::arc(words[place])]; });
  handDown(input->npixels, cost, problem.label);
  const int unreached = problem.maximise ? ifInfiniteCostInverted : ifInfiniteCost;
  places.eachBackwards([=, &offset](int p, int place) { // words lie before the predecessors
    const Word word = words[place];
    const int k = Bits::arc(word);
    pred[p] = p - offset[k];
    cost[p] = k == Bits::unreached ? unreached : mirror(Bits::value(word));
  });
}

template <class Word>
void run(const PackedProblem &problem, const Margined &places) {
  if (problem.local)
    run<Word, true>(problem, places);
  else
    run<Word, false>(problem, places);
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
  const Margined places(input, problem.neighbors);
  if (problem.maxCost > static_cast<int>(Wide::valueMask) ||
      problem.neighbors.size() > Wide::fixed || !places.isSmall() ||
      !allWithin(problem.value, input->npixels, 0, problem.maxCost) ||
      !allWithin(seeds->value, seeds->n, 0, problem.maxCost))
    return false;
  ++packedRuns;
  if (problem.maxCost <= static_cast<int>(Narrow::valueMask))
    run<std::uint16_t>(problem, places);
  else
    run<std::uint32_t>(problem, places);
  return true;
}

} // namespace seedforest::detail
