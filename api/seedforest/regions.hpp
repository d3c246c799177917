// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Regions of a label image: measurements, and graphs of neighbouring regions that merge.
#pragma once

#include "graph/graph.h"
#include "ift/core/ifCost.h"
#include "ift/regions/ifRegionGraph.h"
#include "seedforest/detail/through.hpp"
#include "seedforest/image.hpp"
#include "seedforest/roots.hpp"

#include <span>
#include <vector>

#pragma GCC visibility push(default)

namespace seedforest {

/// The measurements of a region: its label, the number of its pixels, and the average of each band
/// of an image over them (integers, truncated).
struct Region {
  int label;
  int area;
  std::vector<int> averages;
  bool operator==(const Region &) const = default;
};

/// The regions of the labels above 0 that occur, by label. Labels are 0 .. maxValue.
/// Throws Error: other labels.
std::vector<Region> measure(const Image &labels, const Image &image);

/// The bands of an image brought to 0 .. 1000 each, as features of its pixels; and a feature image
/// with one band more, that of an image, brought to the same range. See ifFeatures.h.
/// Throws Error: no such band, images of different size.
Image featuresOf(const Image &image);
Image withFeature(const Image &features, const Image &image, int band = 0);

/// A graph: vertices 0 .. size() - 1 with integers on each, and edges with weights; see graph.h. It
/// is movable, and copied only by copy(). A graph that was moved from has no vertices. Threads must
/// not share a graph, not even for copying, which moves the cursors of its lists.
class Graph {
public:
  /// The edge to a neighbour.
  struct Edge {
    int target;
    int weight;
    bool operator==(const Edge &) const = default;
  };

  /// A graph of the vertices 0 .. n without edges, with dataSize integers of 0 on each.
  explicit Graph(int n, int dataSize = 0);

  /// Takes over a record of the library.
  explicit Graph(ifGraphPtr graph) noexcept : graph_(std::move(graph)) {}

  /// A copy with edges and data; the lists are in the same order.
  Graph copy() const;

  int size() const { return graph_ == nullptr ? 0 : graph_->nVertices; }

  /// The integers on a vertex.
  /// Throws Error: no such vertex.
  std::span<int> data(int vertex);
  std::span<const int> data(int vertex) const;

  /// A vertex's edges, from the youngest to the oldest.
  /// Throws Error: no such vertex.
  std::vector<Edge> edges(int vertex) const;

  /// Inserts an edge between two vertices, unless there is one already, or removes it.
  /// Throws Error: no such vertex.
  void insertEdge(int a, int b, int weight = 0);
  void removeEdge(int a, int b);

  /// The record, for the library's operations.
  ifGraph *get() { return graph_.get(); }
  const ifGraph *get() const { return graph_.get(); }

  /// Returns the record, which the caller then owns; this object has no vertices any more.
  ifGraphPtr release() { return std::move(graph_); }

protected:
  /// The record. Throws Error where the graph was moved from.
  ifGraph *record() const;

private:
  ifGraphPtr graph_;
};

/// Weights of a region graph's edges, by name; see ifRegionGraph.h. Any function of (u, v), or of
/// (const ifGraph *, u, v), may be used instead.
namespace regionWeight {
inline constexpr ifGraphWeightFn euclidean = ifGraphEuclideanDistance;
inline constexpr ifGraphWeightFn smaller = ifGraphMinDistance;
inline constexpr ifGraphWeightFn watershed = ifGraphWatershedDistance;
} // namespace regionWeight

/// The graph of the regions of a label image with labels 0 .. maxValue: an edge between any two
/// that meet at 8-neighbours, and features as the integers on each vertex. Label 0 is no region,
/// and merging covers the regions that are connected with region 1.
class RegionGraph : public Graph {
public:
  /// Without features; or with the averages of an image's bands, rescaled to 0 .. 1000 over all
  /// regions, as features for merging.
  explicit RegionGraph(const Image &labels);
  RegionGraph(const Image &labels, const Image &image);

  using Graph::Graph;
  RegionGraph copy() const { return RegionGraph(Graph::copy().release()); }

