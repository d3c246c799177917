#include "ift/operators/ifSkeleton.h"

#include "support.h"

#include <algorithm>
#include <functional>

namespace {

// A shape of ncols x nrows pixels, 255 where inside(x, y).
imImagePtr shape(int ncols, int nrows, const std::function<bool(int, int)> &inside) {
  imImagePtr image(imCreateImage(1, imTypeGrey, ncols, nrows));
  image->maxValue = 255;
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = inside(p % ncols, p / ncols) ? 255 : 0;
  return image;
}

struct Skeleton {
  int largest;
  imImagePtr image;

  int at(int x, int y) const { return image->band[0][x + image->row[y]]; }
  int size() const {
    return image->npixels -
           static_cast<int>(std::count(image->band[0], image->band[0] + image->npixels, 0));
  }
};

Skeleton skeleton(const imImagePtr &image, int type, int threshold) {
  imImage *result = nullptr;
  const int largest = ifSkel(image.get(), type, threshold, &result);
  return {largest, imImagePtr(result)};
}

TEST(Skeleton, SpreadsLabelsAndContours) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, 4, 1));
  const imImagePtr work(imCreateImage(5, imTypeWork, 4, 1));
  int pixel[] = {0, 3};
  int label[] = {5, 6};
  int contour[] = {1, 2};
  const ifRoots2 roots = {pixel, label, contour, nullptr, 2};
  iftSkelNova(image.get(), work.get(), &roots);
  EXPECT_EQ(bandOf(work.get(), 1), (Matrix{{5, 5, 6, 6}}));
  EXPECT_EQ(bandOf(work.get(), 2), (Matrix{{0, 1, 1, 0}}));
  EXPECT_EQ(bandOf(work.get(), 3), (Matrix{{0, 0, 3, 3}}));
  EXPECT_EQ(bandOf(work.get(), 4), (Matrix{{1, 1, 2, 2}}));
}

TEST(Skeleton, OfABarIsItsMiddleLine) {
  const imImagePtr bar =
      shape(40, 20, [](int x, int y) { return x >= 5 && x < 35 && y >= 5 && y < 14; });
  const Skeleton inner = skeleton(bar, 1, 20);
  for (int y = 0; y < 20; ++y)
    for (int x = 12; x < 28; ++x)
      EXPECT_EQ(inner.at(x, y), y == 9 ? 16 : 0) << x << ", " << y;
  EXPECT_LE(inner.at(2, 9), 0); // nothing outside

  // The larger the threshold the smaller the skeleton, down to the last difference.
  const Skeleton fine = skeleton(bar, 1, 2);
  const Skeleton last = skeleton(bar, 1, inner.largest);
  const Skeleton beyond = skeleton(bar, 1, 100000);
  EXPECT_GT(fine.size(), inner.size());
  EXPECT_EQ(bandOf(beyond.image.get()), bandOf(last.image.get()));
}

TEST(Skeleton, InsideAndOutsideMakeTheWhole) {
  struct Case {
    const char *what;
    std::function<bool(int, int)> inside;
  };
  const auto disc = [](int x, int y, int cx, int cy, int r) {
    return (x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r;
  };
  const Case cases[] = {
      {"ring", [disc](int x, int y) { return disc(x, y, 25, 25, 20) && !disc(x, y, 25, 25, 10); }},
      {"cross",
       [](int x, int y) {
         return (x > 20 && x < 30 && y > 4 && y < 46) || (y > 20 && y < 30 && x > 4 && x < 46);
       }},
      {"two discs",
       [disc](int x, int y) { return disc(x, y, 12, 25, 8) || disc(x, y, 36, 25, 9); }},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.what);
    const imImagePtr image = shape(50, 50, c.inside);
    const Skeleton whole = skeleton(image, 0, 8);
    const Skeleton inner = skeleton(image, 1, 8);
    const Skeleton outer = skeleton(image, 2, 8);
    EXPECT_GT(inner.size(), 0);
    EXPECT_GT(outer.size(), 0);
    for (int p = 0; p < image->npixels; ++p) {
      const bool inside = image->band[0][p] > 0;
      EXPECT_EQ(inner.image->band[0][p], inside ? whole.image->band[0][p] : 0);
      EXPECT_EQ(outer.image->band[0][p], inside ? 0 : whole.image->band[0][p]);
    }
  }
}

TEST(Skeleton, ShapesWithoutBorderAreEmpty) {
  for (const bool filled : {false}) {
    const Skeleton none = skeleton(shape(9, 7, [=](int, int) { return filled; }), 0, 1);
    EXPECT_EQ(none.largest, -99999);
    EXPECT_EQ(none.size(), 0);
  }
}

TEST(Skeleton, InvalidTypesAndImages) {
  const imImagePtr square =
      shape(12, 12, [](int x, int y) { return x > 2 && x < 9 && y > 2 && y < 9; });
  const int largest = skeleton(square, 0, 1).largest;
  for (const int type : {3, -1}) {
    testing::internal::CaptureStderr();
    const Skeleton none = skeleton(square, type, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "invalid skelType: " + std::to_string(type) + "\n");
    EXPECT_EQ(none.image, nullptr);
    EXPECT_EQ(none.largest, largest);
  }
  const imImagePtr colour(imCreateImage(3, imTypeColor, 4, 4));
  EXPECT_EXIT(skeleton(colour, 0, 1), testing::ExitedWithCode(1), "ifSkel");
}

// A comb whose border is more than a million pixels long: no stack is that deep.
TEST(Skeleton, ContourOfAMillionPixels) {
  const imImagePtr comb = shape(1800, 1800, [](int x, int y) {
    return x > 0 && x < 1799 && y > 0 && y < 1799 && (y < 4 || x % 6 < 3);
  });
  const Skeleton inner = skeleton(comb, 1, 100);
  EXPECT_GT(inner.largest, 500000);
  EXPECT_GT(inner.size(), 0);
}

} // namespace
