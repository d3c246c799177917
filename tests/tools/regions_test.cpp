// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the programs compute beyond the interface: thresholds, holes, merged regions, lines,
// measures and outlines, on images that a person can check.

#include "measures.h"
#include "outlines.h"
#include "pixels.h"
#include "regions.h"
#include "support.h"

#include <climits>
#include <cmath>
#include <map>

namespace {

using namespace seedforest;
using namespace seedforest::tools;

Image imageOf(const Matrix &rows, ImageType type = ImageType::ascii) {
  return Image(makeImage(rows, static_cast<char>(type)));
}

Matrix rowsOf(const Image &image) {
  return bandOf(image.get());
}

TEST(Pixels, OtsuThreshold) {
  const struct {
    Matrix rows;
    int threshold;
  } cases[] = {
      {{{1, 1, 9, 9}}, 1},              // any of 1 .. 8 splits them; the smallest
      {{{0, 1, 2, 100, 101}}, 2},       //
      {{{7, 7}}, 7},                    // one class: nothing is above
      {{{-5, -5, -1}}, -5},             //
      {{{0, 1 << 30, 1 << 30}}, 16384}, // steps of 2^30 / 65536, rounded up
      {{{minInt, maxInt}}, minInt + 65535},
  };
  for (const auto &test : cases)
    EXPECT_EQ(otsuThreshold(imageOf(test.rows)), test.threshold);
}

TEST(Pixels, ShapesAboveAThreshold) {
  const Image image = imageOf({{1, 2, 3}});
  EXPECT_EQ(rowsOf(shapeAbove(image, {2})), (Matrix{{0, 0, 255}}));
  EXPECT_EQ(rowsOf(shapeAbove(image, {INT_MAX})), (Matrix{{0, 0, 0}}));
  const Image shape = imageOf({{0, 255, 255, 255, 0, 0},
                               {0, 255, 0, 255, 255, 0},
                               {0, 255, 255, 0, 255, 0}, // the second hole is open at its corner
                               {0, 0, 0, 255, 0, 0}});
  EXPECT_EQ(rowsOf(withoutHoles(imageOf({{9, 9, 9}, {9, 0, 9}, {9, 9, 9}}))),
            Matrix(3, std::vector<int>(3, 9)));
  EXPECT_EQ(rowsOf(withoutHoles(shape)), rowsOf(shape)); // holes meet the outside by corners
}

TEST(Regions, Merging) {
  // Regions 5 and 9 are alike, 7 is small and most like 9; 3 lies apart.
  const Image labels = imageOf({{5, 5, 5, 9, 9, 7, 0, 3}});
  const Image image = imageOf({{10, 10, 10, 12, 12, 40, 0, 90}});
  const struct {
    Merging merging;
    Matrix rows;
  } cases[] = {
      {{}, {{5, 5, 5, 9, 9, 7, 0, 3}}},
      {{.leastArea = 2}, {{5, 5, 5, 9, 9, 9, 0, 3}}}, // 3 has no neighbour
      {{.similar = 1}, {{5, 5, 5, 9, 9, 7, 0, 3}}},
      {{.similar = 2}, {{5, 5, 5, 5, 5, 7, 0, 3}}},
      {{.similar = 29}, {{5, 5, 5, 5, 5, 7, 0, 3}}}, // 7 is 30 from the average of both
      {{.similar = 30}, {{5, 5, 5, 5, 5, 5, 0, 3}}},
      {{.count = 4}, {{5, 5, 5, 9, 9, 7, 0, 3}}},
      {{.count = 3}, {{5, 5, 5, 5, 5, 7, 0, 3}}},
      {{.count = 2}, {{5, 5, 5, 5, 5, 5, 0, 3}}},
      {{.count = 1}, {{5, 5, 5, 5, 5, 5, 0, 3}}}, // no more than connected regions merge
  };
  for (const auto &test : cases)
    EXPECT_EQ(rowsOf(merged(labels.copy(), image, test.merging)), test.rows);
}

// Of any regions: as many are left as were asked for or there are connected sets, each made of
// connected whole ones.
TEST(Regions, MergingToACount) {
  std::mt19937 random(4);
  for (int run = 0; run < 100; ++run) {
    const Image labels(randomImage(random, 1, imTypeAscii, 7, 6, 0, 9));
    const Image image(randomImage(random, 1, imTypeAscii, 7, 6, 0, 255));
    const Image sets = RegionGraph(numbered(labels).numbers).withAreas().mergeSimilar(INT_MAX);
    const auto count = static_cast<std::size_t>(pick(random, 1, 10));
    const Image result = merged(labels.copy(), image, {.count = static_cast<int>(count)});
    std::map<int, int> partOf, setOf;
    std::set<int> parts;
    for (std::size_t p = 0; p < result.pixels().size(); ++p) {
      const int part = result.pixels()[p];
      EXPECT_EQ(part == 0, labels.pixels()[p] == 0);
      if (part == 0)
        continue;
      parts.insert(part);
      EXPECT_EQ(partOf.emplace(labels.pixels()[p], part).first->second, part);
      EXPECT_EQ(setOf.emplace(part, sets.pixels()[p]).first->second, sets.pixels()[p]);
    }
    const auto nsets = static_cast<std::size_t>(sets.maxValue());
    EXPECT_EQ(parts.size(), std::min(partOf.size(), std::max(count, nsets)));
  }
}

TEST(Regions, LinesAndBackground) {
  Image labels = imageOf({{1, 1, 2, 2}, {1, 1, 2, 2}, {3, 3, 1, 0}});
  Image four = labels.copy();
  drawLines(labels, Adjacency::eight());
  EXPECT_EQ(rowsOf(labels), (Matrix{{1, 1, 0, 2}, {1, 1, 0, 2}, {0, 0, 0, 0}}));
  drawLines(four, Adjacency::four());
  EXPECT_EQ(rowsOf(four), (Matrix{{1, 1, 0, 2}, {1, 1, 0, 2}, {0, 0, 1, 0}}));
  clearLabel(labels, 2);
  EXPECT_EQ(rowsOf(labels), (Matrix{{1, 1, 0, 0}, {1, 1, 0, 0}, {0, 0, 0, 0}}));
}

TEST(Measures, OfAFewPixels) {
  const Image labels = imageOf({{7, 7, 0, 0}, {7, 7, 0, 4}, {0, 0, 0, 0}});
  const Image image = imageOf({{1, 2, 0, 0}, {3, 6, 0, maxInt}, {0, 0, 0, 0}});
  const std::vector<Measures> all = measuresOf(labels, &image);
  ASSERT_EQ(all.size(), 2);
  const Measures &pixel = all[0];
  EXPECT_EQ(pixel.label, 4);
  EXPECT_EQ(pixel.bands[0].mean, maxInt);
  EXPECT_EQ(pixel.bands[0].deviation, 0);
  EXPECT_DOUBLE_EQ(pixel.perimeter, M_PI / 8 * (4 + 4 / M_SQRT2));
  const Measures &square = all[1];
  EXPECT_EQ(square.area, 4);
  EXPECT_EQ(square.x, 0.5);
  EXPECT_EQ(square.y, 0.5);
  EXPECT_EQ((std::vector{square.left, square.top, square.right, square.bottom}),
            (std::vector{0, 0, 1, 1}));
  EXPECT_TRUE(square.touchesFrame && pixel.touchesFrame);
  EXPECT_DOUBLE_EQ(square.diameter, 4 / std::sqrt(M_PI));
  EXPECT_EQ(square.bands[0].least, 1);
  EXPECT_EQ(square.bands[0].largest, 6);
  EXPECT_EQ(square.bands[0].mean, 3);
  EXPECT_DOUBLE_EQ(square.bands[0].deviation, std::sqrt(14.0 / 4));
}

TEST(Measures, OfADisc) {
  Image labels(101, 101);
  for (int y = 0; y < 101; ++y)
    for (int x = 0; x < 101; ++x)
      labels.at(x, y) = (x - 50) * (x - 50) + (y - 50) * (y - 50) <= 40 * 40 ? 1 : 0;
  const Measures disc = measuresOf(labels, nullptr).at(0);
  EXPECT_NEAR(disc.perimeter, 2 * M_PI * 40, 2 * M_PI * 40 * 0.02);
  EXPECT_NEAR(disc.diameter, 80, 1);
  EXPECT_FALSE(disc.touchesFrame);
}

using Corners = std::vector<std::pair<int, int>>;

Corners cornersOf(const Ring &ring) {
  Corners corners;
  for (const Corner &corner : ring)
    corners.emplace_back(corner.x, corner.y);
  return corners;
}

TEST(Outlines, RingsAndHoles) {
  // A frame whose hole touches the outside in a corner, and two pixels that meet in one.
  const Image numbers = imageOf({{1, 1, 1, 0, 2}, {1, 0, 1, 2, 0}, {1, 1, 0, 0, 0}});
  const auto outlines = outlinesOf(numbers);
  ASSERT_EQ(outlines.size(), 3);
  ASSERT_EQ(outlines[1].size(), 1);
  ASSERT_EQ(outlines[1][0].size(), 2);
  EXPECT_EQ(cornersOf(outlines[1][0][0]),
            (Corners{{0, 0}, {3, 0}, {3, 2}, {2, 2}, {2, 3}, {0, 3}, {0, 0}}));
  EXPECT_EQ(cornersOf(outlines[1][0][1]), (Corners{{1, 2}, {2, 2}, {2, 1}, {1, 1}, {1, 2}}));
  ASSERT_EQ(outlines[2].size(), 2);
  EXPECT_EQ(cornersOf(outlines[2][0][0]), (Corners{{4, 0}, {5, 0}, {5, 1}, {4, 1}, {4, 0}}));
}

// Twice the signed area.
std::int64_t areaOf(const Ring &ring) {
  std::int64_t area = 0;
  for (std::size_t i = 1; i < ring.size(); ++i)
    area += std::int64_t{ring[i - 1].x} * ring[i].y - std::int64_t{ring[i].x} * ring[i - 1].y;
  return area;
}

// In any image: outer rings turn one way and holes the other, areas add up to the pixels, and no
// ring comes to a corner twice.
TEST(Outlines, OfRandomRegions) {
  std::mt19937 random(5);
  for (int run = 0; run < 200; ++run) {
    const Image numbers(
        randomImage(random, 1, imTypeAscii, pick(random, 1, 9), pick(random, 1, 9), 0, 2));
    std::vector<std::int64_t> pixels(3), areas(3);
    for (const int number : numbers.pixels())
      pixels[static_cast<std::size_t>(number)] += number == 0 ? 0 : 2;
    const auto outlines = outlinesOf(numbers);
    for (std::size_t n = 0; n < outlines.size(); ++n)
      for (const Polygon &polygon : outlines[n])
        for (std::size_t i = 0; i < polygon.size(); ++i) {
          const Corners corners = cornersOf(polygon[i]);
          EXPECT_EQ(areaOf(polygon[i]) > 0, i == 0);
          EXPECT_EQ(corners.front(), corners.back());
          EXPECT_EQ(std::set(corners.begin(), corners.end()).size(), corners.size() - 1);
          areas[n] += areaOf(polygon[i]);
        }
    EXPECT_EQ(areas, pixels);
  }
}

} // namespace
