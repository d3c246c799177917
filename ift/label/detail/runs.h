// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The object pixels of an image as bits, grouped into 8-connected components. Rows are taken in
// pairs, because two object pixels of a pair touch whenever their columns are neighbours: a run, an
// interval of columns that have an object pixel each, is connected, and is one element of the
// union-find. This is labelling by two scans over runs (He, Chao and Suzuki, "A run-based two-scan
// labeling algorithm", 2008) of blocks two pixels high.
#pragma once

#include "base/buffer.h"
#include "base/inline.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace seedforest::detail {

/// A bit for each of 64 pixels of a row, the lowest for the leftmost.
using Word = std::uint64_t;
constexpr int wordBits = 64;

/// Bit x of these tells of the pixel to the left, or to the right, of the one that bit x of the word
/// tells of. The word's neighbour on that side has the pixel beyond its end.
SEEDFOREST_INLINE inline Word leftOf(Word word, Word before) {
  return word << 1 | before >> (wordBits - 1);
}
SEEDFOREST_INLINE inline Word rightOf(Word word, Word after) {
  return word >> 1 | after << (wordBits - 1);
}

constexpr int halfBits = wordBits / 2;
constexpr std::array<std::uint32_t, halfBits> bitsOfPixels() {
  std::array<std::uint32_t, halfBits> bits = {};
  std::uint32_t next = 1;
  for (std::uint32_t &bit : bits) {
    bit = next;
    next <<= 1;
  }
  return bits;
}
/// Element x has bit x of half a word.
inline constexpr std::array<std::uint32_t, halfBits> bitOfPixel = bitsOfPixels();

/// Sets the bits of the words for n pixels: those for whose x isSet(x) holds.
template <class IsSet>
SEEDFOREST_INLINE inline void setBits(int n, IsSet isSet, Word *words) {
  const auto gather = [&](int first, int count) SEEDFOREST_INLINE {
    std::uint32_t bits = 0;
    for (int x = 0; x < count; ++x)
      bits |= isSet(first + x) ? bitOfPixel[x] : 0;
    return Word{bits};
  };
  int x = 0;
  for (; n - x >= wordBits; x += wordBits)
    *words++ = gather(x, halfBits) | gather(x + halfBits, halfBits) << halfBits;
  const int rest = n - x;
  *words = gather(x, std::min(rest, halfBits));
  if (rest > halfBits)
    *words |= gather(x + halfBits, rest - halfBits) << halfBits;
}

/// Calls visit(x) for each bit x that is set, in order.
template <class Visit>
SEEDFOREST_INLINE inline void forEachBit(Word word, Visit visit) {
  for (; word != 0; word &= word - 1)
    visit(std::countr_zero(word));
}

/// A walk along a pair of rows, a word at a time.
class PairWalk {
public:
  PairWalk(const Word *top, const Word *bottom, int firstRun)
      : top_(top), bottom_(bottom), before_(firstRun - 1) {}

  /// Goes on to word w: 0 at first, then the next one.
  SEEDFOREST_INLINE void enter(std::ptrdiff_t w) {
    before_ += std::popcount(starts_);
    const Word left = covered_;
    covered_ = coveredIn(w);
    starts_ = covered_ & ~leftOf(covered_, left);
  }

  /// The columns that runs hold, and the first column of each run.
  Word covered() const { return covered_; }
  Word starts() const { return starts_; }
  /// The columns that runs hold in word w, which may be one beside the row.
  SEEDFOREST_INLINE Word coveredIn(std::ptrdiff_t w) const { return top_[w] | bottom_[w]; }
  /// The last run that starts before the word; and the last that starts at its column x or before.
  int runBefore() const { return before_; }
  SEEDFOREST_INLINE int runAt(int x) const {
    return before_ + std::popcount(starts_ & ((Word{2} << x) - 1));
  }

private:
  const Word *top_;
  const Word *bottom_;
  Word covered_ = 0;
  Word starts_ = 0;
  int before_;
};

/// Runs are numbered from 1, pair by pair and in a pair from left to right. Run 0 is empty, and the
/// component whose first run it is has the number 0.
class Runs {
public:
  Runs(int ncols, int nrows);

  /// The next row's pixels, for setBits(): object pixels, and rejected pixels. Without a call of
  /// rejected() none is rejected.
  Word *objects() { return rowAt(y_); }
  Word *rejected();

  /// Appends the row. A component with a rejected object pixel becomes part of run 0's.
  void addRow();

  /// To be called for each pair in order, when all rows have been added. Numbers those components in
  /// the pair that have no number yet, and have a pixel there whose label is 0: from n + 1, in the
  /// raster order of the first such pixels. `labels` may be null: all are 0. Returns the highest
  /// number.
  int number(int pair, const int *labels, int n);

  /// To be called after that. Returns whether numbers() of pairs numbered before have changed.
  bool numberLate();

  /// The number of run i's component is ~numbers()[i], negative where it has none.
  const int *numbers() const { return link_.get(); }

  /// Row y, and its pair.
  const Word *row(int y) const { return rowAt(y); }
  PairWalk walk(int pair) const { return {row(2 * pair), row(2 * pair + 1), first_[pair]}; }
  int pairs() const { return nrows_ / 2 + nrows_ % 2; }
  bool hasRuns(int pair) const { return first_[pair] < first_[pair + 1]; }
  /// Words in a row. The last one has at least one bit behind the row's pixels; such bits are 0.
  std::size_t words() const { return words_; }

private:
  Word *rowAt(int y) const { return bits_.get() + 1 + words_ * static_cast<std::size_t>(y); }
  void closePair();
  int numberRow(int y, const int *labels, int n);
  bool hasSeed(int y, std::size_t x, const int *labels) const;

  int ncols_;
  int nrows_;
  int y_ = 0;            // the next row
  bool allKnown_ = true; // whether no pair had a run when its component had no number yet
  std::size_t words_;
  Array<Word> bits_; // a word of zeros, all rows (the last pair has two rows too), a word of zeros
  Array<Word> rejected_, rejectedOfPair_; // in the next row, and in the pair's columns
  Array<int> first_;                      // the first run of each pair, and the end of the last
  // The union-find: run i is linked to an earlier run of its component, the first run to itself;
  // number() turns links into ~(the component's number).
  Array<int> link_;
};

} // namespace seedforest::detail