  /// A copy of the labels.
  Image labels() const;

  /// Graphs of the same regions with other features: the averages of an image's bands; the features
  /// rescaled to 0 .. 1000; the area; the volume below the image's maxValue; how far features vary
  /// over a region and its neighbours.
  RegionGraph withAverages(const Image &image) const;
  RegionGraph withRescaled() const;
  RegionGraph withAreas() const;
  RegionGraph withVolumes(const Image &image) const;
  RegionGraph withGradients() const;

  /// The minimum spanning tree by the weights, expected in 0 .. 1000; see iftPrimGraph.
  /// Throws Error: no features.
  template <class Weight>
  RegionGraph spanningTree(Weight &&weight) const {
    return detail::withFunction<ifGraphWeightFn>(
        weight, [this](ifGraphWeightFn function) { return treeBy(function); });
  }

  /// Labels of merged regions, from 1; label 0 stays 0. A spanning tree is cut at its n - 1
  /// heaviest edges, or at all edges heavier than a weight. mergeTo() and mergeBelow() cut the
  /// spanning tree by the distance of features; cutInto() and cutAbove() cut this graph, which must
  /// be a spanning tree. See ifThresholdMST_nRegions and ifThresholdMST.
  Image mergeTo(int n) const { return spanningTree(regionWeight::euclidean).cutInto(n); }
  Image mergeBelow(int weight) const {
    return spanningTree(regionWeight::euclidean).cutAbove(weight);
  }
  Image cutInto(int n) const;
  Image cutAbove(int weight) const;

  /// Labels of merged regions, likewise, in the order of the regions that they are made of. In the
  /// first, regions of fewer pixels than `area` go to the neighbour at the lightest edge; in the
  /// second, regions merge across all edges up to a weight, whether they are connected with region
  /// 1 or not; in the third, the two neighbours of the nearest average colours merge as long as
  /// these, which follow, are no farther apart than a distance. See ifRegionMerging.h.
  /// Throws Error: no features where the weights read them, an image of another size.
  template <class Weight = const ifGraphWeightFn &>
  Image removeSmall(int area, Weight &&weight = regionWeight::euclidean) const {
    return detail::withFunction<ifGraphWeightFn>(
        weight, [&](ifGraphWeightFn function) { return removeSmallBy(area, function); });
  }
  template <class Weight = const ifGraphWeightFn &>
  Image mergeSimilar(int threshold, Weight &&weight = regionWeight::euclidean) const {
    return detail::withFunction<ifGraphWeightFn>(
        weight, [&](ifGraphWeightFn function) { return mergeSimilarBy(threshold, function); });
  }
  Image mergeSimilarColors(const Image &image, int distance) const;

  /// The forest of the paths of least cost from regions, the pixels of the roots: a copy with
  /// label, cost and predecessor on each vertex; see iftGraph. Costs beyond maxCost are served in
  /// remainder order.
  /// Throws Error: a root that is no vertex, a negative maxCost.
  template <class Cost, class Weight>
  RegionGraph forest(const Roots &roots, Cost &&cost, Weight &&weight, int maxCost = 1000) const {
    return detail::withFunction<ifPathCostFn>(cost, [&](ifPathCostFn costFunction) {
      return detail::withFunction<ifGraphWeightFn>(weight, [&](ifGraphWeightFn weightFunction) {
        return forestBy(roots, costFunction, weightFunction, maxCost);
      });
    });
  }

  /// The graph of the regions that the first feature numbers; see ifColapseGraph.
  RegionGraph collapsed() const;

  /// An image with a band for each feature: its value on each pixel's region.
  Image paint() const;

private:
  RegionGraph treeBy(ifGraphWeightFn weight) const;
  RegionGraph forestBy(const Roots &roots, ifPathCostFn cost, ifGraphWeightFn weight,
                       int maxCost) const;
  Image removeSmallBy(int area, ifGraphWeightFn weight) const;
  Image mergeSimilarBy(int threshold, ifGraphWeightFn weight) const;
};

} // namespace seedforest

#pragma GCC visibility pop
