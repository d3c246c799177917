// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the harnesses share: how a finding ends a run, and values drawn from the bytes of an input.
#pragma once

#include "base/error.h"
#include "image/detail/imageTools.h"
#include "support.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

/// A finding where something does not hold: libFuzzer keeps the input on which this aborts.
inline void check(bool holds, const char *what) {
  if (holds)
    return;
  std::fprintf(stderr, "FINDING: %s\n", what);
  std::abort();
}

/// Whether the call went through; where it did not, its error must be one line.
template <class Call>
bool succeeds(Call call) {
  try {
    call();
    return true;
  } catch (const seedforest::Error &error) {
    check(*error.what() != '\0' && std::strchr(error.what(), '\n') == nullptr,
          "an error is not one line");
    return false;
  }
}

inline void checkSameImage(const imImage *a, const imImage *b, const char *what) {
  check(a->type == b->type && a->nbands == b->nbands && a->ncols == b->ncols &&
            a->nrows == b->nrows && a->maxValue == b->maxValue,
        what);
  for (int i = 0; i < a->nbands; ++i)
    check(std::equal(a->band[i], a->band[i] + a->npixels, b->band[i]), what);
}

/// The cost of a path that is the better the longer it is: it soon lies below every bucket.
inline int fallingCost(int cost, int) {
  return cost > minInt ? cost - 1 : cost;
}

/// Draws values from the bytes of an input; zeros when they have run out.
class Draw : public FuzzedDataProvider {
public:
  using FuzzedDataProvider::FuzzedDataProvider;

  int from(int lo, int hi) { return ConsumeIntegralInRange(lo, hi); }
  bool chance(int oneOf) { return from(1, oneOf) == oneOf; }

  /// Mostly small numbers, which are the indices, radii, labels and levels that mean something.
  int hostileInt() {
    switch (from(0, 9)) {
    case 7:
      return PickValueInArray({minInt, minInt + 1, -1000001, -100000, -1, 255, 256, 1000, 65536,
                               1000001, maxInt / 2, maxInt - 1, maxInt});
    case 8:
      return from(-1000, 100000);
    case 9:
      return ConsumeIntegral<int>();
    default:
      return from(-2, 12);
    }
  }

  template <class T, std::size_t n>
  T any(const T (&values)[n]) {
    return values[ConsumeIntegralInRange<std::size_t>(0, n - 1)];
  }

  /// An image of a few values, over and over: noise, or runs in which there are plateaus.
  template <class Value>
  imImagePtr image(int nbands, char type, int ncols, int nrows, Value value) {
    imImagePtr image = blank(ncols, nrows, nbands, type);
    int palette[6];
    std::generate(std::begin(palette), std::end(palette), value);
    const unsigned oneOf = from(1, 5);
    std::minstd_rand random(ConsumeIntegral<std::uint16_t>());
    for (int b = 0; b < nbands; ++b)
      for (int p = 0, last = 0; p < image->npixels; ++p) {
        last = random() / 7 % oneOf == 0 ? palette[random() / 7 % 6] : last;
        image->band[b][p] = last;
      }
    image->maxValue = nbands > 0 ? seedforest::detail::largestValue(image.get(), 0) : 0;
    return image;
  }
};
