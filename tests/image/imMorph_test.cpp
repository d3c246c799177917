// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imMorph.h"

#include "reference/plainMorph.h"
#include "support.h"

#include <algorithm>

namespace {

using MorphFn = void (*)(const imImage *in, imImage *out, int s);

// The operation's result in a new image, whose maxValue is 12345 before.
imImagePtr run(MorphFn operation, const imImage *in, int s) {
  imImagePtr out = blank(in->ncols, in->nrows, in->nbands, in->type);
  out->maxValue = 12345;
  operation(in, out.get(), s);
  return out;
}

// Opening, closing and the filters as chains of literal steps.
template <MorphFn first, MorphFn second>
void plainBoth(const imImage *in, imImage *out, int s) {
  second(run(first, in, s).get(), out, s);
}
constexpr MorphFn plainOpen = plainBoth<plainErode, plainDilate>;
constexpr MorphFn plainClose = plainBoth<plainDilate, plainErode>;

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
  const imImagePtr plain = run(pair[1], in, s);
  const imImagePtr before(imCopyImage(in));
  const imImagePtr fast = run(pair[0], in, s);
  EXPECT_EQ(fast->maxValue, plain->maxValue);
  for (int b = 0; b < in->nbands; ++b) {
    ASSERT_EQ(bandOf(fast, b), bandOf(plain, b)) << "band " << b;
    ASSERT_EQ(bandOf(in, b), bandOf(before, b)) << "band " << b;
  }
}

// Ranges of 8 bits, of 16, across their limits, and around and beyond the start values.
constexpr int ranges[][2] = {{0, 255},           {-300, -46},         {0, 256},
                             {-32768, 32767},    {900000, 965536},    {-1000010, -999990},
                             {999999, 1000001},  {-1000000, 1000000}, {1000001, maxInt},
                             {minInt, -1000001}, {minInt, maxInt}};
constexpr int nRanges = std::size(ranges);

imImagePtr randomIn(std::mt19937 &random, int which, int nbands, int ncols, int nrows) {
  const auto [lo, hi] = ranges[which];
  imImagePtr image = randomImage(random, nbands, imTypeAscii, ncols, nrows, lo, hi);
  for (int b = 0; b < nbands; ++b) {
    image->band[b][0] = lo; // both limits occur
    image->band[b][image->npixels - 1] = hi;
  }
  return image;
}

// Every small size and radius, without a band too, and every range and radius at some larger sizes.
TEST(Morph, DiscsLikePlain) {
  std::mt19937 random(1);
  const auto expectAll = [&random](int which, int nbands, int ncols, int nrows, int s) {
    const imImagePtr in = randomIn(random, which, nbands, ncols, nrows);
    for (const auto &pair : discPairs)
      expectLikePlain(pair, in.get(), s);
  };
  for (int ncols = 1; ncols <= 7; ++ncols)
    for (int nrows = 1; nrows <= 7; ++nrows)
      for (int s = -1; s <= 75; s += s < 26 ? 1 : 7)
        expectAll(pick(random, 0, nRanges - 1), (s + 1) % 3, ncols, nrows, s);
  const int sizes[][2] = {{67, 41}, {1, 90}, {130, 1}, {25, 33}, {64, 3}};
  for (int s = 0; s <= 200; s += s < 30 ? 1 : 10) {
    const auto &[ncols, nrows] = sizes[s % std::size(sizes)];
    expectAll(s % nRanges, s % 3 == 0 ? 3 : 1, ncols, nrows, s);
  }
}

TEST(Morph, DiscsLargerThanTheImage) {
  std::mt19937 random(3);
  for (const auto &[ncols, nrows] : {std::pair{9, 300}, {300, 9}, {40, 40}}) {
    const imImagePtr in = randomIn(random, 1, 1, ncols, nrows);
    expectLikePlain(discPairs[0], in.get(), 1000);
    const Matrix least(nrows, std::vector<int>(ncols, ranges[1][0]));
    for (const int s : {90065, 2147395599, 2147395600, maxInt})
      EXPECT_EQ(bandOf(run(imMorphErode, in.get(), s)), least);
  }
  printedBy([&] {
    for (int which = 0; which < nRanges; ++which)
      for (const auto &pair : asfPairs)
        expectLikePlain(pair, randomIn(random, which, 2, 4, 3).get(), 16); // 13 covers the image
  });
}

TEST(Morph, FiltersLikePlainStepByStepAndTheirLines) {
  std::mt19937 random(4);
  for (int which = 0; which < nRanges; ++which)
    for (const int n : {-1, 0, 1, 2, 7, 25}) {
      const imImagePtr in = randomIn(random, which, which % 3, 1 + 2 * which, 26 - 2 * which);
      const std::string printed = printedBy([&] {
        for (const auto &pair : asfPairs)
          expectLikePlain(pair, in.get(), n);
      });
      std::string lines;
      for (const char *line : {"radius is ", "squared radius is "})
        for (int i = 1; i <= n; ++i)
          lines += line + std::to_string(i) + "\n";
      EXPECT_EQ(printed, lines);
    }
}

TEST(Morph, GradientRaisesBandZero) {
  const auto expectGradient = [](const std::vector<Matrix> &bands, const Matrix &before,
                                 const Matrix &after, int largest) {
    imImagePtr out = makeImage(before);
    imMorphGrad(makeBands(bands, imTypeColor).get(), out.get());
    expectImage("", out.release(), imTypeAscii, largest, {after});
  };
  expectGradient({{{1, 1, 1, 5}, {1, 1, 1, 1}}, {{0, -2, 0, 0}, {0, 0, 0, 0}}},
                 {{0, 9, -5, -7}, {0, 0, 3, 0}}, {{2, 9, 4, 4}, {2, 2, 4, 4}}, 4);
  expectGradient({{{minInt, 0, maxInt}}}, {{0, 0, 0}}, {{maxInt, maxInt, maxInt}}, maxInt);
  expectGradient({{{1}, {4}, {2}, {2}}}, {{0}, {0}, {0}, {0}}, {{3}, {3}, {2}, {0}}, 3);
  const imImagePtr none = blank(4, 2, 0);
  imMorphGrad(none.get(), none.get());
  EXPECT_EQ(none->maxValue, -1);
}

} // namespace
