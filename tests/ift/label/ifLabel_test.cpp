#include "ift/label/ifLabel.h"

#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"
#include "support.h"

#include <algorithm>

using seedforest::detail::NeighborWalk;

namespace {

Matrix labelled(const imImage *binary, const Matrix &before = {}) {
  const imImagePtr labels =
      before.empty() ? blank(binary->ncols, binary->nrows) : makeImage(before);
  EXPECT_EQ(printedBy([&] { ifLabelImage(binary, labels.get()); }), "in ifLabelImage\n");
  Matrix rows = bandOf(labels);
  rows.push_back({labels->maxValue});
  return rows;
}

TEST(LabelImage, HandImages) {
  const struct {
    Matrix binary, before, labels; // the last row of labels is maxValue
  } cases[] = {
      {{{0, 0}, {-1, 7}}, {}, {{0, 0}, {0, 1}, {1}}},
      // Three arms that meet in the last row; the ends of rows do not.
      {{{1, 0, 1, 0, 1}, {1, 1, 1, 1, 1}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 1}, {1, 0, 0, 0, 0}},
       {},
       {{1, 0, 1, 0, 1}, {1, 1, 1, 1, 1}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 2}, {3, 0, 0, 0, 0}, {3}}},
      // Labelled before: the first component starts counting at its last pixel and is renumbered
      // whole, the second at once, the third not at all; background keeps what it carries.
      {{{1, 0, 5, 0, 1}, {1, 0, 5, 0, 1}, {1, 0, 0, 0, 0}},
       {{9, 8, 0, 8, 4}, {9, 8, 7, 8, 4}, {0, 8, 8, 8, 8}},
       {{2, 8, 1, 8, 4}, {2, 8, 1, 8, 4}, {2, 8, 8, 8, 8}, {2}}},
  };
  for (const auto &c : cases)
    EXPECT_EQ(labelled(makeImage(c.binary).get(), c.before), c.labels);
}

// A flood from each unlabelled object pixel in raster order.
Matrix flooded(const imImagePtr &binary, const imImagePtr &before) {
  const NeighborWalk neighbors(binary.get(), imNeighborhood8);
  const imImagePtr labels(imCopyImage(before.get()));
  std::vector<bool> reached(binary->npixels);
  int n = 0;
  for (int p = 0; p < binary->npixels; ++p) {
    if (binary->band[0][p] <= 0 || labels->band[0][p] != 0 || reached[p])
      continue;
    ++n;
    std::vector<int> zone = {p};
    for (std::size_t i = 0; i < zone.size(); ++i)
      neighbors.each(zone[i], [&](int q, int) {
        if (binary->band[0][q] > 0 && !reached[q])
          zone.push_back(q);
        reached[q] = true;
      });
    for (const int q : zone)
      labels->band[0][q] = n;
  }
  Matrix rows = bandOf(labels);
  rows.push_back({n});
  return rows;
}

TEST(LabelImage, EqualsTheFlood) {
  std::mt19937 random(4);
  for (int round = 0; round < 600; ++round) {
    const int ncols = pick(random, 1, 70);
    const int nrows = pick(random, 1, 40);
    // From mostly object to mostly background; fresh images and, in two rounds of three, images
    // in which few or most pixels carry a label.
    const int spread = pick(random, 0, 5);
    const imImagePtr binary = randomImage(random, 1, imTypeGrey, ncols, nrows, -spread, 2);
    const imImagePtr before =
        randomImage(random, 1, imTypeAscii, ncols, nrows, 0, round % 3 * (round % 5 + 1));
    if (round % 6 == 5)
      std::replace(before->band[0], before->band[0] + before->npixels / 2, 0, 3);
    ASSERT_EQ(labelled(binary.get(), bandOf(before)), flooded(binary, before)) << round;
  }
}

TEST(ConnectedComponents, FlatZonesOfTheRoots) {
  const imImagePtr grey = makeImage({{5, 5, -2, 5}, {7, -2, 5, 5}, {-2, 7, 7, 5}});
  const auto zones = [&](int a, int b, int c) {
    const imImagePtr output = makeImage({{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 9}});
    ifConnectedComponents(grey.get(), output.get(), makeRoots({{a, 0}, {b, 0}, {c, 0}}).get());
    EXPECT_EQ(output->maxValue, 9);
    return bandOf(output);
  };
  EXPECT_EQ(zones(1, 2, 1), (Matrix{{255, 255, 255, 255}, {0, 255, 255, 255}, {255, 0, 0, 255}}));
  EXPECT_EQ(zones(9, 10, 4), (Matrix{{0, 0, 0, 0}, {255, 0, 0, 0}, {0, 255, 255, 9}}));
}

TEST(CorrectLabels, OrderOfFirstAppearance) {
  const struct {
    Matrix before, after;
    int maxValue;
  } cases[] = {
      {{{0, 7, 7, 3, 0}}, {{1, 2, 2, 3, 1}}, 3},
      {{{maxInt, 0}, {minInt, maxInt}, {-1, minInt}}, {{1, 2}, {3, 1}, {4, 3}}, 4},
  };
  for (const auto &c : cases) {
    const imImagePtr labels = makeImage(c.before);
    labels->maxValue = -1; // not relied on
    ifCorrectLabels(labels.get());
    expectImage("", imCopyImage(labels.get()), imTypeAscii, c.maxValue, {c.after});
  }
}

} // namespace
