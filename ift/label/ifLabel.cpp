// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/ifLabel.h"

#include "base/buffer.h"
#include "base/multiversion.h"
#include "base/report.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/label/detail/announceLabelling.h"
#include "ift/label/detail/labelIndex.h"
#include "ift/label/detail/runs.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <cstddef>
#include <cstdint>

using namespace seedforest::detail;

namespace {

SEEDFOREST_MULTIVERSION void markPositive(const int *value, int n, Word *positive) {
  setBits(
      n, [&](int x) SEEDFOREST_INLINE { return value[x] > 0; }, positive);
}

Runs findRuns(const imImage *image) {
  Runs runs(image->ncols, image->nrows);
  for (int y = 0; y < image->nrows; ++y) {
    markPositive(image->band[0] + image->row[y], image->ncols, runs.objects());
    runs.addRow();
  }
  return runs;
}

constexpr int stride = 16; // numbers that are written at a time

// Writes to each column of a pair of rows the number of the last run that starts there or before,
// and up to a stride behind the last column. Runs of a noisy image are rarely longer than a stride:
// the branch that is hard to predict is hardly ever taken.
SEEDFOREST_MULTIVERSION void spreadNumbers(PairWalk pair, std::size_t words, const int *numbers,
                                           int *number) {
  const int *next = numbers + pair.runBefore() + 1;
  int current = 0;
  int *from = number;
  const auto fillUpTo = [&](const int *end) SEEDFOREST_INLINE {
    int *to = from;
    do {
      for (int i = 0; i < stride; ++i)
        to[i] = current;
      to += stride;
    } while (to < end);
  };
  for (std::size_t w = 0; w < words; ++w) {
    pair.enter(w);
    forEachBit(pair.starts(), [&](int x) SEEDFOREST_INLINE {
      int *start = number + w * wordBits + x;
      fillUpTo(start);
      from = start;
      current = ~*next++;
    });
  }
  fillUpTo(number + words * wordBits);
}

// Labels n object pixels of half a word with their numbers, if they have one.
SEEDFOREST_INLINE inline void labelObjects(std::uint32_t objects, const int *number, int n,
                                           int *label) {
  for (int x = 0; x < n; ++x)
    label[x] = (objects & bitOfPixel[x]) != 0 && number[x] > 0 ? number[x] : label[x];
}

SEEDFOREST_MULTIVERSION void labelRow(const Word *objects, const int *number, int ncols,
                                      int *label) {
  for (std::int64_t x = 0; x < ncols; x += halfBits) {
    const auto bits = static_cast<std::uint32_t>(objects[x / wordBits] >> x % wordBits);
    if (bits == 0)
      continue;
    if (ncols - x >= halfBits)
      labelObjects(bits, number + x, halfBits, label + x);
    else
      labelObjects(bits, number + x, static_cast<int>(ncols - x), label + x);
  }
}

// Numbers and labels pair by pair: what has been read of the labels is still near when it is written.
int labelComponents(Runs runs, imImage *labels) {
  const Array<int> number = makeArray<int>(runs.words() * wordBits + stride);
  const auto labelPair = [&](int pair) {
    if (!runs.hasRuns(pair))
      return;
    spreadNumbers(runs.walk(pair), runs.words(), runs.numbers(), number.get());
    for (int y = 2 * pair; y < labels->nrows && y / 2 == pair; ++y)
      labelRow(runs.row(y), number.get(), labels->ncols, labels->band[0] + labels->row[y]);
  };
  int n = 0;
  for (int pair = 0; pair < runs.pairs(); ++pair) {
    n = runs.number(pair, labels->band[0], n);
    labelPair(pair);
  }
  if (runs.numberLate())
    for (int pair = 0; pair < runs.pairs(); ++pair)
      labelPair(pair);
  return n;
}

} // namespace

void ifLabelImage(const imImage *binary, imImage *labels) {
  requireBands("ifLabelImage", binary, 1);
  requireBands("ifLabelImage", labels, 1);
  requireSameSize("ifLabelImage", binary, labels);
  announceLabelling();
  labels->maxValue = labelComponents(findRuns(binary), labels);
}

void ifConnectedComponents(const imImage *grey, imImage *output, const ifRoots *roots) {
  requireBands("ifConnectedComponents", grey, 1);
  requireBands("ifConnectedComponents", output, 1);
  requireSameSize("ifConnectedComponents", grey, output);
  requireRoots("ifConnectedComponents", roots, grey);
  const NeighborWalk neighbors(grey, imNeighborhood8);
  const int *value = grey->band[0];
  const Array<bool> reached = makeZeroedArray<bool>(static_cast<std::size_t>(grey->npixels));
  Stack<int> waiting; // in no particular order: the zones do not depend on it
  const auto reach = [&](int p) {
    if (reached[p])
      return;
    reached[p] = true;
    output->band[0][p] = 255;
    waiting.push(p);
  };
  for (int i = 0; i < roots->n; ++i)
    reach(roots->pixel[i]);
  while (!waiting.isEmpty()) {
    const int p = waiting.pop();
    neighbors.each(p, [&](int q, int) {
      if (value[q] == value[p])
        reach(q);
    });
  }
}

void ifCorrectLabels(imImage *labels) {
  requireBands("ifCorrectLabels", labels, 1);
  const LabelIndex index(labels);
  const Array<int> map = makeZeroedArray<int>(index.size());
  int k = 0;
  for (int p = 0; p < labels->npixels; ++p) {
    int &label = labels->band[0][p];
    int &number = map[index(label)];
    if (number == 0)
      number = ++k;
    label = number;
  }
  labels->maxValue = k;
}

namespace seedforest::detail {

void announceLabelling() {
  progress("in ifLabelImage\n");
}

} // namespace seedforest::detail
