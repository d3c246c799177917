// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/operators/ifConnected.h"

#include "ift/core/ifCost.h"
#include "ift/seeds/ifExtrema.h"
#include "image/imPixelwise.h"
#include "reference/plainAreaOpen.h"

namespace {

struct Output {
  Matrix filtered, labels;
  int maxValue = 0;
  char type = 0;
  bool operator==(const Output &) const = default;
};

template <class Operator, class... Arguments>
Output run(Operator operate, Arguments... arguments) {
  imImage *filtered = nullptr;
  imImage *labels = nullptr;
  operate(arguments..., &filtered, &labels);
  const imImagePtr owners[] = {imImagePtr(filtered), imImagePtr(labels)};
  return {bandOf(filtered), bandOf(labels), filtered->maxValue, filtered->type};
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
  const Matrix cut = {{3, 3, 0, 0, 0}};
  EXPECT_EQ(by(ifReconstr, nullptr, 2), (Output{{{5, 5, 2, 2, 2}}, {{3, 3, 3, 3, 3}}, 5, 1}));
  EXPECT_EQ(by(ifReconstr, nullptr, 0), (Output{{{5, 5, 2, 6, 6}}, cut, 6, 1}));
  EXPECT_EQ(by(ifDualReconstr, f.get(), -1), (Output{{{5, 5, 5, 6, 6}}, {{3, 3, 3, 3, 3}}, 6, 1}));
  EXPECT_EQ(by(ifDualReconstr, f.get(), 0), (Output{{{5, 5, 5, 6, 6}}, {{3, 3, 3, 0, 0}}, 6, 1}));
  EXPECT_EQ(run(ifReconstr, f.get(), nullptr, makeRoots({}).get(), 1),
            (Output{{{low, low, low, low, low}}, {{0, 0, 0, 0, 0}}, 0, 1}));
  // The dual's bound is the second image's: with 2 buckets, cost 2 is served like cost 0.
  const imImagePtr zeros = makeImage({{0, 0, 0}});
  zeros->maxValue = 5;
  EXPECT_EQ(run(ifDualReconstr, zeros.get(), makeImage({{1}}).get(),
                makeRoots({{0, 1, 0}, {2, 2, 2}}).get(), 1)
                .labels,
            (Matrix{{1, 1, 2}}));
}

TEST(AreaOpening, OfSmallImages) {
  const Matrix zeros = {{0, 0, 0, 0}};
  const Matrix negative(1, {-1, -1, -1, -1});
  const struct {
    const char *what;
    Matrix image;
    int area;
    Matrix opened, labels, old;
  } cases[] = {
      {"larger than the image", {{9, 3, 7, 7}}, 5, {{3, 3, 3, 3}}, {{1, 1, 2, 2}}, {{9, 3, 7, 7}}},
      {"no threshold", {{9, 3, 7, 7}}, 0, zeros, {{1, 1, 2, 2}}, zeros},
      {"no maximum", zeros, 2, zeros, zeros, zeros},
      // of 4 buckets; a cost of -1 is served with those of 3, before 2
      {"negative", {{-1, 3, 2, 0}}, 2, negative, {{1, 1, 1, 1}}, negative},
      {"not reached", {{-1, 3, 2, -1}}, 5, negative, {{1, 1, 1, 1}}, {{-1, 3, 2, -1}}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const imImagePtr f = makeImage(c.image);
    EXPECT_EQ(runArea(ifAreaOpen, f.get(), c.area).filtered, c.opened);
    EXPECT_EQ(runArea(ifAreaOpen, f.get(), c.area).labels, c.labels);
    EXPECT_EQ(runArea(ifAreaOpenOld, f.get(), c.area).filtered, c.old);
  }
  const imImagePtr f = makeImage({{5, 5, 0, 5}});
  EXPECT_EQ(printedBy([&] { runArea(ifAreaOpen, f.get(), 2); }),
            "in ifLabelImage\nin ifLabelImage\nThere are 2 regional maxima\n");
}

TEST(AreaOpening, IsThatOfEveryThreshold) {
  std::mt19937 random(31);
  testing::internal::CaptureStdout();
  for (int round = 0; round < 150; ++round) {
    const char type = round % 2 == 0 ? imTypeGrey : imTypeAscii;
    const int top = round % 3 != 0 ? pick(random, 1, 9) : type == imTypeGrey ? 255 : 70000;
    const imImagePtr f =
        randomImage(random, 1, type, pick(random, 1, 9), pick(random, 1, 9), 0, top);
    f->maxValue = round % 5 == 0 ? 1 : top; // less than what the file has
    const int area = pick(random, 1, f->npixels);
    const imImagePtr negative(imNegative(f.get(), type));
    const imImagePtr opened = byThresholds(f, area);
    const imImagePtr dual = byThresholds(negative, area);
    const ifRootsPtr maxima(ifRegionalMaximaAsRoots(f.get()));
    EXPECT_EQ(runArea(ifAreaOpen, f.get(), area).filtered, bandOf(opened)) << round;
    // The old form lets each maximum keep to where it is no higher than the image.
    for (int i = 0; i < maxima->n; ++i)
      maxima->value[i] = opened->band[0][maxima->pixel[i]];
    EXPECT_EQ(runArea(ifAreaOpenOld, f.get(), area),
              run(ifReconstr, f.get(), nullptr, maxima.get(), 0))
        << round;
    const Output closed = runArea(ifAreaClose, f.get(), area);
    EXPECT_EQ(closed.maxValue, type == imTypeGrey ? 255 : 0);
    const int white = negative->band[0][0] + f->band[0][0];
    for (int p = 0, w = f->ncols; p < f->npixels; ++p)
      EXPECT_EQ(closed.filtered[p / w][p % w], white - dual->band[0][p]) << round;
  }
  testing::internal::GetCapturedStdout();
}

// Values that need more bits than the depth-first flood takes, multiples of those that it takes.
TEST(AreaOpening, OfMultiplesIsTheMultiple) {
  std::mt19937 random(8);
  testing::internal::CaptureStdout();
  const int sizes[][2] = {{1, 300}, {300, 1}, {64, 65}, {127, 33}};
  for (const auto &[ncols, nrows] : sizes)
    for (const int top : {0, 1, 20, 255, 32767}) {
      const imImagePtr f = randomImage(random, 1, imTypeAscii, ncols, nrows, 0, top);
      for (int p = 0; p < f->npixels; ++p) // a comb: teeth that meet in the last row only
        if (top == 255 && p % ncols % 2 == 1)
          f->band[0][p] = p / ncols == nrows - 1 ? 3 : 0;
      const imImagePtr wide(imCopyImage(f.get()));
      for (int p = 0; p < f->npixels; ++p)
        wide->band[0][p] *= 32768;
      for (const int area : {1, 7, 150, 100000}) {
        const Output narrow = runArea(ifAreaOpen, f.get(), area);
        Output opened = runArea(ifAreaOpen, wide.get(), area);
        EXPECT_EQ(opened.labels, narrow.labels);
        for (auto &row : opened.filtered)
          for (int &value : row)
            value /= 32768;
        EXPECT_EQ(opened.filtered, narrow.filtered) << ncols << " " << top << " " << area;
      }
    }
  testing::internal::GetCapturedStdout();
}

// Thousands of maxima, and an area that needs thousands of pixels: a flood for each would settle
// millions of pixels, where one pass and one reconstruction settle each pixel once.
TEST(AreaOpening, TakesNoFloodForEachMaximum) {
  std::mt19937 random(5);
  const imImagePtr image = randomImage(random, 1, imTypeAscii, 256, 256, 100, 200);
  int steps = 0; // of 2^16 pixels
  const seedforest::ThrowingErrors watched(nullptr, [&](std::int64_t, std::int64_t) {
    ++steps;
    return true;
  });
  runArea(ifAreaOpen, image.get(), 4000);
  EXPECT_GE(steps, 1);
  EXPECT_LE(steps, 4);
}

TEST(Levelling, OfSmallImages) {
  const imImagePtr f = makeImage({{3, 9, 3}}, imTypeGrey);
  const imImagePtr marker = makeImage({{5, 5, 5}});
  marker->maxValue = 9;
  EXPECT_EQ(run(ifLevel, f.get(), marker.get(), makeRoots({{0, 1, 3}}).get()),
            (Output{{{3, 5, 5}}, {{1, 0, 0}}, 5, imTypeAscii}));
  EXPECT_EQ(run(ifLevel, f.get(), marker.get(), makeRoots({{0, 2, 7}}).get()),
            (Output{{{7, 7, 5}}, {{2, 2, 0}}, 7, imTypeAscii}));
  const struct {
    Matrix f, marker, levelled;
  } cases[] = {
      {{{9, 9, 9, 9, 0}}, {{0, 0, 4, 0, 0}}, {{4, 4, 4, 4, 0}}},
      {{{0, 0, 0, 0, 9}}, {{5, 5, 5, 5, 5}}, {{5, 5, 5, 5, 5}}},
      {{{4, 4, 4}}, {{0, 0, 0}}, {{0, 0, 0}}},                // nothing to grow from
      {{{0, 0}, {0, 9}}, {{5, 0}, {0, 0}}, {{0, 0}, {0, 0}}}, // corners do not touch
  };
  for (const auto &c : cases) {
    imImage *levelled = nullptr;
    printedBy([&] { ifLevel2(makeImage(c.f).get(), makeImage(c.marker).get(), &levelled); });
    EXPECT_EQ(bandOf(imImagePtr(levelled)), c.levelled);
  }
}

} // namespace
