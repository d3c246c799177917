#include "ift/core/iftForest.h"

#include "ift/core/ifWeightImage.h"
#include "ift/core/iftRules.h"
#include "image/imPixelwise.h"
#include "reference/literalTransform.h"
#include "support.h"

#include <functional>

using namespace seedforest::detail;

namespace {

using Transform = void (*)(const imImage *, imImage *, imNeighborhoodFn, ifArcWeightFn, int,
                           ifPathCostFn, const ifRoots *);

struct Forest {
  Matrix label;
  Matrix cost;
  Matrix pred;
};

Forest forestOf(const imImage *output) {
  const int n = output->nbands;
  return {bandOf(output, n - 3), bandOf(output, n - 2), bandOf(output, n - 1)};
}

Forest run(Transform transform, const imImagePtr &input, const std::vector<Root> &seeds,
           int maxCost, ifPathCostFn pathCost, ifArcWeightFn weight = ifWatershedMetric) {
  const imImagePtr output(imCreateImage(3, imTypeWork, input->ncols, input->nrows));
  transform(input.get(), output.get(), imNeighborhood8, weight, maxCost, pathCost,
            makeRoots(seeds).get());
  return forestOf(output.get());
}

// The variants as iftNonNormalized on the watershed weight.
void throughWeightImage(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                        ifArcWeightFn, int maxCost, ifPathCostFn pathCost, const ifRoots *seeds) {
  const imImagePtr weights(watershedWF(input, adjacency));
  iftNonNormalizedWF(input, output, weights.get(), maxCost, pathCost, seeds);
}
void throughMask(const imImage *input, imImage *output, imNeighborhoodFn adjacency,
                 ifArcWeightFn arcWeight, int, ifPathCostFn pathCost, const ifRoots *seeds) {
  const imImagePtr mask(
      imAddToPixelValues(imImagePtr(imCreateImage(1, 2, input->ncols, input->nrows)).get(), 1));
  const ifRootsPtr scaled = createRoots(seeds->n);
  for (int i = 0; i < seeds->n; ++i) {
    scaled->pixel[i] = seeds->pixel[i];
    scaled->label[i] = seeds->label[i];
    scaled->value[i] = weightScale * seeds->value[i];
  }
  iftMask(input, output, mask.get(), adjacency, arcWeight, pathCost, scaled.get());
  for (int p = 0; p < output->npixels; ++p)
    if (int &cost = output->band[1][p]; cost != ifInfiniteCost)
      cost /= weightScale;
}

TEST(Forest, TiesOnPlateaus) {
  struct Case {
    const char *what;
    Matrix image;
    std::vector<Root> seeds;
    Matrix label;
    int bound = 9;
  };
  const Matrix odd = {{0, 0, 0, 0, 0, 0, 0, 0, 0}};
  const Matrix even = {Matrix::value_type(8, 0), Matrix::value_type(8, 0)};
  const Case cases[] = {
      {"odd gap: the first listed takes the middle",
       odd,
       {{0, 1, 0}, {8, 2, 0}},
       {{1, 1, 1, 1, 1, 2, 2, 2, 2}}},
      {"odd gap, listed in reverse", odd, {{8, 2, 0}, {0, 1, 0}}, {{1, 1, 1, 1, 2, 2, 2, 2, 2}}},
      {"even gap: each takes half",
       even,
       {{7, 2, 0}, {0, 1, 0}},
       {{1, 1, 1, 1, 2, 2, 2, 2}, {1, 1, 1, 1, 2, 2, 2, 2}}},
      {"a seed of higher cost is conquered while it waits",
       {{0, 0, 0, 0, 0}},
       {{4, 2, 3}, {0, 1, 1}},
       {{1, 1, 1, 1, 1}}},
      {"a seed of equal cost is not", {{0, 0, 0, 0, 0}}, {{4, 2, 1}, {0, 1, 1}}, {{1, 1, 2, 2, 2}}},
      {"the ridge goes to whoever is there first",
       {{0, 5, 9, 5, 0}},
       {{4, 2, 0}, {0, 1, 0}},
       {{1, 1, 2, 2, 2}}},
      {"a pixel listed twice takes the later label and the later place",
       {{0, 0, 0}},
       {{0, 1, 0}, {2, 2, 0}, {0, 3, 0}},
       {{3, 2, 2}}},
      {"costs beyond the bound are served in remainder order",
       {{0, 0, 0}},
       {{0, 1, 0}, {2, 2, 2}},
       {{1, 1, 2}},
       1},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.what);
    for (const Transform transform : {iftNonNormalized, throughWeightImage, throughMask}) {
      if (transform == throughMask && c.bound != 9)
        continue; // its bound is its own
      EXPECT_EQ(run(transform, makeImage(c.image), c.seeds, c.bound, ifPathCostMax).label, c.label);
    }
    // Mirrored: the negative image and costs, maximised.
    imImagePtr mirrored = makeImage(c.image);
    for (int p = 0; p < mirrored->npixels; ++p)
      mirrored->band[0][p] = c.bound - mirrored->band[0][p];
    std::vector<Root> seeds = c.seeds;
    for (Root &seed : seeds)
      seed.value = c.bound - seed.value;
    EXPECT_EQ(run(iftNonNormalizedInverted, mirrored, seeds, c.bound, ifPathCostMin).label,
              c.label);
  }
}

