// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/iftForest.h"

#include "base/report.h"
#include "base/require.h"
#include "ift/core/detail/costs.h"
#include "ift/core/detail/forestTransforms.h"
#include "ift/core/detail/iftPacked.h"
#include "ift/core/detail/reconstruct.h"
#include "ift/core/detail/rootsTools.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <numeric>
#include <utility>

using namespace seedforest::detail;

namespace {

// The arguments that all transforms share; levelling passes no path cost.
struct Task {
  const char *operation;
  const imImage *input;
  imImage *output;
  int maxCost;
  ifPathCostFn pathCost;
  const ifRoots *seeds;

  int **bands() const { return output->band + output->nbands - 3; }
  ForestBands forest() const { return {bands()[0], bands()[1], bands()[2], maxCost}; }
};

void check(const Task &task) {
  requireBands(task.operation, task.input, 0);
  requireBands(task.operation, task.output, 3);
  requireSameSize(task.operation, task.input, task.output);
  requireBound(task.operation, task.maxCost);
  requireRoots(task.operation, task.seeds, task.input);
}

// Runs a transform whose cost band has been filled.
template <class Base>
void grow(Base base, int npixels, const ifRoots &seeds) {
  Marked<Base> transform(std::move(base), npixels);
  BucketQueue<CostedEntry> queue(std::int64_t{transform.maxCost} + 1, npixels);
  std::fill_n(transform.label, npixels, 0);
  forEachSeed(pixelsOf(seeds), transform.pred, [&](int i, int p) {
    const int cost = seeds.value[i];
    transform.label[p] = seeds.label[i];
    transform.cost[p] = cost;
    queue.append(transform.bucket(cost, p), {p, cost});
  });
  std::iota(transform.pred, transform.pred + npixels, 0);
  propagate(transform, queue);
}

template <class Towards, class Arcs>
void growForest(const Task &task, Arcs arcs, const ifRoots *seeds) {
  requireGiven(task.operation, "path cost", task.pathCost);
  const int npixels = task.input->npixels;
  std::fill_n(task.forest().cost, npixels, Towards::direction.unreached);
  grow(ForestTransform<Towards, Arcs>{task.forest(), std::move(arcs), task.pathCost}, npixels,
       *seeds);
}

// The seeds where the mask is above 0. A negative value keeps seeds away but lets paths in.
ifRootsPtr seedsWithin(const imImage *mask, const ifRoots *seeds) {
  ifRootsPtr within = createRoots(seeds->n);
  within->n = 0;
  for (int i = 0; i < seeds->n; ++i)
    if (mask->band[0][seeds->pixel[i]] > 0) {
      const int at = within->n++;
      within->pixel[at] = seeds->pixel[i];
      within->label[at] = seeds->label[i];
      within->value[at] = seeds->value[i];
    }
  return within;
}

template <class Arcs>
void growMasked(const Task &task, Arcs arcs, const imImage *mask) {
  requireBands(task.operation, mask, 1);
  requireSameSize(task.operation, task.input, mask);
  growForest<Minimising>(task, Masked<Scaled<Arcs>>{{std::move(arcs)}, mask->band[0]},
                         seedsWithin(mask, task.seeds).get());
}

// Runs the fast form of iftPacked.h if it covers the two functions and all values; else returns
// false.
template <class Towards>
bool ranPacked(const Task &task, const FunctionArcs &arcs) {
  const Direction &direction = Towards::direction;
  const bool isLocal = task.pathCost == direction.localPathCost;
  const bool isKnown = isLocal || task.pathCost == direction.pathCost;
  int **bands = task.bands();
  return arcs.weigh.function == ifWatershedMetric && isKnown &&
         runPacked({task.input, task.input->band[0], arcs.neighbors, task.seeds, task.maxCost,
                    direction.best == Extremum::largest, isLocal, bands[0], bands[1], bands[2]});
}

template <class Towards>
void nonNormalized(const Task &task, imNeighborhoodFn adjacency, ifArcWeightFn arcWeight) {
  check(task);
  FunctionArcs arcs = functionArcs(task.operation, task.input, adjacency, arcWeight);
  if (!ranPacked<Towards>(task, arcs))
    growForest<Towards>(task, std::move(arcs), task.seeds);
}

// The weight of levelling.
struct Destination {
  const imImage *image;
  int operator()(int, int q) const { return image->band[0][q]; }
};

void withWeightImage(const Task &task, const imImage *weights) {
  check(task);
  growForest<Minimising>(task, weightImageArcs(task.operation, task.input, weights), task.seeds);
}

} // namespace

