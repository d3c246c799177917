// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/detail/runs.h"

#include "base/findRoot.h"
#include "base/multiversion.h"

#include <algorithm>
#include <numeric>

namespace seedforest::detail {

namespace {

// Finds the first mark in each of the intervals of a row, word by word: a carry runs from the start
// of an interval through its columns without a mark, and stays at the first with one.
class FirstMarks {
public:
  /// Whether the next word may have such a mark: an interval starts there, or has none so far.
  bool maySee(Word starts) const { return (starts | carry_) != 0; }

  SEEDFOREST_INLINE Word operator()(Word covered, Word starts, Word marks) {
    const Word without = covered & ~marks;
    const Word sum = without + (starts | carry_);
    carry_ = sum < without ? 1 : 0; // into the next word
    return sum & marks;
  }

private:
  Word carry_ = 0;
};

int leader(int *link, int i) {
  return findRoot(
      i, [link](int k) { return link[k]; }, [link](int k, int first) { link[k] = first; });
}

SEEDFOREST_INLINE inline void join(int *link, int i, int k) {
  const int one = leader(link, i);
  const int other = leader(link, k);
  link[std::max(one, other)] = std::min(one, other); // no change where both are the same
}

// Joins the runs of a pair of rows with those of the pair above that they touch. `bottom` is the last
// row above, `top` the row below it. Two runs touch in columns that both hold, where the interval
// that they share makes one join, or else corner to corner.
SEEDFOREST_MULTIVERSION void joinPairs(PairWalk above, PairWalk pair, const Word *bottom,
                                       const Word *top, std::ptrdiff_t words, int *link) {
  FirstMarks firstOf;
  Word sharedBefore = 0;
  for (std::ptrdiff_t w = 0; w < words; ++w) {
    above.enter(w);
    pair.enter(w);
    const Word shared = above.covered() & pair.covered();
    const Word starts = shared & ~leftOf(shared, sharedBefore);
    const Word corner = top[w] & ~above.covered();
    sharedBefore = shared;
    if (!firstOf.maySee(starts) && corner == 0)
      continue;
    // The word before the first ends with a bit behind a row, a 0. The last bit of the last word sees
    // the next row, but is 0 itself in all rows.
    const Word left = leftOf(bottom[w], bottom[w - 1]);
    const Word right = rightOf(bottom[w], bottom[w + 1]);
    const Word topBeside = leftOf(top[w], top[w - 1]) | rightOf(top[w], top[w + 1]);
    const Word touching =
        shared & ((top[w] & (left | bottom[w] | right)) | (bottom[w] & (topBeside | top[w])));
    // A run that holds the column of the other pixel too shares it, and is joined there.
    const Word leftCorner = corner & left & ~leftOf(pair.covered(), pair.coveredIn(w - 1));
    const Word rightCorner = corner & right & ~rightOf(pair.covered(), pair.coveredIn(w + 1));
    forEachBit(firstOf(shared, starts, touching) | leftCorner,
               [&](int x) SEEDFOREST_INLINE { join(link, pair.runAt(x), above.runAt(x)); });
    forEachBit(rightCorner, [&](int x) SEEDFOREST_INLINE {
      join(link, pair.runAt(x), above.runAt(x) + 1); // which starts in the next column
    });
  }
}

// Joins the runs of a pair that have a pixel rejected with run 0.
SEEDFOREST_MULTIVERSION void reject(PairWalk pair, const Word *rejected, std::size_t words,
                                    int *link) {
  FirstMarks firstOf;
  for (std::size_t w = 0; w < words; ++w) {
    pair.enter(w);
    forEachBit(firstOf(pair.covered(), pair.starts(), rejected[w]),
               [&](int x) SEEDFOREST_INLINE { join(link, pair.runAt(x), 0); });
  }
}

SEEDFOREST_MULTIVERSION int countRuns(PairWalk pair, std::size_t words) {
  for (std::size_t w = 0; w < words; ++w)
    pair.enter(w);
  return pair.runAt(wordBits - 1) + 1;
}

// Links runs to the numbers of their components, as far as known, or to their first runs. Returns
// whether all are known.
bool resolve(int *link, int first, int end) {
  int all = -1;
  for (int i = first; i < end; ++i) {
    if (link[i] >= 0)
      link[i] = link[link[i]]; // of an earlier run: resolved already
    all &= link[i];
  }
  return all < 0;
}

} // namespace

Runs::Runs(int ncols, int nrows)
    : ncols_(ncols), nrows_(nrows), words_(static_cast<std::size_t>(ncols) / wordBits + 1) {
  const auto pairs = static_cast<std::size_t>(this->pairs());
  bits_ = makeZeroedArray<Word>(2 * pairs * words_ + 2);
  first_ = makeArray<int>(pairs + 1);
  const std::size_t runsPerPair = (static_cast<std::size_t>(ncols) + 1) / 2;
  link_ = makeArray<int>(runsPerPair * pairs + 1);
  link_[0] = 0;
  first_[0] = 1;
}

void Runs::addRow() {
  for (std::size_t w = 0; rejected_ != nullptr && w < words_; ++w) {
    const Word rejected = row(y_)[w] & rejected_[w];
    rejectedOfPair_[w] = y_ % 2 == 0 ? rejected : rejectedOfPair_[w] | rejected;
  }
  ++y_;
  if (y_ % 2 == 0 || y_ == nrows_)
    closePair();
}

Word *Runs::rejected() {
  if (rejected_ == nullptr) {
    rejected_ = makeArray<Word>(words_);
    rejectedOfPair_ = makeArray<Word>(words_);
  }
  return rejected_.get();
}

// Makes the runs of the last pair of rows.
void Runs::closePair() {
  const int pair = (y_ - 1) / 2;
  const int first = first_[pair];
  const int end = countRuns(walk(pair), words_);
  first_[pair + 1] = end;
  std::iota(link_.get() + first, link_.get() + end, first);
  if (pair > 0 && hasRuns(pair) && hasRuns(pair - 1))
    joinPairs(walk(pair - 1), walk(pair), row(2 * pair - 1), row(2 * pair),
              static_cast<std::ptrdiff_t>(words_), link_.get());
  if (rejected_ != nullptr)
    reject(walk(pair), rejectedOfPair_.get(), words_, link_.get());
}

int Runs::number(int pair, const int *labels, int n) {
  link_[0] = ~0;
  const int first = first_[pair];
  const int end = first_[pair + 1];
  if (resolve(link_.get(), first, end))
    return n;
  n = numberRow(2 * pair, labels, n);
  n = numberRow(2 * pair + 1, labels, n);
  allKnown_ = resolve(link_.get(), first, end) && allKnown_;
  return n;
}

bool Runs::numberLate() {
  if (!allKnown_)
    resolve(link_.get(), 1, first_[pairs()]);
  return !allKnown_;
}

// Numbers the components without a number that have a pixel of label 0 in the row, from n + 1.
SEEDFOREST_MULTIVERSION int Runs::numberRow(int y, const int *labels, int n) {
  FirstMarks firstOf;
  PairWalk pair = walk(y / 2);
  for (std::size_t w = 0; w < words_; ++w) {
    pair.enter(w);
    forEachBit(firstOf(pair.covered(), pair.starts(), row(y)[w]), [&](int x) SEEDFOREST_INLINE {
      const int run = pair.runAt(x);
      const int first = link_[run];
      if (first < 0)
        return;
      if (link_[first] >= 0 && (labels == nullptr || hasSeed(y, w * wordBits + x, labels)))
        link_[first] = ~++n;
      link_[run] = link_[first];
    });
  }
  return n;
}

// Whether a pixel of the row has label 0, among those from x to the end of the run that x is in.
bool Runs::hasSeed(int y, std::size_t x, const int *labels) const {
  const Word *other = row(y ^ 1);
  const int *label = labels + static_cast<std::size_t>(ncols_) * static_cast<std::size_t>(y);
  for (;; ++x) {
    const Word bit = Word{1} << x % wordBits;
    const std::size_t w = x / wordBits;
    if ((row(y)[w] & bit) != 0 && label[x] == 0)
      return true;
    if (((row(y)[w] | other[w]) & bit) == 0)
      return false;
  }
}

} // namespace seedforest::detail
