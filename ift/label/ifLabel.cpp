// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/ifLabel.h"

#include "base/buffer.h"
#include "base/findRoot.h"
#include "base/report.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/label/detail/announceLabelling.h"
#include "ift/label/detail/labelIndex.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

#include <algorithm>
#include <cstddef>

using namespace seedforest::detail;

namespace {

// The runs of object pixels of an image, in raster order, grouped into components. The arrays have
// room for a run at every second pixel; the part that is not used takes up no memory.
struct Runs {
  explicit Runs(const imImage *image) {
    const std::size_t runsPerRow = (static_cast<std::size_t>(image->ncols) + 1) / 2;
    const std::size_t most = runsPerRow * static_cast<std::size_t>(image->nrows);
    edge = makeArray<int>(2 * most);
    link = makeArray<int>(most);
  }

  int start(int i) const { return edge[2 * static_cast<std::size_t>(i)]; }
  int end(int i) const { return edge[2 * static_cast<std::size_t>(i) + 1]; }

  int count = 0;
  // Run i starts at pixel edge[2i] and ends before pixel edge[2i + 1].
  Array<int> edge;
  // The union-find: run i is linked to an earlier run of its component, and the component's first
  // run, the leader, to itself.
  Array<int> link;
};

// Writes the edges of the runs among the pixels p .. end - 1 of a row; returns the end of the
// edges. Blocks without an edge are skipped. In the others every pixel stores its index, and only
// an edge advances the position: without a branch, which noise would make unpredictable.
int *findEdges(const int *value, int p, int end, int *edge) {
  constexpr int block = 16;
  int inside = 0;
  const auto look = [&](int q) {
    const int object = value[q] > 0 ? 1 : 0;
    *edge = q;
    edge += object ^ inside;
    inside = object;
  };
  for (; end - p >= block; p += block) {
    int objects = 0;
    for (int k = 0; k < block; ++k)
      objects += value[p + k] > 0 ? 1 : 0;
    if (objects != inside * block)
      for (int k = 0; k < block; ++k)
        look(p + k);
  }
  for (; p < end; ++p)
    look(p);
  if (inside != 0)
    *edge++ = end;
  return edge;
}

// The leader of run i's component; compresses the path to it.
int findLeader(int *link, int i) {
  return findRoot(
      i, [link](int k) { return link[k]; }, [link](int k, int leader) { link[k] = leader; });
}

// Joins the last row's runs, from `first` on, with those of the row above, from `above` on. A run
// touches another when their columns, one more on each side, overlap.
void joinRows(const Runs &runs, int above, int first, int ncols) {
  int *link = runs.link.get();
  const int endAbove = first;
  for (int i = first; i < runs.count; ++i) {
    const int left = runs.start(i) - ncols;
    const int right = runs.end(i) - ncols;
    while (above < endAbove && runs.end(above) < left)
      ++above;
    int leader = link[i] = i;
    int touching = above;
    for (; touching < endAbove && runs.start(touching) <= right; ++touching) {
      const int other = findLeader(link, touching);
      const int smaller = std::min(leader, other);
      link[std::max(leader, other)] = smaller; // no change where both are the same leader
      leader = smaller;
    }
    above = std::max(above, touching - 1); // the last one may reach the next run too
  }
}

Runs findRuns(const imImage *image) {
  Runs runs(image);
  int above = 0; // first run of the row above
  int *edge = runs.edge.get();
  for (int y = 0; y < image->nrows; ++y) {
    edge = findEdges(image->band[0], image->row[y], image->row[y] + image->ncols, edge);
    const int first = runs.count;
    runs.count = static_cast<int>((edge - runs.edge.get()) / 2);
    joinRows(runs, above, first, image->ncols);
    above = first;
  }
  return runs;
}

// Labels the pixels start .. end - 1. Most runs of a noisy image have at most four pixels: four
// stores are faster than a loop of unpredictable length.
void fillRun(int *label, int start, int end, int number) {
  const int second = end - start > 1 ? 1 : 0;
  label[start] = number;
  label[start + second] = number;
  label[end - 1 - second] = number;
  label[end - 1] = number;
  if (end - start > 4)
    std::fill(label + start + 2, label + end - 2, number);
}

// Numbers the components that have a pixel of label 0, in the order of the first such pixels, and
// labels their runs. Returns the highest number.
int labelRuns(const Runs &runs, int *label) {
  int *link = runs.link.get();
  int n = 0;
  bool early = false; // whether a run, labelled before, came before its component had a number
  // A run's link becomes ~(the component's number) as soon as this is known, else the leader.
  for (int i = 0; i < runs.count; ++i) {
    link[i] = link[link[i]];
    if (link[i] >= 0)
      link[i] = link[link[i]]; // through an early run to the leader, which may have a number now
    if (link[i] >= 0) {
      const int *end = label + runs.end(i);
      if (std::find<const int *>(label + runs.start(i), end, 0) == end) {
        early = true;
        continue;
      }
      ++n;
      link[i] = link[link[i]] = ~n;
    }
    fillRun(label, runs.start(i), runs.end(i), ~link[i]);
  }
  for (int i = 0; early && i < runs.count; ++i) {
    const int known = link[i] < 0 ? link[i] : link[link[i]];
    if (known < 0)
      fillRun(label, runs.start(i), runs.end(i), ~known);
  }
  return n;
}

} // namespace

void ifLabelImage(const imImage *binary, imImage *labels) {
  requireBands("ifLabelImage", binary, 1);
  requireBands("ifLabelImage", labels, 1);
  requireSameSize("ifLabelImage", binary, labels);
  announceLabelling();
  labels->maxValue = labelRuns(findRuns(binary), labels->band[0]);
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