void iftNonNormalized(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                      ifArcWeightFn arcWeight, int maxCost, ifPathCostFn pathCost,
                      const ifRoots *seeds) {
  nonNormalized<Minimising>({"iftNonNormalized", input, output, maxCost, pathCost, seeds},
                            adjacency, arcWeight);
}

void iftNonNormalizedInverted(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                              ifArcWeightFn arcWeight, int maxCost, ifPathCostFn pathCost,
                              const ifRoots *seeds) {
  nonNormalized<Maximising>({"iftNonNormalizedInverted", input, output, maxCost, pathCost, seeds},
                            adjacency, arcWeight);
}

void ift(const imImage *input, imImage *output, imNeighborhoodFn adjacency, ifArcWeightFn arcWeight,
         ifPathCostFn pathCost, const ifRoots *seeds) {
  const Task task = {"ift", input, output, fixedBuckets - 1, pathCost, seeds};
  check(task);
  growForest<Minimising>(
      task, Scaled<FunctionArcs>{functionArcs(task.operation, task.input, adjacency, arcWeight)},
      seeds);
}

void iftWF(const imImage *input, imImage *output, const imImage *weights, ifPathCostFn pathCost,
           const ifRoots *seeds) {
  withWeightImage({"iftWF", input, output, 1000, pathCost, seeds}, weights);
}

void iftNonNormalizedWF(const imImage *input, imImage *output, const imImage *weights, int maxCost,
                        ifPathCostFn pathCost, const ifRoots *seeds) {
  withWeightImage({"iftNonNormalizedWF", input, output, maxCost, pathCost, seeds}, weights);
}

void iftMask(const imImage *input, imImage *output, const imImage *mask, imNeighborhoodFn adjacency,
             ifArcWeightFn arcWeight, ifPathCostFn pathCost, const ifRoots *seeds) {
  const Task task = {"iftMask", input, output, fixedBuckets - 1, pathCost, seeds};
  check(task);
  growMasked(task, functionArcs(task.operation, task.input, adjacency, arcWeight), mask);
}

void iftMaskWF(const imImage *input, imImage *output, const imImage *mask, const imImage *weights,
               ifPathCostFn pathCost, const ifRoots *seeds) {
  const Task task = {"iftMaskWF", input, output, fixedBuckets - 1, pathCost, seeds};
  check(task);
  growMasked(task, weightImageArcs(task.operation, task.input, weights), mask);
}

void iftNonNormalizedLevel(const imImage *input, const imImage *marker, imImage *output,
                           imNeighborhoodFn adjacency, const ifRoots *seeds) {
  const char *operation = "iftNonNormalizedLevel";
  requireBands(operation, input, 1);
  requireBands(operation, marker, 1);
  requireSameSize(operation, input, marker);
  const Task task = {operation, input, output, marker->maxValue, nullptr, seeds};
  check(task);
  requireGiven(operation, "adjacency", adjacency);
  std::copy_n(marker->band[0], input->npixels, task.bands()[1]);
  using Arcs = AdjacencyArcs<Destination>;
  grow(LevelTransform<Arcs>{task.forest(), {NeighborWalk(input, adjacency), {input}}},
       input->npixels, *seeds);
}
