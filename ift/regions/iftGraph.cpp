// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/iftGraph.h"

#include "base/buffer.h"
#include "base/require.h"
#include "graph/detail/graphTools.h"
#include "ift/core/detail/forestTransforms.h"
#include "ift/core/detail/reconstruct.h"
#include "ift/regions/detail/graphTransforms.h"

#include <cstddef>
#include <cstdint>

using namespace seedforest::detail;

namespace {

constexpr const char *operation = "iftGraph";

struct GraphForestTransform : VertexForest {
  ifPathCostFn pathCost;
  int maxCost;

  int extend(int u, int v, int k) const { return pathCost(costOf(u), arcs.weight(u, v, k)); }
  int bucket(int offered, int) const { return bucketOf<Minimising>(offered, maxCost); }
};

} // namespace

ifGraph *iftGraph(ifGraph *graph, ifGraphWeightFn weight, ifPathCostFn pathCost, int maxCost,
                  const ifRoots *roots) {
  requireGraph(operation, graph);
  requireGiven(operation, "weight", weight);
  requireGiven(operation, "path cost", pathCost);
  requireBound(operation, maxCost);
  requireGiven(operation, "roots record", roots);
  for (int i = 0; i < roots->n; ++i)
    requireVertex(operation, graph, roots->pixel[i]);
  ifGraphPtr forest = copyOf(operation, graph, forestDataSize);
  const int n = graph->nVertices;
  Marked<GraphForestTransform> transform(
      {{{operation, graph, {graph, weight}}, forest->vertices}, pathCost, maxCost}, n);
  transform.clear(n);
  BucketQueue<CostedEntry> queue(std::int64_t{maxCost} + 1, n);
  const Array<int> scratch = makeArray<int>(static_cast<std::size_t>(n));
  forEachSeed(pixelsOf(*roots), scratch.get(), [&](int i, int v) {
    const int cost = roots->value[i];
    transform.set(v, roots->label[i], cost, v);
    queue.append(transform.bucket(cost, v), {v, cost});
  });
  propagate(transform, queue);
  return forest.release();
}
