// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The levels of an area opening (areaLevels.h) by one depth-first flood, for values in a small
// range. Internal.
//
// The flood climbs as soon as it meets a higher neighbour, and goes down to the highest waiting
// pixel when a component is complete. So the components of all thresholds that hold the current
// pixel lie on one stack, and no others are incomplete (Salembier, Oliveras and Garrido,
// "Antiextensive connected operators for image and sequence processing", 1998; with a stack of
// components in place of a recursion as in Nistér and Stewénius, "Linear time maximally stable
// extremal regions", 2008). There is no sort, and most pixels are met near the one before: it
// takes two thirds of the time of the pass by falling value, and on noise half, in large images less.
#pragma once

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "image/detail/framedWords.h"
#include "image/detail/imageTools.h"
#include "image/imImage.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace seedforest::detail {

/// Finds, for each regional maximum of an image with values 0 .. highestValue, the highest
/// threshold at which its component has `area` pixels, 1 .. npixels.
class AreaFlood {
  // The pixel's value, or, in the end, its maximum's level; and a bit for having been reached.
  using Word = std::uint16_t;

public:
  static constexpr int highestValue = 0x7fff;

  /// Whether pixels, with a frame around the image, can be numbered by ints.
  static bool canNumber(const imImage *image) { return FramedWords<Word>::sizeFor(image) < maxInt; }

  AreaFlood(const imImage *image, int area)
      : npixels_(image->npixels), area_(area),
        stack_(static_cast<std::size_t>(largestValue(image, 0)) + 1),
        occupied_((stack_.size() + wordBits - 1) / wordBits),
        words_(image, reached, // the frame counts as reached
               [this](int value) {
                 ++stack_[value].end;
                 return static_cast<Word>(value);
               }),
        waiting_(makeArray<int>(static_cast<std::size_t>(image->npixels))) {
    const int s = words_.stride();
    offset_ = {-s - 1, -s, -s + 1, -1, 1, s - 1, s, s + 1};
    int begin = 0;
    for (Waiting &stack : stack_) {
      stack.begin = begin;
      begin += std::exchange(stack.end, begin);
    }
  }

  void run() {
    constexpr int stride = 1024;
    Meter meter(npixels_);
    int unmetered = stride;
    int p = words_.indexOf(0);
    int level = words_[p];
    words_[p] |= reached;
    components_.push_back({level, 0, p, 0});
    do {
      for (int q; (q = higherNeighbor(p, level)) != none; p = q) {
        wait(p, level);
        level = words_[q] & highestValue;
        components_.push_back({level, 0, q, pending_.size()});
      }
      if (--unmetered == 0)
        meter.advance(unmetered = stride);
      Component &top = components_.back();
      ++top.area;
      top.peak = std::min(top.peak, p);
      p = takeWaiting(level);
    } while (p != none);
  }

  /// After run(): the threshold for the maximum whose first pixel, in raster order, is p.
  int levelOf(int p) const { return words_[words_.indexOf(p)] & highestValue; }

private:
  static constexpr int reachedShift = 15;
  static constexpr Word reached = Word{1} << reachedShift;
  static constexpr int neighborCount = 8;
  static constexpr int none = 0; // the index of a pixel of the frame
  static constexpr int wordBits = 64;
  static constexpr int lookahead = 4; // in a stack, to prefetch: in large images a third faster

  struct Component {
    int level;
    int area;
    int peak;            // the first pixel of a maximum, or none where a part is higher
    std::size_t pending; // how many maxima were pending before it
  };

  struct Waiting {
    int begin;
    int end;
  };

  // The displacements, as bits, of the neighbours of p that have not been reached. Without branches,
  // which would be unpredictable.
  unsigned unreachedAround(int p) const {
    const Word *row = &words_[p];
    const Word *above = row - words_.stride();
    const Word *below = row + words_.stride();
    const auto bit = [](Word word, int k) { // of one that has been reached
      return static_cast<unsigned>(word >> reachedShift) << k;
    };
    return (bit(above[-1], 0) | bit(above[0], 1) | bit(above[1], 2) | bit(row[-1], 3) |
            bit(row[1], 4) | bit(below[-1], 5) | bit(below[0], 6) | bit(below[1], 7)) ^
           0xff;
  }

  // Lets neighbours of p wait, up to the first that is higher than p, which is returned.
  int higherNeighbor(int p, int level) {
    for (unsigned rest = unreachedAround(p); rest != 0; rest &= rest - 1) {
      const int q = p + offset_[std::countr_zero(rest)];
      const int value = words_[q];
      words_[q] |= reached;
      if (value > level)
        return q;
      wait(q, value);
    }
    return none;
  }

  void wait(int p, int level) {
    waiting_[stack_[level].end++] = p;
    occupied_[level / wordBits] |= std::uint64_t{1} << level % wordBits;
  }

  // Takes a pixel of the highest level that is not above `level`, which is changed to it.
  int takeWaiting(int &level) {
    if (stack_[level].begin == stack_[level].end) {
      const int next = highestOccupied(level);
      leave(level, next);
      if (next < 0)
        return none;
      level = next;
    }
    Waiting &stack = stack_[level];
    const int p = waiting_[--stack.end];
    words_.prefetch(waiting_[std::max(stack.end - lookahead, stack.begin)]);
    if (stack.end == stack.begin)
      occupied_[level / wordBits] &= ~(std::uint64_t{1} << level % wordBits);
    return p;
  }

  int highestOccupied(int level) const {
    int i = level / wordBits;
    std::uint64_t bits = occupied_[i] & ~std::uint64_t{0} >> (wordBits - 1 - level % wordBits);
    while (bits == 0 && i > 0)
      bits = occupied_[--i];
    return i * wordBits + wordBits - 1 - std::countl_zero(bits);
  }

  // The topmost component is complete at its level; it goes on at the next, lower one, alone or as
  // part of the component that waits there.
  void leave(int level, int next) {
    Component &top = components_.back();
    if (top.peak != none)
      pending_.push_back(std::exchange(top.peak, none));
    while (top.area >= area_ && pending_.size() > top.pending) {
      words_[pending_.back()] = static_cast<Word>(reached | level);
      pending_.pop_back();
    }
    top.level = next;
    if (components_.size() == 1)
      return;
    Component &below = components_[components_.size() - 2];
    if (below.level < next)
      return;
    below.area += top.area;
    below.peak = none;
    components_.pop_back();
  }

  int npixels_;
  int area_;
  Vector<Waiting> stack_;
  Vector<std::uint64_t> occupied_; // a bit for each level: its stack is not empty
  FramedWords<Word> words_;
  Array<int> waiting_; // the stacks of all levels, one behind the other
  std::array<int, neighborCount> offset_;
  Vector<Component> components_;
  Vector<int> pending_; // first pixels of maxima that have no level yet
};

} // namespace seedforest::detail