TEST(Forest, CostsAndPredecessors) {
  const imImagePtr image = makeImage({{3, 1, 4}, {1, 5, 9}});
  const Forest forest = run(iftNonNormalized, image, {{0, 7, 2}}, 9, ifPathCostMax);
  EXPECT_EQ(forest.cost, (Matrix{{2, 2, 4}, {2, 5, 9}}));
  EXPECT_EQ(forest.pred, (Matrix{{0, 0, 1}, {0, 0, 1}}));
  EXPECT_EQ(forest.label, (Matrix{{7, 7, 7}, {7, 7, 7}}));
}

TEST(Forest, UnreachedPixelsKeepTheirStart) {
  const imImagePtr image = makeImage({{3, 1, 4}});
  for (const auto &[transform, infinite] :
       {std::pair<Transform, int>{iftNonNormalized, ifInfiniteCost},
        std::pair<Transform, int>{iftNonNormalizedInverted, ifInfiniteCostInverted}}) {
    const Forest none = run(transform, image, {}, 9, ifPathCostSum);
    EXPECT_EQ(none.cost, (Matrix{{infinite, infinite, infinite}}));
    EXPECT_EQ(none.label, (Matrix{{0, 0, 0}}));
    EXPECT_EQ(none.pred, (Matrix{{0, 1, 2}}));
  }
  const Forest blocked = run(iftNonNormalized, image, {{1, 8, 3}}, 9, ifPathCostMaxLocal);
  EXPECT_EQ(blocked.cost, (Matrix{{3, 3, ifInfiniteCost}}));
  EXPECT_EQ(blocked.label, (Matrix{{8, 8, 0}}));
}

TEST(Forest, WritesTheLastThreeBandsOnly) {
  const imImagePtr image = makeImage({{0, 0}});
  const imImagePtr output(imCreateImage(5, imTypeWork, 2, 1));
  output->band[0][1] = 77;
  iftNonNormalized(image.get(), output.get(), imNeighborhood4, ifChanferDistance, 100,
                   ifPathCostSum, makeRoots({{0, 5, 1}}).get());
  EXPECT_EQ(bandOf(output.get(), 0), (Matrix{{0, 77}}));
  EXPECT_EQ(bandOf(output.get(), 3), (Matrix{{1, 13}}));
}

TEST(Forest, RefusesWhatItCannotDo) {
  const imImagePtr image = makeImage({{0, 0}});
  const imImagePtr other(imCreateImage(3, imTypeWork, 1, 2));
  const auto with = [&image](const imImage *output, const std::vector<Root> &seeds, int maxCost) {
    iftNonNormalized(image.get(), const_cast<imImage *>(output), imNeighborhood8, ifWatershedMetric,
                     maxCost, ifPathCostMax, makeRoots(seeds).get());
  };
  const imImagePtr output(imCreateImage(3, imTypeWork, 2, 1));
  const auto exits = testing::ExitedWithCode(1);
  EXPECT_EXIT(with(image.get(), {}, 1), exits, "iftNonNormalized");
  EXPECT_EXIT(with(other.get(), {}, 1), exits, "iftNonNormalized");
  EXPECT_EXIT(with(output.get(), {}, -1), exits, "iftNonNormalized.*-1");
  EXPECT_EXIT(with(output.get(), {{2, 1, 0}}, 1), exits, "iftNonNormalized.*2");
}

// Random problems, for the certificate and the comparison below.
struct Problem {
  imImagePtr image;
  std::vector<Root> seeds;
  int maxCost;
};

Problem randomProblem(std::mt19937 &random, bool inRange) {
  const auto pick = [&random](int lo, int hi) {
    return std::uniform_int_distribution(lo, hi)(random);
  };
  const int levels[] = {1, 3, 20, 255};
  const int top = levels[random() % 4];
  Problem problem = {randomImage(random, pick(1, 2), imTypeAscii, pick(1, 14), pick(1, 14),
                                 inRange ? 0 : -top / 2, top),
                     {},
                     top};
  if (!inRange)
    problem.maxCost = std::vector<int>{0, 1, top / 3, top, 70000, 2147483647}[random() % 6];
  for (int n = pick(0, 9); n > 0; --n)
    problem.seeds.push_back({pick(0, problem.image->npixels - 1), pick(1, 4),
                             inRange ? pick(0, top) : pick(-2 * top, 4 * top)});
  return problem;
}

