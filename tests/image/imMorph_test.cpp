#include "image/imMorph.h"

#include "base/arith.h"
#include "reference/plainMorph.h"
#include "support.h"

#include <algorithm>

using seedforest::detail::maxInt;
using seedforest::detail::minInt;

namespace {

using MorphFn = void (*)(const imImage *in, imImage *out, int s);

// The operation's result in a new image, whose maxValue is 12345 before.
imImagePtr run(MorphFn operation, const imImage *in, int s) {
  imImagePtr out(imCreateImage(in->nbands, in->type, in->ncols, in->nrows));
  out->maxValue = 12345;
  operation(in, out.get(), s);
  return out;
}

void expectSame(const imImage *a, const imImage *b) {
  EXPECT_EQ(a->maxValue, b->maxValue);
  for (int k = 0; k < a->nbands; ++k)
    ASSERT_TRUE(std::equal(a->band[k], a->band[k] + a->npixels, b->band[k])) << "band " << k;
}

// Opening, closing and the filters as chains of literal steps.
void plainOpen(const imImage *in, imImage *out, int s) {
  plainDilate(run(plainErode, in, s).get(), out, s);
}

void plainClose(const imImage *in, imImage *out, int s) {
  plainErode(run(plainDilate, in, s).get(), out, s);
}

template <MorphFn first, MorphFn second>
void plainAsf(const imImage *in, imImage *out, int n) {
  imImagePtr image(imCopyImage(in));
  for (int i = 1; i <= n; ++i)
    image = run(second, run(first, image.get(), i).get(), i);
  for (int b = 0; b < in->nbands; ++b)
    std::copy_n(image->band[b], in->npixels, out->band[b]);
}

constexpr MorphFn asfPairs[][2] = {{imMorphAsfOC, plainAsf<plainOpen, plainClose>},
                                   {imMorphAsfCO, plainAsf<plainClose, plainOpen>}};
constexpr MorphFn discPairs[][2] = {{imMorphDilate, plainDilate},
                                    {imMorphErode, plainErode},
                                    {imMorphOpen, plainOpen},
                                    {imMorphClose, plainClose}};

void expectLikePlain(const MorphFn (&pair)[2], const imImage *in, int s) {
  SCOPED_TRACE(testing::Message() << in->ncols << " x " << in->nrows << ", " << s);
  const imImagePtr before(imCopyImage(in));
  expectSame(run(pair[0], in, s).get(), run(pair[1], in, s).get());
  expectSame(in, before.get());
}

// Ranges of 8 bits, of 16, across their limits, and around and beyond the start values.
constexpr int ranges[][2] = {{0, 255},           {-300, -46},        {0, 256},
                             {-32768, 32767},    {900000, 965536},   {-999990, -1000010},
                             {-1000001, -1000},  {999999, 1000001},  {-2000000, 2000000},
                             {1000001, maxInt},  {minInt, -1000001}, {minInt, maxInt},
                             {-1000000, 1000000}};

imImagePtr randomIn(std::mt19937 &random, int which, int nbands, int ncols, int nrows) {
  const auto [lo, hi] = std::minmax(ranges[which][0], ranges[which][1]);
  imImagePtr image = randomImage(random, nbands, imTypeAscii, ncols, nrows, lo, hi);
  for (int b = 0; b < nbands; ++b) {
    image->band[b][0] = lo; // both limits occur
    image->band[b][image->npixels - 1] = hi;
  }
  return image;
}

TEST(Morph, DiscsByHand) {
  const imImagePtr dot = makeImage({{0, 0, 0, 0}, {0, 0, 9, 0}, {0, 0, 0, 0}, {7, 0, 0, 0}});
  EXPECT_EQ(bandOf(run(imMorphDilate, dot.get(), 1).get()),
            (Matrix{{0, 0, 9, 0}, {0, 9, 9, 9}, {7, 0, 9, 0}, {7, 7, 0, 0}}));
  for (const int s : {2, 3})
    EXPECT_EQ(bandOf(run(imMorphDilate, dot.get(), s).get()),
              (Matrix{{0, 9, 9, 9}, {0, 9, 9, 9}, {7, 9, 9, 9}, {7, 7, 0, 0}}));
  const imImagePtr sevens = makeImage({{7, 7, 7}, {7, 7, 7}});
  const imImagePtr eroded = run(imMorphErode, sevens.get(), 4);
  EXPECT_EQ(bandOf(eroded.get()), bandOf(sevens.get()));
  EXPECT_EQ(eroded->maxValue, 7);
}

TEST(Morph, AnEmptyDiscLeavesTheStartValues) {
  const imImagePtr image = makeImage({{3, -4}});
  for (const auto &[operation, value] : {std::pair<MorphFn, int>{imMorphDilate, -1000000},
                                         {imMorphErode, 1000000},
                                         {imMorphOpen, -1000000},
                                         {imMorphClose, 1000000}}) {
    const imImagePtr out = run(operation, image.get(), -1);
    EXPECT_EQ(bandOf(out.get()), (Matrix{{value, value}}));
    EXPECT_EQ(out->maxValue, value);
    EXPECT_EQ(run(operation, imImagePtr(imCreateImage(0, 1, 2, 2)).get(), -1)->maxValue, -1000000);
  }
}

TEST(Morph, EverySmallSizeAndRadiusLikePlain) {
  std::mt19937 random(1);
  for (int ncols = 1; ncols <= 7; ++ncols)
    for (int nrows = 1; nrows <= 7; ++nrows)
      for (int s = -1; s <= 75; s += s < 26 ? 1 : 7) {
        const int which = static_cast<int>(random() % std::size(ranges));
        const imImagePtr in = randomIn(random, which, 1 + (s & 1), ncols, nrows);
        for (const auto &pair : discPairs)
          expectLikePlain(pair, in.get(), s);
      }
}

TEST(Morph, EveryRangeAndRadiusLikePlain) {
  std::mt19937 random(2);
  const int sizes[][2] = {{67, 41}, {1, 90}, {130, 1}, {25, 33}, {64, 3}};
  for (int s = 0; s <= 200; s += s < 30 ? 1 : 10) {
    const auto &[ncols, nrows] = sizes[s % std::size(sizes)];
    const int which = s % static_cast<int>(std::size(ranges));
    const imImagePtr in = randomIn(random, which, s % 3 == 0 ? 3 : 1, ncols, nrows);
    for (const auto &pair : discPairs)
      expectLikePlain(pair, in.get(), s);
  }
}

TEST(Morph, DiscsLargerThanTheImage) {
  std::mt19937 random(3);
  for (const auto &[ncols, nrows] : {std::pair{9, 300}, {300, 9}, {1, 1}, {40, 40}}) {
    const imImagePtr in = randomIn(random, ncols % 4, 2, ncols, nrows);
    expectLikePlain(discPairs[0], in.get(), 1000);
    for (const int s : {90065, 2147395599, 2147395600, maxInt}) {
      const imImagePtr eroded = run(imMorphErode, in.get(), s);
      for (int b = 0; b < 2; ++b)
        EXPECT_EQ(std::count(eroded->band[b], eroded->band[b] + in->npixels,
                             *std::min_element(in->band[b], in->band[b] + in->npixels)),
                  in->npixels);
    }
  }
}

TEST(Morph, FiltersLikePlainStepByStepAndTheirLines) {
  std::mt19937 random(4);
  for (int which = 0; which < static_cast<int>(std::size(ranges)); ++which)
    for (const int n : {-1, 0, 1, 2, 7, 25}) {
      const imImagePtr in = randomIn(random, which, which % 3, 1 + 2 * which, 26 - 2 * which);
      testing::internal::CaptureStdout();
      for (const auto &pair : asfPairs)
        expectLikePlain(pair, in.get(), n);
      std::string lines;
      for (const char *line : {"radius is ", "squared radius is "})
        for (int i = 1; i <= n; ++i)
          lines += line + std::to_string(i) + "\n";
      EXPECT_EQ(testing::internal::GetCapturedStdout(), lines);
    }
}

TEST(Morph, OpeningsAndClosings) {
  std::mt19937 random(5);
  for (const int s : {1, 2, 5, 13, 50}) {
    const imImagePtr in = randomImage(random, 1, imTypeGrey, 150, 40, 0, 255);
    const imImagePtr opened = run(imMorphOpen, in.get(), s);
    const imImagePtr closed = run(imMorphClose, in.get(), s);
    imImagePtr negative(imCopyImage(in.get()));
    for (int p = 0; p < in->npixels; ++p) {
      ASSERT_LE(opened->band[0][p], in->band[0][p]);
      ASSERT_GE(closed->band[0][p], in->band[0][p]);
      negative->band[0][p] = 255 - in->band[0][p];
    }
    expectSame(run(imMorphOpen, opened.get(), s).get(), opened.get());
    expectSame(run(imMorphClose, closed.get(), s).get(), closed.get());
    const imImagePtr dual = run(imMorphClose, negative.get(), s);
    for (int p = 0; p < in->npixels; ++p)
      ASSERT_EQ(dual->band[0][p], 255 - opened->band[0][p]);
  }
}

TEST(Morph, GradientRaisesBandZero) {
  const imImagePtr in(imCreateImage(2, imTypeColor, 4, 2));
  const int first[] = {1, 1, 1, 5, 1, 1, 1, 1};
  const int second[] = {0, -2, 0, 0, 0, 0, 0, 0};
  std::copy_n(first, 8, in->band[0]);
  std::copy_n(second, 8, in->band[1]);
  const imImagePtr out = makeImage({{0, 9, -5, -7}, {0, 0, 3, 0}});
  imMorphGrad(in.get(), out.get());
  EXPECT_EQ(bandOf(out.get()), (Matrix{{2, 9, 4, 4}, {2, 2, 4, 4}}));
  EXPECT_EQ(out->maxValue, 4);
  const auto gradient = [](const Matrix &rows) {
    const imImagePtr image = makeImage(rows);
    imImagePtr result(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
    imMorphGrad(image.get(), result.get());
    return std::pair{bandOf(result.get()), result->maxValue};
  };
  EXPECT_EQ(gradient({{-8, -8}, {-8, -8}}), (std::pair{Matrix{{0, 0}, {0, 0}}, 0}));
  EXPECT_EQ(gradient({{minInt, 0, maxInt}}), (std::pair{Matrix{{maxInt, maxInt, maxInt}}, maxInt}));
  EXPECT_EQ(gradient({{1}, {4}, {2}, {2}}), (std::pair{Matrix{{3}, {3}, {2}, {0}}, 3}));
  const imImagePtr none(imCreateImage(0, imTypeAscii, 4, 2));
  imMorphGrad(none.get(), none.get());
  EXPECT_EQ(none->maxValue, -1);
}

TEST(Morph, WhatDoesNotFitIsRefused) {
  const imImagePtr in(imCreateImage(2, imTypeAscii, 3, 2));
  const imImagePtr oneBand(imCreateImage(1, imTypeAscii, 3, 2));
  const imImagePtr turned(imCreateImage(2, imTypeAscii, 2, 3));
  const auto exits = testing::ExitedWithCode(1);
  EXPECT_EXIT(imMorphErode(in.get(), oneBand.get(), 1), exits, "imMorphErode");
  EXPECT_EXIT(imMorphAsfOC(in.get(), turned.get(), 1), exits, "imMorphAsfOC");
  EXPECT_EXIT(imMorphGrad(in.get(), turned.get()), exits, "imMorphGrad");
}

} // namespace
