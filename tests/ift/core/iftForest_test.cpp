// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/iftForest.h"

#include "ift/core/detail/forestTransforms.h"
#include "ift/core/detail/iftPacked.h"
#include "ift/core/ifWeightImage.h"
#include "image/detail/neighborWalk.h"
#include "reference/literalTransform.h"
#include "support.h"

using namespace seedforest::detail;

namespace {

using Transform = void (*)(const imImage *, imImage *, imNeighborhoodFn, ifArcWeightFn, int,
                           ifPathCostFn, const ifRoots *);

// The labels, costs and predecessors.
std::vector<Matrix> run(Transform transform, const imImagePtr &input,
                        const std::vector<Root> &seeds, int maxCost, ifPathCostFn pathCost,
                        ifArcWeightFn weight = ifWatershedMetric,
                        imNeighborhoodFn adjacency = imNeighborhood8) {
  const imImagePtr output = blankLike(input, 3, imTypeWork);
  transform(input.get(), output.get(), adjacency, weight, maxCost, pathCost,
            makeRoots(seeds).get());
  return {bandOf(output, 0), bandOf(output, 1), bandOf(output, 2)};
}

TEST(Forest, TiesOnPlateaus) {
  const struct {
    const char *what;
    Matrix image;
    std::vector<Root> seeds;
    Matrix label;
    int bound;
  } cases[] = {
      {"a dearer seed is conquered", {{0, 0, 0}}, {{2, 2, 3}, {0, 1, 1}}, {{1, 1, 1}}, 9},
      {"a seed of equal cost is not", {{0, 0, 0}}, {{2, 2, 1}, {0, 1, 1}}, {{1, 2, 2}}, 9},
      {"remainder order", {{0, 0, 0}}, {{0, 1, 0}, {2, 2, 2}}, {{1, 1, 2}}, 1},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const imImagePtr image = makeImage(c.image);
    EXPECT_EQ(run(iftNonNormalized, image, c.seeds, c.bound, ifPathCostMax)[0], c.label);
    // Mirrored: the negative image and costs, maximised.
    for (int p = 0; p < image->npixels; ++p)
      image->band[0][p] = c.bound - image->band[0][p];
    std::vector<Root> seeds = c.seeds;
    for (Root &seed : seeds)
      seed.value = c.bound - seed.value;
    EXPECT_EQ(run(iftNonNormalizedInverted, image, seeds, c.bound, ifPathCostMin)[0], c.label);
  }
}

TEST(Forest, OfSmallImages) {
  const imImagePtr output = blank(2, 1, 5, imTypeWork); // of which the last three bands are used
  output->band[0][1] = 77;
  iftNonNormalized(makeImage({{0, 0}}).get(), output.get(), imNeighborhood4, ifChanferDistance, 100,
                   ifPathCostSum, makeRoots({{0, 5, 1}}).get());
  EXPECT_EQ(bandOf(output, 0), (Matrix{{0, 77}}));
  EXPECT_EQ(bandOf(output, 3), (Matrix{{1, 13}}));

  // A mask below 0 keeps a seed away but not a path.
  const imImagePtr masked = blank(4, 1, 3);
  iftMask(blank(4, 1).get(), masked.get(), makeImage({{1, -1, 0, 1}}).get(), imNeighborhood4,
          ifWatershedMetric, ifPathCostMax, makeRoots({{1, 2}, {0, 1}, {2, 3}}).get());
  EXPECT_EQ(bandOf(masked, 0), (Matrix{{1, 1, 0, 0}}));

  const auto scaled = [](ifArcWeightFn weight, ifPathCostFn pathCost) {
    const imImagePtr forest = blank(4, 1, 3);
    ift(blank(4, 1).get(), forest.get(), imNeighborhood4, weight, pathCost,
        makeRoots({{0, 1}}).get());
    return bandOf(forest, 1);
  };
  const ifArcWeightFn thousand = [](const imImage *, int, int) { return 1000; };
  const ifArcWeightFn huge = [](const imImage *, int, int) { return 50000000; };
  EXPECT_EQ(scaled(thousand, ifPathCostSum), (Matrix{{0, 49000, 98000, 147000}})); // 50000 buckets
  const int high = ifInfiniteCost; // 49 times the weight saturates
  EXPECT_EQ(scaled(huge, ifPathCostMax), (Matrix{{0, high, high, high}}));
}

// Draws walls into an image: a comb, a checkerboard, or a path that winds through all of it.
void drawWalls(const imImagePtr &image, int shape, int ground, int wall) {
  for (int p = 0; shape < 4 && p < image->npixels; ++p) {
    const int x = p % image->ncols;
    const int y = p / image->ncols;
    const bool isWall[] = {false, x % 2 == 1 && y > 0, (x + y) % 2 == 1,
                           y % 2 == 1 && x != (y % 4 == 1 ? image->ncols - 1 : 0)};
    image->band[0][p] = isWall[shape] ? wall : ground;
  }
}

int rightAndDown(int **list) {
  const int displacements[] = {1, 0, 0, 1, 1, 0};
  *list = allocateInts(std::size(displacements));
  std::copy(std::begin(displacements), std::end(displacements), *list);
  return 3;
}

int veryFar(int **list) {
  const int displacements[] = {1, 0, maxInt, 0, 0, minInt};
  *list = allocateInts(std::size(displacements));
  std::copy(std::begin(displacements), std::end(displacements), *list);
  return 3;
}

// The weight that transforms recognise against one that does the same unknown to them: with more
// displacements than a word can name, and with values up to 25 bits, which is as many as can be
// packed beside others, and beyond; and with displacements that do not reach to all sides, or so far
// that no margin could hold them. Results are the same where they are not packed, many times slower:
// only the count tells.
TEST(Forest, RecognisedWeightsEqualOthers) {
  const ifArcWeightFn unknown = [](const imImage *image, int, int q) { return image->band[0][q]; };
  const imNeighborhoodFn relations[] = {imNeighborhood8,
                                        [](int **list) { return imNeighborhood(list, 25); },
                                        [](int **list) { return imNeighborhood(list, 100); },
                                        imNeighborhood4,
                                        rightAndDown,
                                        veryFar};
  const int tops[] = {1, 255, 511, 512, (1 << 25) - 1, 1 << 25, maxInt - 1};
  std::mt19937 random(13);
  for (int round = 0; round < 420; ++round) {
    SCOPED_TRACE(round);
    const int top = tops[round % std::size(tops)];
    const int least = round % 2 == 0 ? std::max(0, top - 4) : 0; // plateaus or hardly any
    const int longest =
        round % 70 == 0 ? 400 : 35; // several runs of a bucket, and what is far ahead
    const imImagePtr image = randomImage(random, 1, imTypeAscii, pick(random, 1, longest),
                                         pick(random, 1, longest), least, top);
    drawWalls(image, pick(random, 0, 7), least, top);
    std::vector<Root> seeds;
    const bool isDense = round % 4 == 0; // most pixels, some twice, near their own values or not
    for (int label = isDense ? 2 * image->npixels : pick(random, 0, 5); label > 0; --label) {
      const int p = pick(random, 0, image->npixels - 1);
      const int near = std::max(least, image->band[0][p] - pick(random, -1, 1));
      seeds.push_back({p, label, round % 8 == 0 ? std::min(near, top) : pick(random, least, top)});
    }
    const auto expectEqual = [&](Transform transform, ifPathCostFn pathCost) {
      const imNeighborhoodFn adjacency = relations[round % std::size(relations)];
      const auto before = packedRuns;
      const auto fast = run(transform, image, seeds, top, pathCost, ifWatershedMetric, adjacency);
      const bool isPacked = top < 1 << 25 && adjacency != relations[2] && adjacency != veryFar;
      EXPECT_EQ(packedRuns - before, isPacked ? 1 : 0);
      EXPECT_EQ(fast, run(transform, image, seeds, top, pathCost, unknown, adjacency));
      EXPECT_LE(packedRuns - before, 1);
    };
    expectEqual(iftNonNormalized, ifPathCostMax);
    expectEqual(iftNonNormalized, ifPathCostMaxLocal);
    expectEqual(iftNonNormalizedInverted, ifPathCostMin);
    expectEqual(iftNonNormalizedInverted, ifPathCostMinLocal);
  }
}

struct Problem {
  imImagePtr image;
  int maxCost;
  std::vector<Root> seeds = {};
};

Problem randomProblem(std::mt19937 &random, bool inRange) {
  const int top = std::vector<int>{1, 3, 20, 255}[random() % 4];
  const int bounds[] = {0, 1, top / 3, top, 70000, maxInt};
  Problem problem = {randomImage(random, pick(random, 1, 2), imTypeAscii, pick(random, 1, 14),
                                 pick(random, 1, 14), inRange ? 0 : -top / 2, top),
                     inRange ? top : bounds[random() % 6]};
  for (int n = pick(random, 0, 9); n > 0; --n)
    problem.seeds.push_back({pick(random, 0, problem.image->npixels - 1), pick(random, 1, 2),
                             inRange ? pick(random, 0, top) : pick(random, -2 * top, 4 * top)});
  return problem;
}

constexpr ifArcWeightFn weights[] = {ifWatershedMetric, ifEuclideanDistance, ifMaxDistance,
                                     ifChanferDistance};
constexpr ifPathCostFn pathCosts[] = {ifPathCostMax, ifPathCostMin, ifPathCostSum,
                                      ifPathCostMaxLocal, ifPathCostMinLocal};

// Compares a forest with that of the literal loop, whose costs start as `start`.
template <class Base>
void expectLiteral(const imImagePtr &forest, Base base, const int *start, const ifRoots &seeds) {
  const imImagePtr literal = blankLike(forest, 3, imTypeWork);
  int **band = literal->band;
  const int maxCost = base.maxCost;
  static_cast<ForestBands &>(base) = {band[0], band[1], band[2], maxCost};
  std::copy_n(start, literal->npixels, band[1]);
  literalTransform(std::move(base), maxCost + 1, literal->npixels, seeds);
  for (int b = 0; b < 3; ++b)
    ASSERT_EQ(bandOf(forest, b), bandOf(literal, b)) << "band " << b;
}

TEST(Forest, EveryTransformEqualsTheLiteralLoop) {
  std::mt19937 random(11);
  for (int round = 0; round < 700; ++round) {
    SCOPED_TRACE(round);
    const Problem problem = randomProblem(random, round % 3 != 0);
    const int bound = std::min(problem.maxCost, 100000); // the literal queue takes memory
    const ifArcWeightFn weight = weights[round % 2 == 0 ? 0 : random() % 4];
    const ifPathCostFn pathCost = pathCosts[random() % 5];
    const imNeighborhoodFn adjacency = random() % 3 == 0 ? imNeighborhood4 : imNeighborhood8;
    const imImage *image = problem.image.get();
    const imImagePtr mask = randomImage(random, 1, imTypeAscii, image->ncols, image->nrows, -1, 2);
    const imImagePtr weightImage(watershedWF(image, adjacency)); // negative values among them
    const ifRootsPtr seeds = makeRoots(problem.seeds);
    std::vector<Root> within = problem.seeds;
    std::erase_if(within, [&](const Root &seed) { return mask->band[0][seed.pixel] <= 0; });
    const ifRootsPtr maskSeeds = makeRoots(within);

    const auto weigh = [=](int p, int q) { return weight(image, p, q); };
    using Arcs = AdjacencyArcs<decltype(weigh)>;
    const auto arcs = [&] { return Arcs{NeighborWalk(image, adjacency), weigh}; };
    const auto weightArcs = [&] {
      return WeightImageArcs{NeighborWalk(image, adjacency), weightImage->band};
    };
    const imImagePtr forest = blankLike(problem.image, 3, imTypeWork);
    const std::vector<int> infinite(image->npixels, ifInfiniteCost);
    const std::vector<int> inverted(image->npixels, ifInfiniteCostInverted);
    const auto expect = [&]<class A>(A a, int maxCost, const ifRootsPtr &s) {
      using Base = ForestTransform<Minimising, A>;
      expectLiteral(forest, Base{{{}, {}, {}, maxCost}, std::move(a), pathCost}, infinite.data(),
                    *s);
    };

    iftNonNormalized(image, forest.get(), adjacency, weight, bound, pathCost, seeds.get());
    expect(arcs(), bound, seeds);
    iftNonNormalizedInverted(image, forest.get(), adjacency, weight, bound, pathCost, seeds.get());
    using Inverted = ForestTransform<Maximising, Arcs>;
    expectLiteral(forest, Inverted{{{}, {}, {}, bound}, arcs(), pathCost}, inverted.data(), *seeds);
    ift(image, forest.get(), adjacency, weight, pathCost, seeds.get());
    expect(Scaled<Arcs>{arcs()}, 49999, seeds);
    iftMask(image, forest.get(), mask.get(), adjacency, weight, pathCost, seeds.get());
    expect(Masked<Scaled<Arcs>>{{arcs()}, mask->band[0]}, 49999, maskSeeds);
    iftWF(image, forest.get(), weightImage.get(), pathCost, seeds.get());
    expect(weightArcs(), 1000, seeds);
    iftNonNormalizedWF(image, forest.get(), weightImage.get(), bound, pathCost, seeds.get());
    expect(weightArcs(), bound, seeds);
    iftMaskWF(image, forest.get(), mask.get(), weightImage.get(), pathCost, seeds.get());
    expect(Masked<Scaled<WeightImageArcs>>{{weightArcs()}, mask->band[0]}, 49999, maskSeeds);

    const imImagePtr marker = randomImage(random, 1, imTypeAscii, image->ncols, image->nrows, 0,
                                          std::max(problem.maxCost, 1) % 300);
    marker->maxValue = bound;
    iftNonNormalizedLevel(image, marker.get(), forest.get(), adjacency, seeds.get());
    const auto value = [image](int, int q) { return image->band[0][q]; };
    using Level = LevelTransform<AdjacencyArcs<decltype(value)>>;
    expectLiteral(forest, Level{{{}, {}, {}, bound}, {NeighborWalk(image, adjacency), value}},
                  marker->band[0], *seeds);
  }
}

// Weights fall from each pixel that is settled to the next, which improves many neighbours again and
// again, and most entries of the queue are outdated soon.
TEST(Forest, OutdatedEntriesAreDropped) {
  static int level, settled;
  const auto falling = [](const imImage *, int p, int) {
    level -= std::exchange(settled, p) != p;
    return level;
  };
  const auto last = [](int, int weight) { return weight; };
  const auto disc = [](int **list) { return imNeighborhood(list, 400); };
  const imImagePtr image = blank(60, 60);
  std::vector<Root> roots;
  for (int p = 0; p < image->npixels; p += 2)
    roots.push_back({p, p, 255});
  const ifRootsPtr seeds = makeRoots(roots);
  const imImagePtr forest = blankLike(image, 3, imTypeWork);
  level = 1'000'000, settled = -1;
  iftNonNormalized(image.get(), forest.get(), disc, falling, 255, last, seeds.get());
  level = 1'000'000, settled = -1;
  const auto weigh = [falling](int p, int q) { return falling(nullptr, p, q); };
  using Arcs = AdjacencyArcs<decltype(weigh)>;
  const std::vector<int> infinite(image->npixels, ifInfiniteCost);
  expectLiteral(forest,
                ForestTransform<Minimising, Arcs>{
                    {{}, {}, {}, 255}, Arcs{NeighborWalk(image.get(), disc), weigh}, last},
                infinite.data(), *seeds);
}

TEST(Forest, LevellingKnowsTwoLabels) {
  const imImagePtr image = makeImage({{5, 2, 7, 4}});
  const imImagePtr marker = makeImage({{9, 9, 9, 1}});
  const imImagePtr forest = blankLike(image, 3);
  EXPECT_EQ(errorsOf([&] { // the left neighbour is done by then
              iftNonNormalizedLevel(image.get(), marker.get(), forest.get(), imNeighborhood8,
                                    makeRoots({{1, 3, 2}, {0, 1, 1}}).get());
            }),
            "pixel 1 has invalid label (3)!\n");
  EXPECT_EQ(bandOf(forest, 1), (Matrix{{1, 2, 9, 1}}));
}

} // namespace
