// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Converting colours block by block.
//
// Each rule converts one pixel and is applied to blocks of pixels, from one set of small arrays to
// another: compilers vectorise that, and the blocks stay in the first-level cache. Two conversions
// can follow each other block by block, without an image between them, and input and output may be
// the same image.
#pragma once

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inline.h"
#include "image/imImage.h"

#include <algorithm>

namespace seedforest::detail::color {

constexpr int blockPixels = 128;

/// The bands of some pixels.
struct Block {
  alignas(64) int band[3][blockPixels];
};

struct Pixel {
  int band[3];
};

/// The arithmetic of the rules for any values, and a faster form for values so small that no result
/// leaves 32 bits. For components of 0 .. 255, multiplying by the reciprocal gives the same integers
/// as dividing.
struct Any {
  static int whole(double value) { return truncate(value); }
  static double by255(double value) { return value / 255; }
};

struct Small {
  static int whole(double value) { return static_cast<int>(value); }
  static double by255(double value) { return value * (1 / 255.0); }
};

/// Whether all values lie in -below .. size - below - 1; size is a power of two.
struct Range {
  unsigned below;
  unsigned size;

  SEEDFOREST_INLINE inline bool holds(const Block &block, int n) const {
    unsigned all = 0;
    for (int i = 0; i < n; ++i)
      all |= (static_cast<unsigned>(block.band[0][i]) + below) |
             (static_cast<unsigned>(block.band[1][i]) + below) |
             (static_cast<unsigned>(block.band[2][i]) + below);
    return all < size;
  }
};

template <class Arithmetic, class Rule>
SEEDFOREST_INLINE inline void applyWith(const Block &__restrict from, Block &__restrict to, int n,
                                        const Rule &rule) {
  for (int i = 0; i < n; ++i) {
    const Pixel p = rule(Arithmetic(), from.band[0][i], from.band[1][i], from.band[2][i], i);
    to.band[0][i] = p.band[0];
    to.band[1][i] = p.band[1];
    to.band[2][i] = p.band[2];
  }
}

/// Applies rule(arithmetic, components, i) to the pixels i < n; `small` is the range that Small
/// needs.
template <class Rule>
SEEDFOREST_INLINE inline void apply(const Block &from, Block &to, int n, Range small,
                                    const Rule &rule) {
  if (small.holds(from, n))
    applyWith<Small>(from, to, n, rule);
  else
    applyWith<Any>(from, to, n, rule);
}

/// Copies n pixels of an image, from `start`, into a block; and back.
inline void load(const imImage *image, int start, int n, Block &block) {
  for (int b = 0; b < 3; ++b)
    std::copy_n(image->band[b] + start, n, block.band[b]);
}

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
  Block from;
  Block to;
  for (int start = 0, n; start < in->npixels; start += n) {
    n = std::min(blockPixels, in->npixels - start);
    load(in, start, n, from);
    prefetchBlock(in, start + n);
    prefetchBlock(out, start);
    rule(from, to, n);
    store(to, n, out, start);
  }
}

/// One rule after another.
template <class First, class Second>
auto join(const First &first, const Second &second) {
  return [&](const Block &from, Block &to, int n) {
    Block between;
    first(from, between, n);
    second(between, to, n);
  };
}

} // namespace seedforest::detail::color
