#include "ift/operators/ifSkeleton.h"

#include "support.h"

#include <algorithm>
#include <functional>

namespace {

using Inside = std::function<bool(int x, int y)>;

// A shape of ncols x nrows pixels, 7 where inside(x, y).
imImagePtr shape(int ncols, int nrows, const Inside &inside) {
  imImagePtr image = blank(ncols, nrows, 1, imTypeGrey);
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = inside(p % ncols, p / ncols) ? 7 : 0;
  return image;
}

struct Skeleton {
  int largest;
  imImagePtr image;

  auto size() const {
    return image->npixels - std::count(image->band[0], image->band[0] + image->npixels, 0);
  }
};

Skeleton skeleton(const imImagePtr &image, int type, int threshold) {
  imImage *result = nullptr;
  const int largest = ifSkel(image.get(), type, threshold, &result);
  return {largest, imImagePtr(result)};
}

TEST(Skeleton, SpreadsLabelsAndContours) {
  const imImagePtr work = blank(4, 1, 5);
  int pixel[] = {0, 3};
  int label[] = {5, 6};
  int contour[] = {1, 2};
  const ifRoots2 roots = {pixel, label, contour, nullptr, 2};
  iftSkelNova(blank(4, 1).get(), work.get(), &roots);
  const Matrix expected = {{0, 0, 0, 0}, {5, 5, 6, 6}, {0, 1, 1, 0}, {0, 0, 3, 3}, {1, 1, 2, 2}};
  for (int b = 0; b < 5; ++b)
    EXPECT_EQ(bandOf(work, b)[0], expected[b]);
}

TEST(Skeleton, OfABarIsItsMiddleLine) {
  const imImagePtr bar =
      shape(40, 20, [](int x, int y) { return x >= 5 && x < 35 && y >= 5 && y < 14; });
  const Skeleton inner = skeleton(bar, 1, 20);
  const Matrix rows = bandOf(inner.image);
  for (int y = 0; y < 20; ++y)
    for (int x = 12; x < 28; ++x)
      EXPECT_EQ(rows[y][x], y == 9 ? 16 : 0) << x << ", " << y;
  EXPECT_GT(skeleton(bar, 1, 2).size(), inner.size());
}

TEST(Skeleton, InsideAndOutsideMakeTheWhole) {
  const auto disc = [](int x, int y, int cx, int cy, int r) {
    return (x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r;
  };
  const auto beam = [](int u, int v) { return u > 20 && u < 30 && v > 4 && v < 46; };
  const Inside shapes[] = {
      [=](int x, int y) { return beam(x, y) || beam(y, x); },                          // a cross
      [=](int x, int y) { return disc(x, y, 25, 25, 20) && !disc(x, y, 25, 25, 10); }, // a ring
      [=](int x, int y) { return disc(x, y, 12, 25, 8) || disc(x, y, 36, 25, 9); },
  };
  for (const Inside &inside : shapes) {
    const imImagePtr image = shape(50, 50, inside);
    const Skeleton whole = skeleton(image, 0, 8);
    const Skeleton inner = skeleton(image, 1, 8);
    const Skeleton outer = skeleton(image, 2, 8);
    EXPECT_GT(inner.size(), 0);
    EXPECT_GT(outer.size(), 0);
    // What lies between two contours belongs to the skeleton at every scale; a cross has one.
    const Skeleton last = skeleton(image, 0, maxInt);
    EXPECT_EQ(last.size() > 0, &inside != shapes);
    EXPECT_EQ(bandOf(last.image), bandOf(skeleton(image, 0, whole.largest).image));
    for (int p = 0; p < image->npixels; ++p) {
      EXPECT_EQ(inner.image->band[0][p], image->band[0][p] > 0 ? whole.image->band[0][p] : 0);
      EXPECT_EQ(outer.image->band[0][p], image->band[0][p] > 0 ? 0 : whole.image->band[0][p]);
    }
  }
}

TEST(Skeleton, EmptyShapesInvalidTypesAndImages) {
  const Skeleton none = skeleton(blank(9, 7), 0, -99999);
  const Skeleton filled = skeleton(shape(9, 7, [](int, int) { return true; }), 0, minInt);
  EXPECT_EQ(none.largest, -99999);
  EXPECT_EQ(filled.largest, -99999);
  EXPECT_EQ(none.size() + filled.size(), 0);
  for (const int type : {3, -1}) {
    const std::string line = "invalid skelType: " + std::to_string(type) + "\n";
    const auto fail = [&] {
      const Skeleton skel = skeleton(blank(9, 7), type, 1);
      EXPECT_EQ(skel.image, nullptr);
      EXPECT_EQ(skel.largest, none.largest);
    };
    EXPECT_EQ(errorsOf(fail), line);
  }
  EXPECT_FATAL(skeleton(blank(4, 4, 3), 0, 1), "ifSkel");
}

// A comb whose border is more than a million pixels long: no stack is that deep.
TEST(Skeleton, ContourOfAMillionPixels) {
  const imImagePtr comb = shape(1800, 1800, [](int x, int y) {
    return x > 0 && x < 1799 && y > 0 && y < 1799 && (y < 4 || x % 6 < 3);
  });
  EXPECT_GT(skeleton(comb, 1, 100).largest, 500000);
}

} // namespace
