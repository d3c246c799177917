#include "ift/operators/ifConnected.h"

#include "ift/core/iftForest.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifExtrema.h"
#include "image/imPixelwise.h"
#include "reference/literalAreaLevels.h"
#include "support.h"

#include <algorithm>

namespace {

struct Output {
  Matrix filtered;
  Matrix labels;
  int maxValue = 0;
  char type = 0;
  std::string lines = {}; // of progress; not compared
  bool operator==(const Output &o) const {
    return filtered == o.filtered && labels == o.labels && maxValue == o.maxValue && type == o.type;
  }
};

template <class Operator, class... Arguments>
Output run(Operator operate, Arguments... arguments) {
  imImage *filtered = nullptr;
  imImage *labels = nullptr;
  testing::internal::CaptureStdout();
  operate(arguments..., &filtered, &labels);
  const imImagePtr owners[] = {imImagePtr(filtered), imImagePtr(labels)};
  return {bandOf(filtered), bandOf(labels), filtered->maxValue, filtered->type,
          testing::internal::GetCapturedStdout()};
}

template <class Image, class Operator>
Output runArea(Operator operate, Image *f, int area) {
  return run([=](imImage **filtered, imImage **labels) { operate(f, filtered, labels, area); });
}

TEST(Reconstruction, FromRoots) {
  const imImagePtr f = makeImage({{7, 5, 2, 6, 6}}, imTypeGrey);
  const ifRootsPtr peak = makeRoots({{0, 3, 5}});
  const auto by = [&](auto operate, const imImage *second, int flag) {
    return run(operate, f.get(), second, peak.get(), flag);
  };
  const int low = ifInfiniteCostInverted;
  EXPECT_EQ(by(ifReconstr, nullptr, 1),
            (Output{{{5, 5, 2, 2, 2}}, {{3, 3, 3, 3, 3}}, 5, imTypeGrey}));
  EXPECT_EQ(by(ifReconstr, nullptr, 0),
            (Output{{{5, 5, 2, 6, 6}}, {{3, 3, 0, 0, 0}}, 6, imTypeGrey}));
  EXPECT_EQ(by(ifDualReconstr, f.get(), 1).filtered, (Matrix{{5, 5, 5, 6, 6}}));
  EXPECT_EQ(by(ifDualReconstr, f.get(), 0),
            (Output{{{5, 5, 5, 6, 6}}, {{3, 3, 3, 0, 0}}, 6, imTypeGrey}));
  const ifRootsPtr none = makeRoots({});
  EXPECT_EQ(run(ifReconstr, f.get(), nullptr, none.get(), 1),
            (Output{{{low, low, low, low, low}}, {{0, 0, 0, 0, 0}}, 0, imTypeGrey}));
  // The dual's bound is the second image's: with 2 buckets, cost 2 is served like cost 0.
  const imImagePtr flat = makeImage({{0, 0, 0}});
  const imImagePtr ones = makeImage({{1}});
  const ifRootsPtr ends = makeRoots({{0, 1, 0}, {2, 2, 2}});
  EXPECT_EQ(run(ifDualReconstr, flat.get(), ones.get(), ends.get(), 1).labels, (Matrix{{1, 1, 2}}));
}

TEST(AreaOpening, OfSmallImages) {
  const Matrix zeros = {{0, 0, 0, 0}};
  const struct {
    const char *what;
    Matrix image;
    int area;
    Matrix opened;
    Matrix labels;
    Matrix old;
  } cases[] = {
      {"an exact peak stays", {{9, 1, 7, 7}}, 2, {{1, 1, 7, 7}}, {{1, 2, 2, 2}}, {{1, 1, 7, 7}}},
      {"larger than the image", {{9, 3, 7, 7}}, 5, {{3, 3, 3, 3}}, {{1, 1, 2, 2}}, {{9, 3, 7, 7}}},
      {"no threshold", {{9, 3, 7, 7}}, 0, zeros, {{1, 1, 2, 2}}, zeros},
      {"no maximum", zeros, 2, zeros, zeros, zeros},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const imImagePtr f = makeImage(c.image);
    EXPECT_EQ(runArea(ifAreaOpen, f.get(), c.area).filtered, c.opened);
    EXPECT_EQ(runArea(ifAreaOpen, f.get(), c.area).labels, c.labels);
    EXPECT_EQ(runArea(ifAreaOpenOld, f.get(), c.area).filtered, c.old);
  }
  const imImagePtr f = makeImage({{5, 5, 0, 5}});
  EXPECT_EQ(runArea(ifAreaClose, f.get(), 2), (Output{{{5, 5, 5, 5}}, {{1, 1, 1, 1}}, 0, 2}));
  EXPECT_EQ(runArea(ifAreaOpen, f.get(), 2).lines,
            "in ifLabelImage\nin ifLabelImage\nThere are 2 regional maxima\n");
}

// What a pixel keeps: the highest threshold at which its component has `area` pixels.
Matrix byThresholds(const imImage *f, int area) {
  Matrix result = Matrix(f->nrows, std::vector<int>(f->ncols));
  for (int t = 1; t <= f->maxValue; ++t) {
    const imImagePtr above(imThreshold(f, imTypeAscii, t, f->maxValue));
    const imImagePtr labels(imCreateImage(1, imTypeAscii, f->ncols, f->nrows));
    ifLabelImage(above.get(), labels.get());
    std::vector<int> size(labels->maxValue + 1);
    for (int p = 0; p < f->npixels; ++p)
      ++size[labels->band[0][p]];
    for (int p = 0; p < f->npixels; ++p)
      if (labels->band[0][p] > 0 && size[labels->band[0][p]] >= area)
        result[p / f->ncols][p % f->ncols] = t;
  }
  return result;
}

TEST(AreaOpening, IsThatOfEveryThreshold) {
  std::mt19937 random(31);
  for (int round = 0; round < 12; ++round) {
    const imImagePtr f =
        randomImage(random, 1, imTypeGrey, 1 + int(random() % 7), 1 + int(random() % 7), 0, 5);
    for (int area = 1; area <= f->npixels; ++area) {
      testing::internal::CaptureStdout();
      const Matrix expected = byThresholds(f.get(), area);
      testing::internal::GetCapturedStdout();
      EXPECT_EQ(runArea(ifAreaOpen, f.get(), area).filtered, expected) << round << " " << area;
    }
  }
}

// The opening through the literal levels; its last step is the reconstruction all the same.
Output literalAreaOpen(const imImage *f, int area, bool old) {
  testing::internal::CaptureStdout();
  const ifRootsPtr maxima(ifRegionalMaximaAsRoots(f));
  testing::internal::GetCapturedStdout();
  const LiteralLevels levels = literalAreaLevels(f, maxima.get(), area);
  std::vector<Root> roots = listOf(maxima.get());
  if (old)
    std::erase_if(roots, [&](const Root &root) { return levels.area[root.label] < area; });
  for (Root &root : roots)
    root.value = levels.level[root.label];
  return run(ifReconstr, f, nullptr, makeRoots(roots).get(), !old && !roots.empty());
}

TEST(AreaOpening, EqualsOneFloodForEachMaximum) {
  std::mt19937 random(32);
  for (int round = 0; round < 600; ++round) {
    const int lo = round % 3 == 0 ? -4 : 0; // negative values leave the circle of the buckets
    const int hi = round % 3 == 2 ? 3000 : 1 + int(random() % 9);
    const imImagePtr f = randomImage(random, 1, round % 2 == 0 ? imTypeGrey : imTypeAscii,
                                     1 + int(random() % 12), 1 + int(random() % 12), lo, hi);
    f->maxValue = hi / (1 + round % 5 / 4) + (round % 7 == 0 ? 3 : 0);
    const int area = 1 + int(random() % (f->npixels + 2));
    EXPECT_EQ(runArea(ifAreaOpen, f.get(), area), literalAreaOpen(f.get(), area, false)) << round;
    EXPECT_EQ(runArea(ifAreaOpenOld, f.get(), area), literalAreaOpen(f.get(), area, true)) << round;
    if (lo < 0)
      continue;
    const imImagePtr negative(imNegative(f.get(), f->type));
    const Output opened = literalAreaOpen(negative.get(), area, false);
    const Output closed = runArea(ifAreaClose, f.get(), area);
    EXPECT_EQ(closed.labels, opened.labels) << round;
    const int white = f->type == imTypeGrey ? 255 : f->maxValue;
    for (int p = 0, w = f->ncols; p < f->npixels; ++p)
      EXPECT_EQ(closed.filtered[p / w][p % w], white - opened.filtered[p / w][p % w]) << round;
  }
}

Matrix levelTowards(const Matrix &f, const Matrix &marker) {
  return run([&](imImage **filtered, imImage **labels) {
           ifLevel2(makeImage(f).get(), makeImage(marker).get(), filtered);
           *labels = imCopyImage(*filtered);
         })
      .filtered;
}

TEST(Levelling, OfSmallImages) {
  const imImagePtr f = makeImage({{3, 9, 3}}, imTypeGrey);
  const imImagePtr marker = makeImage({{5, 5, 5}});
  marker->maxValue = 9;
  const ifRootsPtr below = makeRoots({{0, 1, 3}});
  const ifRootsPtr above = makeRoots({{0, 2, 7}});
  EXPECT_EQ(run(ifLevel, f.get(), marker.get(), below.get()),
            (Output{{{3, 5, 5}}, {{1, 0, 0}}, 5, imTypeAscii}));
  EXPECT_EQ(run(ifLevel, f.get(), marker.get(), above.get()),
            (Output{{{7, 7, 5}}, {{2, 2, 0}}, 7, imTypeAscii}));
  EXPECT_EQ(levelTowards({{0, 0, 0, 1}}, {{1, 1, 1, 0}}), (Matrix{{0, 0, 0, 1}}));
  EXPECT_EQ(levelTowards({{9, 9, 9, 9, 0}}, {{0, 0, 4, 0, 0}}), (Matrix{{4, 4, 4, 4, 0}}));
  EXPECT_EQ(levelTowards({{0, 0, 0, 0, 9}}, {{5, 5, 5, 5, 5}}), (Matrix{{5, 5, 5, 5, 5}}));
  EXPECT_EQ(levelTowards({{4, 4, 4}}, {{0, 0, 0}}), (Matrix{{0, 0, 0}})); // nothing to grow from
}

} // namespace
