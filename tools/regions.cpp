// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "regions.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <functional>
#include <vector>

namespace seedforest::tools {

namespace {

using Numbers = std::vector<int>;

// The labels of merged regions: each of `parts` gets the label of its largest region.
Image nameParts(Numbered regions, const Image &parts) {
  Numbers areaOf(regions.labelOf.size());
  Numbers largestIn(static_cast<std::size_t>(parts.maxValue()) + 1); // by part; 0 has no pixels
  const std::span<int> numbers = regions.numbers.pixels();
  for (const int number : numbers)
    ++areaOf[static_cast<std::size_t>(number)];
  areaOf[0] = 0;
  for (std::size_t p = 0; p < numbers.size(); ++p) {
    int &largest = largestIn[static_cast<std::size_t>(parts.pixels()[p])];
    const int area = areaOf[static_cast<std::size_t>(numbers[p])];
    const int most = areaOf[static_cast<std::size_t>(largest)];
    if (area > most || (area == most && numbers[p] < largest))
      largest = numbers[p];
  }
  for (std::size_t p = 0; p < numbers.size(); ++p) {
    const int number = largestIn[static_cast<std::size_t>(parts.pixels()[p])];
    numbers[p] = numbers[p] == 0 ? 0 : regions.labelOf[static_cast<std::size_t>(number)];
  }
  regions.numbers.setMaxValue(regions.labelOf.back());
  return std::move(regions.numbers);
}

// Cuts the minimum spanning tree of the regions' averages. Its edges cover one connected set of
// regions, so that others are tied to it by edges that are heavier than all, and cut first.
Image mergedTo(int count, const Image &numbers, const Image &image) {
  constexpr int heaviest = 1000;
  RegionGraph graph(numbers, image);
  const Image sets = graph.mergeSimilar(INT_MAX);
  Numbers setOf(static_cast<std::size_t>(graph.size()));
  for (std::size_t p = 0; p < sets.pixels().size(); ++p)
    setOf[static_cast<std::size_t>(numbers.pixels()[p])] = sets.pixels()[p];
  int met = 1; // sets are numbered in the order of their first regions
  for (int v = 2; v < graph.size(); ++v)
    if (setOf[static_cast<std::size_t>(v)] > met) {
      graph.insertEdge(1, v);
      ++met;
    }
  const RegionGraph tree = graph.spanningTree([&](const ifGraph *record, int u, int v) {
    const bool isTie = setOf[static_cast<std::size_t>(u)] != setOf[static_cast<std::size_t>(v)];
    return isTie ? heaviest : std::min(regionWeight::euclidean(record, u, v), heaviest - 1);
  });
  return tree.cutInto(std::max(count, met));
}

// Numbers the regions, merges them by merge(numbers) and gives them their labels again.
Image mergedBy(const Image &labels, const std::function<Image(const Image &numbers)> &merge) {
  Numbered regions = numbered(labels);
  if (regions.labelOf.size() < 3) // of no region or one
    return labels.copy();
  const Image parts = merge(regions.numbers);
  return nameParts(std::move(regions), parts);
}

} // namespace

Numbered numbered(const Image &labels) {
  Numbered result = {labels.copy(), {0}};
  std::vector<int> &labelOf = result.labelOf;
  const std::span<int> numbers = result.numbers.pixels();
  for (const int label : numbers)
    if (label != labelOf.back()) // once for each run
      labelOf.push_back(label);
  std::ranges::sort(labelOf);
  labelOf.erase(std::unique(labelOf.begin(), labelOf.end()), labelOf.end());
  const auto numberOf = [&](int label) {
    return static_cast<int>(std::ranges::lower_bound(labelOf, label) - labelOf.begin());
  };
  std::ranges::transform(numbers, numbers.begin(), [&, last = 0, number = 0](int label) mutable {
    if (label != last)
      number = numberOf(label);
    last = label;
    return number;
  });
  result.numbers.setMaxValue(static_cast<int>(labelOf.size()) - 1);
  return result;
}

Image merged(Image labels, const Image &image, const Merging &merging) {
  if (merging.leastArea > 1)
    labels = mergedBy(labels, [&](const Image &numbers) {
      return RegionGraph(numbers).withAverages(image).removeSmall(merging.leastArea);
    });
  if (merging.similar.has_value())
    labels = mergedBy(labels, [&](const Image &numbers) {
      return RegionGraph(numbers).mergeSimilarColors(image, *merging.similar);
    });
  if (merging.count.has_value())
    labels = mergedBy(
        labels, [&](const Image &numbers) { return mergedTo(*merging.count, numbers, image); });
  return labels;
}

void clearLabel(Image &labels, int label) {
  std::ranges::replace(labels.pixels(), label, 0);
}

void drawLines(Image &labels, const Adjacency &adjacency) {
  const auto isEarlier = [](const Displacement &d) { return d.dy < 0 || (d.dy == 0 && d.dx < 0); };
  std::vector<Displacement> earlier;
  std::ranges::copy_if(adjacency.displacements(), std::back_inserter(earlier), isEarlier);
  for (int y = 0; y < labels.nrows(); ++y)
    for (int x = 0; x < labels.ncols(); ++x) {
      int &label = labels.at(x, y);
      const auto differs = [&](const Displacement &d) {
        const int qx = x + d.dx;
        const int qy = y + d.dy;
        if (qx < 0 || qx >= labels.ncols() || qy < 0)
          return false;
        const int other = labels.at(qx, qy);
        return other != 0 && other != label;
      };
      if (label != 0 && std::ranges::any_of(earlier, differs))
        label = 0;
    }
}

} // namespace seedforest::tools