constexpr ifArcWeightFn weights[] = {ifWatershedMetric, ifEuclideanDistance, ifMaxDistance,
                                     ifChanferDistance};
constexpr ifPathCostFn pathCosts[] = {ifPathCostMax, ifPathCostMin, ifPathCostSum,
                                      ifPathCostMaxLocal, ifPathCostMinLocal};

// Compares a forest with that of the literal loop, whose costs start as `start`.
template <class Arcs, class Rule>
void expectLiteral(const imImagePtr &forest, const Arcs &arcs, Rule rule, const int *start,
                   const ifRoots &seeds) {
  const imImagePtr literal(imCreateImage(3, imTypeWork, forest->ncols, forest->nrows));
  int **band = literal->band;
  const int maxCost = rule.maxCost;
  static_cast<ForestBands &>(rule) = {band[0], band[1], band[2], maxCost};
  std::copy_n(start, literal->npixels, band[1]);
  literalTransform(arcs, rule, maxCost + 1, literal->npixels, seeds);
  for (int b = 0; b < 3; ++b)
    ASSERT_EQ(bandOf(forest.get(), b), bandOf(literal.get(), b)) << "band " << b;
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
    std::vector<Root> within;
    for (const Root &seed : problem.seeds)
      if (mask->band[0][seed.pixel] > 0)
        within.push_back(seed);
    const ifRootsPtr maskSeeds = makeRoots(within);

    const auto weigh = [=](int p, int q) { return weight(image, p, q); };
    using Arcs = AdjacencyArcs<decltype(weigh)>;
    const auto arcs = [&] { return Arcs{{NeighborWalk(image, adjacency)}, weigh}; };
    const auto weightArcs = [&] {
      return WeightImageArcs{{NeighborWalk(image, adjacency)}, weightImage->band};
    };
    const auto rule = [&](auto direction, int maxCost) {
      return ForestRule<decltype(direction), ifPathCostFn>{{{}, {}, {}, maxCost}, pathCost};
    };
    const imImagePtr forest(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
    const auto size = static_cast<std::size_t>(image->npixels);
    const std::vector<int> infinite(size, ifInfiniteCost);
    const std::vector<int> inverted(size, ifInfiniteCostInverted);
    const auto expect = [&](const auto &a, const auto &r, const ifRootsPtr &s) {
      expectLiteral(forest, a, r, infinite.data(), *s);
    };

    iftNonNormalized(image, forest.get(), adjacency, weight, bound, pathCost, seeds.get());
    expect(arcs(), rule(Minimising(), bound), seeds);
    iftNonNormalizedInverted(image, forest.get(), adjacency, weight, bound, pathCost, seeds.get());
    expectLiteral(forest, arcs(), rule(Maximising(), bound), inverted.data(), *seeds);
    ift(image, forest.get(), adjacency, weight, pathCost, seeds.get());
    expect(Scaled<Arcs>{arcs()}, rule(Minimising(), 49999), seeds);
    iftMask(image, forest.get(), mask.get(), adjacency, weight, pathCost, seeds.get());
    expect(Masked<Scaled<Arcs>>{{arcs()}, mask->band[0]}, rule(Minimising(), 49999), maskSeeds);
    iftWF(image, forest.get(), weightImage.get(), pathCost, seeds.get());
    expect(weightArcs(), rule(Minimising(), 1000), seeds);
    iftNonNormalizedWF(image, forest.get(), weightImage.get(), bound, pathCost, seeds.get());
    expect(weightArcs(), rule(Minimising(), bound), seeds);
    iftMaskWF(image, forest.get(), mask.get(), weightImage.get(), pathCost, seeds.get());
    expect(Masked<Scaled<WeightImageArcs>>{{weightArcs()}, mask->band[0]},
           rule(Minimising(), 49999), maskSeeds);

    const imImagePtr marker = randomImage(random, 1, imTypeAscii, image->ncols, image->nrows, 0,
                                          std::max(problem.maxCost, 1) % 300);
    for (int i = 0; i < seeds->n; ++i)
      seeds->label[i] = seeds->label[i] % 2 + 1;
    marker->maxValue = bound;
    iftNonNormalizedLevel(image, marker.get(), forest.get(), adjacency, seeds.get());
    const auto value = [image](int, int q) { return image->band[0][q]; };
    expectLiteral(forest, AdjacencyArcs<decltype(value)>{{NeighborWalk(image, adjacency)}, value},
                  LevelRule{{{}, {}, {}, bound}}, marker->band[0], *seeds);
  }
}

