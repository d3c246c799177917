// Regions of a label image: measurements, and graphs of neighbouring regions that merge.
#pragma once

#include "graph/graph.h"
#include "ift/regions/ifRegionGraph.h"
#include "seedforest/detail/through.hpp"
#include "seedforest/image.hpp"

#include <span>
#include <vector>

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

  /// The graph of merged regions, where the first feature is the number of the merged region; see
  /// ifColapseGraph.
  RegionGraph collapsed() const;

  /// An image with a band for each feature: its value on each pixel's region.
  Image paint() const;

private:
  RegionGraph treeBy(ifGraphWeightFn weight) const;
};

} // namespace seedforest
