// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Rows of region graphs and spanning trees.

#include "bench/rows.h"

#include "ift/core/ifCost.h"
#include "ift/regions/ifRegionGraph.h"
#include "ift/regions/iftSpanning.h"
#include "image/imNeighborhood.h"

namespace bench {

namespace {

struct Edges {
  double count = 0;
  double weight = 0;
};

// Each edge stands in the lists of both its ends.
Edges edgesOf(const ifGraph &graph) {
  Edges edges;
  for (int v = 0; v < graph.nVertices; ++v)
    for (const ifEdge *edge = graph.vertices[v].edges; edge != nullptr; edge = edge->next) {
      edges.count += 0.5;
      edges.weight += 0.5 * edge->weight;
    }
  return edges;
}

struct Regions {
  imImagePtr labels;
  ifGraphPtr graph;
};

Job regionGraph(Scene scene) {
  const auto work = std::make_shared<Regions>(Regions{drawMosaic(scene), nullptr});
  return {[work] {
            work->graph.reset(); // its memory serves again
            work->graph.reset(ifMosaicToGraph(work->labels.get()));
          },
          [work] { return edgesOf(*work->graph).count; }};
}

// The tree is weighed by the difference of one feature.
Job regionTree(Scene scene) {
  struct Work {
    Regions regions;
    std::vector<int> features;
  };
  const auto work = std::make_shared<Work>(Work{{drawMosaic(scene), nullptr}, {}});
  work->features = randomFeatures(work->regions.labels->maxValue);
  return {[work] {
            Regions &regions = work->regions;
            regions.graph.reset();
            const ifGraphPtr bare(ifMosaicToGraph(regions.labels.get()));
            const ifGraphPtr graph(copyBaseGraph(bare.get(), 1));
            for (int v = 0; v < graph->nVertices; ++v)
              graph->vertices[v].data[0] = work->features[static_cast<std::size_t>(v)];
            regions.graph.reset(iftPrimGraph(graph.get(), ifGraphEuclideanDistance));
          },
          [work] { return edgesOf(*work->regions.graph).weight; }};
}

Job pixelTree(Scene scene) {
  struct Work {
    imImagePtr image;
    imImagePtr forest{imCreateImage(2, imTypeWork, image->ncols, image->nrows)};
  };
  const auto work = std::make_shared<Work>(Work{drawGrey(scene)});
  return {
      [work] { iftPrim(work->image.get(), work->forest.get(), imNeighborhood4, ifMaxDistance); },
      [work] { return sumOf(work->forest.get()) / 49; }};
}

} // namespace

std::vector<Row> regionRows() {
  constexpr Drawing natural = Drawing::micrograph;
  return {
      {"region graph", Subject::mosaic, {natural}, false, regionGraph},
      {"region graph and tree", Subject::mosaic, {natural}, true, regionTree},
      {"pixel spanning tree", Subject::grey, {natural, Drawing::noise}, true, pixelTree},
  };
}

} // namespace bench
