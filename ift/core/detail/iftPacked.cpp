// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/iftPacked.h"

#include "base/arith.h"
#include "base/inline.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/ifCost.h"

#include <algorithm>
#include <cstdint>

namespace seedforest::detail {

namespace {

// A pixel's word, from the lowest bit: its value, the displacement by which it was reached, its
// cost so far. The cost has half of the bits, the displacement 8.
template <class Word>
struct Packing {
  static constexpr int costShift = 4 * sizeof(Word);
  static constexpr int arcShift = costShift - 8;
  static constexpr Word valueMask = (Word{1} << arcShift) - 1;
  static constexpr Word arcMask = (Word{1} << costShift) - 1 - valueMask;
  static constexpr int noArc = 255;
  static constexpr int infinite = static_cast<int>(
      std::min<Word>((Word{1} << (costShift - 1)) - 1, static_cast<Word>(ifInfiniteCost)));

  static Word pack(int value, int arc, int cost) {
    return static_cast<Word>(value) | static_cast<Word>(arc) << arcShift |
           static_cast<Word>(cost) << costShift;
  }
  static int value(Word word) { return static_cast<int>(word & valueMask); }
  static int arc(Word word) { return static_cast<int>((word & arcMask) >> arcShift); }
  static int cost(Word word) { return static_cast<int>(word >> costShift); }
};

// Paths never get better as they grow, and each bucket holds a single cost. So a settled pixel
// cannot be improved, neighbours that the predecessor shares need no offer, and an entry is
// outdated exactly when its pixel's cost is not that of the bucket.
template <class Word, bool local>
class PackedTransform {
public:
  PackedTransform(Word *words, int *label, const NeighborWalk &neighbors)
      : words_(words), label_(label), neighbors_(neighbors), onward_(neighbors) {}

  struct Entry {
    int pixel;
  };
  Entry entry(int q, int, int) const { return {q}; }
  bool isCurrent(Entry entry, int bucket) const { return costOf(entry.pixel) == bucket; }

  // The path to p is final, and so is its predecessor's label.
  void settle(Entry entry) {
    const int p = entry.pixel;
    if (const int k = Bits::arc(words_[p]); k != Bits::noArc)
      label_[p] = label_[p - neighbors_.offset(k)];
  }

  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int cost = costOf(entry.pixel);
    const int k = Bits::arc(words_[entry.pixel]);
    onward_.each(entry.pixel, k == Bits::noArc ? UnsharedNeighborWalk::start : k,
                 [&](int q, int arc)
                     SEEDFOREST_INLINE { offer(q, arc, extend(cost, Bits::value(words_[q]))); });
  }
  bool improves(int cost, int q) const { return cost < costOf(q); }
  void conquer(int, int q, int k, int cost) {
    words_[q] = Bits::pack(Bits::value(words_[q]), k, cost);
  }
  int bucket(int cost, int) const { return cost; }
  SEEDFOREST_INLINE void prefetch(int p) const {
    neighbors_.prefetch(words_, p);
    neighbors_.prefetch(label_, p);
  }

private:
  using Bits = Packing<Word>;

  int costOf(int p) const { return Bits::cost(words_[p]); }
  static int extend(int cost, int weight) {
    if constexpr (local)
      return cost < weight ? Bits::infinite : cost;
    else
      return std::max(cost, weight);
  }

  Word *words_;
  int *label_;
  const NeighborWalk &neighbors_;
  UnsharedNeighborWalk onward_;
};

template <class Word, bool local>
void run(const PackedProblem &problem, Word *words) {
  using Bits = Packing<Word>;
  using Transform = PackedTransform<Word, local>;
  const int npixels = problem.input->npixels;
  const NeighborWalk &neighbors = problem.neighbors;
  // Turns a cost into a key, and a key into a cost.
  const auto mirror = [&problem](int v) { return problem.maximise ? problem.maxCost - v : v; };
  const int *value = problem.input->band[0];
  for (int p = 0; p < npixels; ++p)
    words[p] = Bits::pack(mirror(value[p]), Bits::noArc, Bits::infinite);
  std::fill_n(problem.label, npixels, 0);

  BucketQueue<typename Transform::Entry> queue(std::int64_t{problem.maxCost} + 1, npixels);
  const ifRoots &seeds = *problem.seeds;
  forEachSeed(pixelsOf(seeds), problem.pred, [&](int i, int p) {
    const int cost = mirror(seeds.value[i]);
    words[p] = Bits::pack(Bits::value(words[p]), Bits::noArc, cost);
    problem.label[p] = seeds.label[i];
    queue.append(cost, {p});
  });
  Transform transform(words, problem.label, neighbors);
  propagate(transform, queue);

  const int unreached = problem.maximise ? ifInfiniteCostInverted : ifInfiniteCost;
  for (int p = 0; p < npixels; ++p) {
    const Word word = words[p];
    const int k = Bits::arc(word);
    problem.pred[p] = k == Bits::noArc ? p : p - neighbors.offset(k);
    problem.cost[p] = Bits::cost(word) == Bits::infinite ? unreached : mirror(Bits::cost(word));
  }
}

template <class Word>
void run(const PackedProblem &problem, Word *words) {
  if (problem.local)
    run<Word, true>(problem, words);
  else
    run<Word, false>(problem, words);
}

} // namespace

bool runPacked(const PackedProblem &problem) {
  using Narrow = Packing<std::uint32_t>;
  using Wide = Packing<std::uint64_t>;
  const imImage *input = problem.input;
  const ifRoots *seeds = problem.seeds;
  if (problem.maxCost > static_cast<int>(Wide::valueMask) ||
      problem.neighbors.size() > Wide::noArc ||
      !allWithin(input->band[0], input->npixels, 0, problem.maxCost) ||
      !allWithin(seeds->value, seeds->n, 0, problem.maxCost))
    return false;
  ++packedRuns;
  if (problem.maxCost <= static_cast<int>(Narrow::valueMask)) {
    // In place: a word has the size of a cost, which replaces it at the end.
    run(problem, reinterpret_cast<std::uint32_t *>(problem.cost));
  } else {
    const Array<std::uint64_t> words(static_cast<std::uint64_t *>(
        tryReallocate(nullptr, static_cast<std::size_t>(input->npixels), sizeof(std::uint64_t))));
    if (words == nullptr)
      queueUnavailable('A');
    run(problem, words.get());
  }
  return true;
}

} // namespace seedforest::detail
