#include "ift/core/iftForest.h"

#include "base/report.h"
#include "ift/core/iftPacked.h"
#include "ift/core/iftPropagate.h"

#include <algorithm>
#include <numeric>
#include <type_traits>
#include <utility>

using namespace seedforest::detail;

namespace {

// A weight as a function of the pixels alone.
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
  if (a.arcWeight == ifWatershedMetric)
    requireBands(operation, a.input, 1);
  for (int i = 0; i < a.seeds->n; ++i)
    requirePixel(operation, a.input, a.seeds->pixel[i]);
}

// Whether the loop may inline what the pointers name, and did: see iftPacked.h.
bool ranPacked(const Arguments &a, const NeighborWalk &neighbors, bool maximise,
               int *const *bands) {
  const bool local = a.pathCost == (maximise ? ifPathCostMinLocal : ifPathCostMaxLocal);
  const bool extreme = a.pathCost == (maximise ? ifPathCostMin : ifPathCostMax);
  return a.arcWeight == ifWatershedMetric && (local || extreme) &&
         runPacked({a.input, neighbors, a.seeds, a.maxCost, maximise, local, bands[0], bands[1],
                    bands[2]});
}

template <class Direction>
void transform(const char *operation, const Arguments &a) {
  check(operation, a);
  const int npixels = a.input->npixels;
  int **bands = a.output->band + a.output->nbands - 3;
  NeighborWalk neighbors(a.input, a.adjacency);
  if (ranPacked(a, neighbors, std::is_same_v<Direction, Maximising>, bands))
    return;
  ForestRule<Direction, ifPathCostFn> rule = {bands[0], bands[1], bands[2], a.maxCost, a.pathCost};
  MarkedEntries entries(npixels);
  BucketQueue<MarkedEntries::Entry> queue(std::int64_t{a.maxCost} + 1, npixels);
  std::fill_n(rule.label, npixels, 0);
  std::fill_n(rule.cost, npixels, Direction::infinite);
  forEachSeed(*a.seeds, rule.pred, [&](int p, int label, int cost) {
    rule.label[p] = label;
    rule.cost[p] = cost;
    queue.append(rule.bucket(cost, p), entries.make(p, cost));
  });
  std::iota(rule.pred, rule.pred + npixels, 0);
  propagate(AdjacencyArcs<CalledWeight>{std::move(neighbors), {a.input, a.arcWeight}}, rule,
            entries, queue);
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
