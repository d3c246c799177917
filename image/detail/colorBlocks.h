// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Converting colours block by block.
//
// Each rule converts one pixel and is applied to the pixels of a block, of which the results go to
// small arrays: compilers vectorise that, and the arrays stay in the first-level cache. Two
// conversions can follow each other block by block, without an image between them, and input and
// output may be the same image.
#pragma once

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inline.h"
#include "image/imImage.h"

#include <algorithm>

namespace seedforest::detail::color {

constexpr int blockPixels = 128;

/// The bands of some pixels, in an image or in a block.
struct Bands {
  const int *band[3];
};

/// Results for some pixels.
struct Block {
  alignas(64) int band[3][blockPixels];

  operator Bands() const { return {{band[0], band[1], band[2]}}; }
};

inline Bands bandsAt(const imImage *image, int start) {
  return {{image->band[0] + start, image->band[1] + start, image->band[2] + start}};
}

struct Pixel {
  int band[3];
};

constexpr double one = 16384; ///< of XYZ, saturation and value

/// The arithmetic of the rules for any values, and a faster form for values so small that no result
/// leaves 32 bits. For components of 0 .. 255, multiplying by the reciprocal gives the same integers
/// as dividing, and so does single precision for shares: part / all, 0 where all is 0.
struct Any {
  using Number = double;
  static int whole(double value) { return truncate(value); }
  static double by255(double value) { return value / 255; }
  static int share(double part, double all) {
    const double quotient = part * one / (all == 0 ? 1.0 : all);
    return truncate(all == 0 ? 0.0 : quotient);
  }
};

struct Small {
  using Number = int;
  static int whole(double value) { return static_cast<int>(value); }
  static double by255(double value) { return value * (1 / 255.0); }
  static int share(int part, int all) {
    const auto scaled = static_cast<float>(part) * static_cast<float>(one);
    return static_cast<int>(scaled / static_cast<float>(all == 0 ? 1 : all)); // 0 of 0 is 0
  }
};

/// Whether all values lie in -below .. size - below - 1; size is a power of two.
struct Range {
  unsigned below;
  unsigned size;

  SEEDFOREST_INLINE inline bool holds(const Bands &of, int n) const {
    unsigned all = 0;
    for (int i = 0; i < n; ++i)
      all |= (static_cast<unsigned>(of.band[0][i]) + below) |
             (static_cast<unsigned>(of.band[1][i]) + below) |
             (static_cast<unsigned>(of.band[2][i]) + below);
    return all < size;
  }
};

template <class Arithmetic, class Rule>
SEEDFOREST_INLINE inline void applyWith(const Bands &from, Block &__restrict to, int n,
                                        const Rule &rule) {
  for (int i = 0; i < n; ++i) {
    using Number = typename Arithmetic::Number;
    const auto of = [&](int b) { return static_cast<Number>(from.band[b][i]); };
    const Pixel p = rule(Arithmetic(), of(0), of(1), of(2), i);
    to.band[0][i] = p.band[0];
    to.band[1][i] = p.band[1];
    to.band[2][i] = p.band[2];
  }
}

/// Applies rule(arithmetic, components, i) to the pixels i < n; `small` is the range that Small
/// needs.
template <class Rule>
SEEDFOREST_INLINE inline void apply(const Bands &from, Block &to, int n, Range small,
                                    const Rule &rule) {
  if (small.holds(from, n))
    applyWith<Small>(from, to, n, rule);
  else
    applyWith<Any>(from, to, n, rule);
}

/// XYZ of components of 0 .. 255.
void bytesToXyz(const Bands &rgb, Block &xyz, int n);

/// Copies the first n pixels of a block to those of an image from `start`.
inline void store(const Block &block, int n, imImage *image, int start) {
  for (int b = 0; b < 3; ++b)
    std::copy_n(block.band[b], n, image->band[b] + start);
}

/// A block's pixels in the three bands of an image, which will soon be read or written. Inlined, as
/// compilers drop calls of functions that do nothing but prefetch.
SEEDFOREST_INLINE inline void prefetchBlock(const imImage *image, int start) {
  constexpr int intsPerLine = 16;
  const int end = start + std::min(blockPixels, image->npixels - start);
  for (int b = 0; b < 3; ++b)
    for (int p = start; p < end; p += intsPerLine)
      prefetchAt(image->band[b] + p);
}

/// Applies rule(from, to, n) to the whole image. Processors do not foresee six streams in short
/// pieces; prefetching saves a third of the time of Lab and Luv.
template <class Rule>
void convert(const imImage *in, imImage *out, const Rule &rule) {
  Block to;
  for (int start = 0, n; start < in->npixels; start += n) {
    n = std::min(blockPixels, in->npixels - start);
    prefetchBlock(in, start + n);
    prefetchBlock(out, start);
    rule(bandsAt(in, start), to, n);
    store(to, n, out, start);
  }
}

/// One rule after another.
template <class First, class Second>
auto join(const First &first, const Second &second) {
  return [&](const Bands &from, Block &to, int n) {
    Block between;
    first(from, between, n);
    second(between, to, n);
  };
}

} // namespace seedforest::detail::color
