// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Graphs composed from Boost.

#include "bench/rows.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/kruskal_min_spanning_tree.hpp>
#include <boost/pending/disjoint_sets.hpp>
#include <boost/version.hpp>

namespace bench {

namespace {

using Graph = boost::adjacency_list<boost::vecS, boost::vecS, boost::undirectedS,
                                    boost::no_property, boost::property<boost::edge_weight_t, int>>;

// The pairs of labels, the smaller one first, that meet at 8-neighbours: packed, each once. Most
// repeat the pair before, so these are left out at once.
std::vector<std::uint64_t> pairsOf(const imImage *labels) {
  std::vector<std::uint64_t> pairs;
  const int *value = labels->band[0];
  const auto meet = [&pairs](int a, int b) {
    if (a == b)
      return;
    const auto [low, high] = std::minmax(a, b);
    const std::uint64_t pair = std::uint64_t(low) << 32 | unsigned(high);
    if (pairs.empty() || pairs.back() != pair)
      pairs.push_back(pair);
  };
  for (int y = 0; y < labels->nrows; ++y)
    for (int x = 0; x < labels->ncols; ++x) {
      const int p = x + labels->row[y];
      const bool isLast = x + 1 == labels->ncols;
      if (!isLast)
        meet(value[p], value[p + 1]);
      if (y + 1 == labels->nrows)
        continue;
      const int *below = value + p + labels->ncols;
      meet(value[p], below[0]);
      if (!isLast)
        meet(value[p], below[1]);
      if (x > 0)
        meet(value[p], below[-1]);
    }
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  return pairs;
}

template <class Weigh>
Graph graphOf(const imImage *labels, Weigh weigh) {
  Graph graph(static_cast<std::size_t>(labels->maxValue) + 1);
  for (const std::uint64_t pair : pairsOf(labels)) {
    const std::size_t a = pair >> 32;
    const std::size_t b = pair & 0xffffffff;
    boost::add_edge(a, b, weigh(a, b), graph);
  }
  return graph;
}

struct Regions {
  imImagePtr labels;
  std::vector<int> features = randomFeatures(labels->maxValue);
  double result = 0;
};

Job regionGraph(Scene scene) {
  const auto work = std::make_shared<Regions>(Regions{drawMosaic(scene)});
  return {[work] {
            const Graph graph = graphOf(work->labels.get(), [](auto, auto) { return 0; });
            work->result = static_cast<double>(boost::num_edges(graph));
          },
          [work] { return work->result; }};
}

Job regionTree(Scene scene) {
  const auto work = std::make_shared<Regions>(Regions{drawMosaic(scene)});
  return {[work] {
            const std::vector<int> &features = work->features;
            const Graph graph = graphOf(work->labels.get(), [&](std::size_t a, std::size_t b) {
              return std::abs(features[a] - features[b]);
            });
            std::vector<boost::graph_traits<Graph>::edge_descriptor> tree;
            boost::kruskal_minimum_spanning_tree(graph, std::back_inserter(tree));
            work->result = 0;
            for (const auto &edge : tree)
              work->result += boost::get(boost::edge_weight, graph, edge);
          },
          [work] { return work->result; }};
}

// ----- pixels: arcs to the right and down, sorted by counting, joined by disjoint sets

struct Pixels {
  imImagePtr image;
  std::vector<std::uint32_t> kept; // 2 p, or 2 p + 1 for the arc down
  double weight = 0;
};

template <class Visit>
void eachArc(const imImage *image, Visit visit) {
  const int *value = image->band[0];
  for (int y = 0; y < image->nrows; ++y)
    for (int x = 0; x < image->ncols; ++x) {
      const int p = x + image->row[y];
      if (x + 1 < image->ncols)
        visit(2 * unsigned(p), unsigned(std::abs(value[p] - value[p + 1])));
      if (y + 1 < image->nrows)
        visit(2 * unsigned(p) + 1, unsigned(std::abs(value[p] - value[p + image->ncols])));
    }
}

void spanPixels(Pixels &pixels) {
  const imImage *image = pixels.image.get();
  const auto n = static_cast<std::size_t>(image->npixels);
  std::array<std::size_t, 257> start = {};
  eachArc(image, [&](unsigned, unsigned weight) { ++start[weight + 1]; });
  for (std::size_t w = 1; w < start.size(); ++w)
    start[w] += start[w - 1];
  std::vector<std::uint32_t> arcs(start.back());
  std::array<std::size_t, 257> next = start;
  eachArc(image, [&](unsigned arc, unsigned weight) { arcs[next[weight]++] = arc; });

  std::vector<unsigned char> rank(n);
  std::vector<std::uint32_t> parent(n);
  boost::disjoint_sets sets(rank.data(), parent.data());
  for (std::uint32_t p = 0; p < n; ++p)
    sets.make_set(p);
  pixels.kept.clear();
  pixels.kept.reserve(n);
  pixels.weight = 0;
  for (unsigned w = 0; w < 256; ++w)
    for (std::size_t i = start[w]; i < start[w + 1]; ++i) {
      const std::uint32_t p = arcs[i] / 2;
      const std::uint32_t q = p + (arcs[i] % 2 == 0 ? 1 : unsigned(image->ncols));
      const std::uint32_t a = sets.find_set(p);
      const std::uint32_t b = sets.find_set(q);
      if (a == b)
        continue;
      sets.link(a, b);
      pixels.kept.push_back(arcs[i]);
      pixels.weight += w;
    }
}

Job pixelTree(Scene scene) {
  const auto work = std::make_shared<Pixels>();
  work->image = drawGrey(scene);
  return {[work] { spanPixels(*work); }, [work] { return work->weight; }};
}

} // namespace

std::vector<Peer> boostPeers() {
  const std::string boost = "Boost " + std::to_string(BOOST_VERSION / 100000) + '.' +
                            std::to_string(BOOST_VERSION / 100 % 1000);
  return {
      {"region graph", boost, "pairs sorted, adjacency_list", true, regionGraph},
      {"region graph and tree", boost, "adjacency_list, kruskal_minimum_spanning_tree", true,
       regionTree},
      {"pixel spanning tree", boost,
       "counting sort of 8-bit weights, disjoint_sets: a list of arcs", true, pixelTree},
  };
}

} // namespace bench
