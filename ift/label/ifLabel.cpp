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

#include <algorithm>

using namespace seedforest::detail;

namespace {

SEEDFOREST_MULTIVERSION void markPositive(const int *value, int n, unsigned char *positive) {
  for (int x = 0; x < n; ++x)
    positive[x] = value[x] > 0 ? 1 : 0;
}

Runs findRuns(const imImage *image) {
  Runs runs(image->ncols, image->nrows);
  for (int y = 0; y < image->nrows; ++y) {
    markPositive(image->band[0] + image->row[y], image->ncols, runs.objects());
    runs.addRow();
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
int labelRuns(Runs runs, int *label) {
  int *link = runs.links();
  int n = 0;
  bool early = false; // whether a run, labelled before, came before its component had a number
  // A run's link becomes ~(the component's number) as soon as this is known, else the leader.
  for (int i = 0; i < runs.count(); ++i) {
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
  for (int i = 0; early && i < runs.count(); ++i) {
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
