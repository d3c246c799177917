// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/iftFuzzy.h"

#include "image/detail/neighborWalk.h"
#include "support.h"

using namespace seedforest::detail;

namespace {

struct Fuzzy {
  Matrix labels, costs;
  std::string debug[2];
};

// Runs in a folder of its own. What is not reached keeps the label 7.
Fuzzy run(const Matrix &rows, const std::vector<Root> &seeds, const std::vector<int> &mean,
          const std::vector<int> &sigma, imNeighborhoodFn adjacency = imNeighborhood4) {
  const TemporaryFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path(""));
  const imImagePtr image = makeImage(rows);
  const imImagePtr labels(imCopyImage(image.get()));
  const imImagePtr costs(imCopyImage(image.get()));
  std::fill_n(labels->band[0], labels->npixels, 7);
  iftFuzzy(image.get(), labels.get(), costs.get(), adjacency, makeRoots(seeds).get(), mean.data(),
           sigma.data(), static_cast<int>(mean.size()) - 1);
  std::filesystem::current_path(before);
  return {bandOf(labels),
          bandOf(costs),
          {contentsOf(folder.path("tmp1.pgm")), contentsOf(folder.path("tmp2.pgm"))}};
}

TEST(Fuzzy, TheObjectOfTheBestChainWins) {
  // A third object has no seeds. Links cost object 1 (mean 10) 0 162 255 255, and object 2 (mean 18) 255 255 221 0.
  const Fuzzy line = run({{10, 11, 13, 17, 18}}, {{0, 1}, {4, 2}}, {0, 10, 18, 9}, {0, 4, 4, 4});
  EXPECT_EQ(line.labels, (Matrix{{1, 1, 1, 2, 2}}));
  EXPECT_EQ(line.costs, (Matrix{{0, 0, 162, 0, 0}}));
  EXPECT_EQ(line.debug[0], "P2\n5 1\n255\n    0     0   162   255   255 ");
  EXPECT_EQ(line.debug[1], "P2\n5 1\n255\n  255   255   221     0     0 ");
}

TEST(Fuzzy, TiesSeedsAndWhatIsNotReached) {
  const Matrix plain(2, {5, 5, 5});
  // A tie everywhere; seeds of no object, even outside the image; values and repeats do not count.
  const Fuzzy tie =
      run(plain, {{5, 2, -9}, {0, 1, 300}, {0, 1}, {-4, 0}, {99, 3}}, {0, 5, 5}, {0, 1, 1});
  EXPECT_EQ(tie.labels, Matrix(2, {1, 1, 1}));
  EXPECT_EQ(tie.costs, Matrix(2, {0, 0, 0}));
  // One object, and a relation that leads right and down only.
  const Fuzzy one = run(plain, {{1, 1}}, {0, 6}, {0, 1}, imNeighborhood4forward);
  EXPECT_EQ(one.labels, (Matrix{{7, 1, 1}, {7, 1, 1}}));
  EXPECT_EQ(one.costs, (Matrix{{maxInt, 0, 162}, {maxInt, 162, 162}}));
  EXPECT_EQ(one.debug[0].substr(0, 18), "P2\n3 2\n2147483647\n");
  EXPECT_EQ(one.debug[1], "(no such file)");
  EXPECT_EQ(run(plain, {{0, 1}}, {0}, {0}).costs, Matrix(2, {maxInt, maxInt, maxInt}));
}

// The cheapest chains for one object: every link is tried until nothing changes.
std::vector<int> cheapest(const imImagePtr &weights, const std::vector<Root> &seeds, int object) {
  const NeighborWalk neighbors(weights.get(), imNeighborhood8);
  std::vector<int> cost(static_cast<std::size_t>(weights->npixels), maxInt);
  for (const Root &seed : seeds)
    if (seed.label == object)
      cost[seed.pixel] = 0;
  for (bool changes = true; changes;) {
    changes = false;
    for (int p = 0; p < weights->npixels; ++p)
      neighbors.each(p, [&](int q, int k) {
        const int offered = std::max(cost[p], weights->band[k][p]);
        changes |= offered < cost[q];
        cost[q] = std::min(cost[q], offered);
      });
  }
  return cost;
}

TEST(Fuzzy, OnGivenWeights) {
  std::mt19937 random(61);
  for (int round = 0; round < 200; ++round) {
    const int ncols = pick(random, 1, 12), nrows = pick(random, 1, 12);
    const int largest = std::vector{3, 255, 70000, maxInt}[round % 4];
    const imImagePtr one = randomImage(random, 8, imTypeWork, ncols, nrows, -5, largest);
    const imImagePtr two = randomImage(random, 9, imTypeWork, ncols, nrows, -5, 3);
    std::vector<Root> seeds;
    for (int n = pick(random, 0, 4); n > 0; --n)
      seeds.push_back({pick(random, 0, ncols * nrows - 1), pick(random, 1, 3)});
    const imImage *const weights[] = {nullptr, one.get(), two.get()};
    const imImagePtr labels = blank(ncols, nrows), costs = blank(ncols, nrows);
    iftFuzzyEdges(labels.get(), labels.get(), costs.get(), imNeighborhood8, makeRoots(seeds).get(),
                  weights, 2);
    const std::vector<int> ones = cheapest(one, seeds, 1), twos = cheapest(two, seeds, 2);
    for (int p = 0; p < ncols * nrows; ++p) {
      const int best = std::min(ones[p], twos[p]);
      ASSERT_EQ(costs->band[0][p], best) << round;
      ASSERT_EQ(labels->band[0][p], best == maxInt ? 0 : ones[p] == best ? 1 : 2) << round;
    }
  }
}

TEST(Fuzzy, LinkCosts) {
  const struct { // the average of the value and the next one is rounded towards 0
    int value, mean, sigma, cost;
  } table[] = {
      // 81 / 100 is 0; 46341 squared is the smallest square above an int
      {9, 0, 100, 0},           {10, 0, 100, 162},        {15, 0, 100, 221},
      {-15, 0, 100, 162},       {23, 0, 100, 254},        {25, 0, 100, 255},
      {10, 0, -100, 255 - 693}, {maxInt, minInt, 1, 255}, {minInt, maxInt, minInt, 255 - maxInt},
      {46341, 0, maxInt, 162},
  };
  for (const auto &[value, mean, sigma, cost] : table) {
    const imImagePtr image = makeImage({{value, std::min(value, maxInt - 1) + 1}});
    const imImagePtr links(ifFuzzyEdgesWeight(image.get(), imNeighborhood4, mean, sigma));
    EXPECT_EQ(bandOf(links, 0), (Matrix{{cost, 0}})) << value << ' ' << mean << ' ' << sigma;
    EXPECT_EQ(bandOf(links, 3), (Matrix{{0, cost}}));
  }
  const Matrix frame = {{127, 191, 127}, {191, 255, 191}, {127, 191, 127}};
  const imImagePtr image = makeImage(Matrix(3, {200, 200, 200}));
  EXPECT_EQ(bandOf(imImagePtr(ifTestFuzzy(image.get(), 0, 9)).get()), frame);
}

} // namespace
