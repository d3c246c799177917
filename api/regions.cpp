// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/regions.hpp"

#include "base/report.h"
#include "detail/quietly.h"
#include "ift/regions/ifFeatures.h"
#include "ift/regions/ifRegionData.h"
#include "ift/regions/ifRegionMerging.h"
#include "ift/regions/iftGraph.h"
#include "ift/regions/iftSpanning.h"

#include <algorithm>
#include <utility>

namespace seedforest {

using namespace detail;

namespace {

ifGraphPtr owned(ifGraph *graph) {
  if (graph == nullptr)
    endAfterFailure();
  return ifGraphPtr(graph);
}

// The vertex of a graph.
ifVertex &vertexOf(const ifGraph *graph, int vertex) {
  if (graph == nullptr || vertex < 0 || vertex >= graph->nVertices)
    fatal("a graph has no vertex %d\n", vertex);
  return graph->vertices[vertex];
}

Image takeLabels(const ifGraphPtr &graph) {
  return Image(imImagePtr(std::exchange(graph->labelImage, nullptr)));
}

} // namespace

std::vector<Region> measure(const Image &labels, const Image &image) {
  return quietly([&] {
    const ifGraphPtr vertices = owned(createGraph(recordOf(labels), 0));
    const ifGraphPtr areas = owned(ifComputeArea(vertices.get()));
    const ifGraphPtr averages = owned(ifComputeAverageColors(vertices.get(), recordOf(image)));
    std::vector<Region> regions;
    for (int v = 1; v < areas->nVertices; ++v)
      if (const int area = areas->vertices[v].data[0]; area > 0) {
        const int *average = averages->vertices[v].data;
        regions.push_back({v, area, std::vector<int>(average, average + averages->dataSize)});
      }
    return regions;
  });
}

Image featuresOf(const Image &image) {
  return quietly([&] { return made(ifCreateFeaturesVector(recordOf(image))); });
}

Image withFeature(const Image &features, const Image &image, int band) {
  return quietly(
      [&] { return made(ifAddFeatureToVector(recordOf(features), recordOf(image), band)); });
}

Graph::Graph(int n, int dataSize) {
  graph_ = quietly([&] { return owned(allocateGraph(n, dataSize)); });
}

ifGraph *Graph::record() const {
  if (graph_ == nullptr)
    fatal("there is no graph: it was moved from\n");
  return graph_.get();
}

Graph Graph::copy() const {
  return quietly([&] {
    // A copy has its lists reversed; the copy of a copy has them in order.
    const ifGraphPtr turned = owned(copyBaseGraph(record(), 0));
    Graph copy(owned(copyBaseGraph(turned.get(), record()->dataSize)));
    for (int v = 0; v < size(); ++v)
      std::ranges::copy(data(v), copy.data(v).begin());
    return copy;
  });
}

std::span<int> Graph::data(int vertex) {
  return quietly([&] {
    int *data = vertexOf(get(), vertex).data;
    return std::span<int>(data, data == nullptr ? 0 : static_cast<std::size_t>(get()->dataSize));
  });
}

std::span<const int> Graph::data(int vertex) const {
  return const_cast<Graph *>(this)->data(vertex);
}

std::vector<Graph::Edge> Graph::edges(int vertex) const {
  return quietly([&] {
    std::vector<Edge> edges;
    for (const ifEdge *edge = vertexOf(get(), vertex).edges; edge != nullptr; edge = edge->next)
      edges.push_back({edge->target, edge->weight});
    return edges;
  });
}

void Graph::insertEdge(int a, int b, int weight) {
  quietly([&] { ::insertEdge(record(), a, b, weight); });
}

void Graph::removeEdge(int a, int b) {
  quietly([&] { ::removeEdge(record(), a, b); });
}

RegionGraph::RegionGraph(const Image &labels)
    : Graph(quietly([&] { return owned(ifMosaicToGraph(recordOf(labels))); })) {}

RegionGraph::RegionGraph(const Image &labels, const Image &image)
    : RegionGraph(RegionGraph(labels).withAverages(image).withRescaled()) {}

Image RegionGraph::labels() const {
  return quietly([&] { return made(imCopyImage(record()->labelImage)); });
}

RegionGraph RegionGraph::withAverages(const Image &image) const {
  return quietly(
      [&] { return RegionGraph(owned(ifComputeAverageColors(record(), recordOf(image)))); });
}

RegionGraph RegionGraph::withRescaled() const {
  return quietly([&] { return RegionGraph(owned(ifCreateFeaturesGraph(record()))); });
}

RegionGraph RegionGraph::withAreas() const {
  return quietly([&] { return RegionGraph(owned(ifComputeArea(record()))); });
}

RegionGraph RegionGraph::withVolumes(const Image &image) const {
  return quietly([&] { return RegionGraph(owned(ifComputeVolume(record(), recordOf(image)))); });
}

RegionGraph RegionGraph::withGradients() const {
  return quietly([&] { return RegionGraph(owned(ifMorphoGradGraph(record()))); });
}

RegionGraph RegionGraph::treeBy(ifGraphWeightFn weight) const {
  return quietly([&] { return RegionGraph(owned(iftPrimGraph(record(), weight))); });
}

Image RegionGraph::cutInto(int n) const {
  return quietly([&] { return takeLabels(owned(ifThresholdMST_nRegions(record(), n))); });
}

Image RegionGraph::cutAbove(int weight) const {
  return quietly([&] { return takeLabels(owned(ifThresholdMST(record(), weight))); });
}

RegionGraph RegionGraph::forestBy(const Roots &roots, ifPathCostFn cost, ifGraphWeightFn weight,
                                  int maxCost) const {
  return quietly(
      [&] { return RegionGraph(owned(iftGraph(record(), weight, cost, maxCost, roots.get()))); });
}

Image RegionGraph::removeSmallBy(int area, ifGraphWeightFn weight) const {
  return quietly(
      [&] { return takeLabels(owned(ifEliminateSmallRegions(record(), area, weight))); });
}

Image RegionGraph::mergeSimilarBy(int threshold, ifGraphWeightFn weight) const {
  return quietly(
      [&] { return takeLabels(owned(eliminateSimilarRegions(record(), threshold, weight))); });
}

Image RegionGraph::mergeSimilarColors(const Image &image, int distance) const {
  return quietly([&] {
    return takeLabels(
        owned(ifMergeSimilarColors(record(), recordOf(image), distance, ifGraphEuclideanDistance)));
  });
}

RegionGraph RegionGraph::collapsed() const {
  return quietly([&] { return RegionGraph(owned(ifColapseGraph(record()))); });
}

Image RegionGraph::paint() const {
  return quietly([&] { return made(ifAverageColorsGraphToImage(record(), imTypeFeatures)); });
}

} // namespace seedforest