TEST(Forest, Levelling) {
  const imImagePtr image = makeImage({{5, 2, 7, 4, 9}});
  const imImagePtr marker = makeImage({{9, 9, 9, 1, 1}});
  marker->maxValue = 9;
  const imImagePtr forest(imCreateImage(3, imTypeWork, 5, 1));
  iftNonNormalizedLevel(image.get(), marker.get(), forest.get(), imNeighborhood8,
                        makeRoots({{0, 1, 5}, {4, 2, 9}}).get());
  EXPECT_EQ(bandOf(forest.get(), 1), (Matrix{{5, 5, 7, 4, 9}}));
  EXPECT_EQ(bandOf(forest.get(), 0), (Matrix{{1, 1, 1, 2, 2}}));

  testing::internal::CaptureStderr();
  iftNonNormalizedLevel(image.get(), marker.get(), forest.get(), imNeighborhood8,
                        makeRoots({{1, 3, 2}, {0, 1, 1}}).get());
  // The left neighbour is done by then.
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "pixel 1 has invalid label (3)!\n");
  EXPECT_EQ(bandOf(forest.get(), 1), (Matrix{{1, 2, 9, 1, 1}}));
}

TEST(Forest, ScaledSumsGoRoundTheQueue) {
  const imImagePtr image(imCreateImage(1, imTypeAscii, 4, 1));
  const imImagePtr forest(imCreateImage(3, imTypeWork, 4, 1));
  ift(
      image.get(), forest.get(), imNeighborhood4, [](const imImage *, int, int) { return 1000; },
      ifPathCostSum, makeRoots({{0, 1, 0}}).get());
  EXPECT_EQ(bandOf(forest.get(), 1), (Matrix{{0, 49000, 98000, 147000}}));
}

// The bound only sizes the queue: with costs in range, a huge one changes nothing.
TEST(Forest, HugeBoundsGiveTheSameForest) {
  std::mt19937 random(13);
  for (int round = 0; round < 200; ++round) {
    const Problem problem = randomProblem(random, true);
    for (const ifPathCostFn pathCost : {ifPathCostMax, ifPathCostSum}) {
      const auto with = [&](int bound) {
        return run(iftNonNormalized, problem.image, problem.seeds, bound, pathCost);
      };
      const Forest small = with(20000);
      const Forest huge = with(2147483647);
      ASSERT_EQ(small.label, huge.label);
      ASSERT_EQ(small.pred, huge.pred);
    }
  }
}

// Proves a forest optimal without another transform: costs follow predecessors, predecessors end at
// seeds, and no arc offers better.
TEST(Forest, Certificate) {
  std::mt19937 random(12);
  for (int round = 0; round < 600; ++round) {
    const Problem problem = randomProblem(random, true);
    const imImage *image = problem.image.get();
    const ifArcWeightFn weight = weights[random() % 4];
    const bool maximise = round % 2 == 1;
    const ifPathCostFn pathCost =
        maximise ? ifPathCostMin : (random() % 2 == 0 ? ifPathCostMax : ifPathCostSum);
    const imImagePtr output(imCreateImage(3, imTypeWork, image->ncols, image->nrows));
    Transform transform = maximise ? iftNonNormalizedInverted : iftNonNormalized;
    if (!maximise && weight == ifWatershedMetric)
      transform = random() % 2 == 0 ? throughWeightImage : throughMask;
    transform(image, output.get(), imNeighborhood8, weight, 4000, pathCost,
              makeRoots(problem.seeds).get());
    const int *label = output->band[0];
    const int *cost = output->band[1];
    const int *pred = output->band[2];
    std::vector<Root> seedAt(static_cast<std::size_t>(image->npixels), {-1, 0, 0});
    for (const Root &seed : problem.seeds)
      seedAt[seed.pixel] = seed;
    const NeighborWalk neighbors(image, imNeighborhood8);
    for (int p = 0; p < image->npixels; ++p) {
      if (problem.seeds.empty())
        continue;
      if (pred[p] == p) {
        EXPECT_EQ(seedAt[p].pixel, p);
        EXPECT_EQ(seedAt[p].label, label[p]);
        EXPECT_EQ(seedAt[p].value, cost[p]);
      } else {
        EXPECT_EQ(cost[p], pathCost(cost[pred[p]], weight(image, pred[p], p)));
        EXPECT_EQ(label[p], label[pred[p]]);
        int steps = 0;
        for (int r = p; pred[r] != r && steps <= image->npixels; r = pred[r])
          ++steps;
        EXPECT_LE(steps, image->npixels - 1);
      }
      neighbors.each(p, [&](int q, int) {
        const int offer = pathCost(cost[p], weight(image, p, q));
        EXPECT_TRUE(maximise ? offer <= cost[q] : offer >= cost[q]);
      });
    }
  }
}

} // namespace
