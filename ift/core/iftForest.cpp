#include "ift/core/iftForest.h"

#include "base/report.h"
#include "ift/core/iftPropagate.h"

#include <algorithm>
#include <numeric>

using namespace seedforest::detail;

namespace {

// A known path cost as a type, so that the loop inlines it.
template <ifPathCostFn function>
struct InlinedCost {
  int operator()(int cost, int weight) const { return function(cost, weight); }
};

// The watershed weight, inlined.
struct DestinationValue {
  const int *value;
  int operator()(int, int q) const { return value[q]; }
};

// Any other weight.
struct CalledWeight {
  const imImage *image;
  ifArcWeightFn function;
  int operator()(int p, int q) const { return function(image, p, q); }
};

struct Arguments {
  const imImage *input;
  imImage *output;
  imNeighborhoodFn adjacency;
  ifArcWeightFn arcWeight;
  int maxCost;
  ifPathCostFn pathCost;
  const ifRoots *seeds;
};

void check(const char *operation, const Arguments &a) {
  requireBands(operation, a.input, 0);
  requireBands(operation, a.output, 3);
  requireSameSize(operation, a.input, a.output);
  if (a.maxCost < 0)
    fatal("%s: %d is no bound for costs\n", operation, a.maxCost);
  for (int i = 0; i < a.seeds->n; ++i)
    requirePixel(operation, a.input, a.seeds->pixel[i]);
}

// Whether no cost can leave 0 .. maxCost as long as it is a seed's or a pixel's value.
bool staysInRange(const Arguments &a) {
  const auto inRange = [&a](const int *values, int n) {
    int least = 0;
    int most = 0;
    for (int i = 0; i < n; ++i) {
      least = std::min(least, values[i]);
      most = std::max(most, values[i]);
    }
    return least >= 0 && most <= a.maxCost;
  };
  return inRange(a.seeds->value, a.seeds->n) && inRange(a.input->band[0], a.input->npixels);
}

template <class Direction, class Rule>
void clear(const Rule &rule, int npixels) {
  std::fill_n(rule.label, npixels, 0);
  std::fill_n(rule.cost, npixels, Direction::infinite);
  std::iota(rule.pred, rule.pred + npixels, 0);
}

// Gives the seeds their costs and labels and puts them into the queue, each pixel at the place
// where it is listed last.
template <class Rule, class Entries>
void plant(const ifRoots &seeds, Rule &rule, const Entries &entries,
           BucketQueue<typename Entries::Entry> &queue) {
  for (int i = 0; i < seeds.n; ++i)
    rule.pred[seeds.pixel[i]] = i; // for a moment, the last seed on the pixel
  for (int i = 0; i < seeds.n; ++i) {
    const int p = seeds.pixel[i];
    if (rule.pred[p] != i)
      continue;
    rule.cost[p] = seeds.value[i];
    rule.label[p] = seeds.label[i];
    queue.append(rule.bucket(rule.cost[p], p), entries.make(p, rule.cost[p]));
  }
  for (int i = 0; i < seeds.n; ++i)
    rule.pred[seeds.pixel[i]] = seeds.pixel[i];
}

template <class Direction, class Weight, class PathCost, class Entries>
void run(const Arguments &a, Weight weight, PathCost pathCost, Entries entries) {
  int **lastBands = a.output->band + a.output->nbands - 3;
  ForestRule<Direction, PathCost> rule = {lastBands[0], lastBands[1], lastBands[2], a.maxCost,
                                          pathCost};
  BucketQueue<typename Entries::Entry> queue(std::int64_t{a.maxCost} + 1, a.input->npixels);
  clear<Direction>(rule, a.input->npixels);
  plant(*a.seeds, rule, entries, queue);
  propagate(AdjacencyArcs<Weight>{NeighborWalk(a.input, a.adjacency), weight}, rule, entries,
            queue);
}

// The watershed weight with a path cost that the loop inlines. `monotone` tells that paths never
// get better as they grow.
template <class Direction, ifPathCostFn pathCost, bool monotone>
void runInlined(const Arguments &a) {
  const DestinationValue weight = {a.input->band[0]};
  if constexpr (monotone)
    if (staysInRange(a))
      return run<Direction>(a, weight, InlinedCost<pathCost>{}, PlainEntries{});
  run<Direction>(a, weight, InlinedCost<pathCost>{}, MarkedEntries(a.input->npixels));
}

template <class Direction>
void transform(const char *operation, const Arguments &a) {
  check(operation, a);
  constexpr bool minimising = std::is_same_v<Direction, Minimising>;
  if (a.arcWeight == ifWatershedMetric) {
    requireBands(operation, a.input, 1);
    if (a.pathCost == ifPathCostMax)
      return runInlined<Direction, ifPathCostMax, minimising>(a);
    if (a.pathCost == ifPathCostMin)
      return runInlined<Direction, ifPathCostMin, !minimising>(a);
    if (a.pathCost == ifPathCostMaxLocal)
      return runInlined<Direction, ifPathCostMaxLocal, minimising>(a);
    if (a.pathCost == ifPathCostMinLocal)
      return runInlined<Direction, ifPathCostMinLocal, !minimising>(a);
  }
  run<Direction>(a, CalledWeight{a.input, a.arcWeight}, a.pathCost,
                 MarkedEntries(a.input->npixels));
}

} // namespace

void iftNonNormalized(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                      ifArcWeightFn arcWeight, int maxCost, ifPathCostFn pathCost,
                      const ifRoots *seeds) {
  transform<Minimising>("iftNonNormalized",
                        {input, output, adjacency, arcWeight, maxCost, pathCost, seeds});
}

void iftNonNormalizedInverted(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                              ifArcWeightFn arcWeight, int maxCost, ifPathCostFn pathCost,
                              const ifRoots *seeds) {
  transform<Maximising>("iftNonNormalizedInverted",
                        {input, output, adjacency, arcWeight, maxCost, pathCost, seeds});
}
