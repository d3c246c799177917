// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/label/detail/runs.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace seedforest::detail {

namespace {

constexpr int wordBits = 64;

// Bit i tells whether byte i of eight bytes of 0 and 1 is 1. Each byte is moved, by one power of two,
// to its place in the product's highest byte, where nothing is carried.
std::uint64_t bitsOf(const unsigned char *bytes) {
  std::uint64_t eight = 0;
  if constexpr (std::endian::native == std::endian::little)
    std::memcpy(&eight, bytes, sizeof eight);
  else
    for (int i = 7; i >= 0; --i)
      eight = eight << 8 | bytes[i];
  return eight * 0x0102040810204080 >> 56;
}

} // namespace

Runs::Runs(int ncols, int nrows) : ncols_(ncols) {
  object_ = makeZeroedArray<unsigned char>(static_cast<std::size_t>(ncols) + wordBits);
  const std::size_t runsPerRow = (static_cast<std::size_t>(ncols) + 1) / 2;
  const std::size_t most = runsPerRow * static_cast<std::size_t>(nrows) + 1; // and an empty one
  edge_ = makeArray<int>(2 * most);
  link_ = makeArray<int>(most);
}

void Runs::addEmptyRun() {
  edge_[0] = edge_[1] = link_[0] = 0;
  above_ = count_ = 1;
}

// Writes the edges of the next row's runs; returns how many runs there are then. A word has a bit for
// each pixel, and a set bit is an edge where the pixel before differs: a loop over edges, whose end is
// all that noise makes unpredictable.
int Runs::findEdges() const {
  int *edge = edge_.get() + 2 * static_cast<std::size_t>(count_);
  std::uint64_t before = 0; // the last pixel of the word before
  for (std::int64_t x = 0; x <= ncols_;
       x += wordBits) { // the pixel behind the row ends its last run
    std::uint64_t objects = 0;
    for (int byte = 0; byte < 8; ++byte)
      objects |= bitsOf(object_.get() + x + 8 * byte) << 8 * byte;
    for (std::uint64_t edges = objects ^ (objects << 1 | before); edges != 0; edges &= edges - 1)
      *edge++ = firstPixel_ + static_cast<int>(x + std::countr_zero(edges));
    before = objects >> (wordBits - 1);
  }
  return static_cast<int>((edge - edge_.get()) / 2);
}

void Runs::addRow() {
  joinRows(findEdges());
  firstPixel_ += ncols_;
}

// Makes the runs up to `count` the last row's and joins them with those of the row above. A run
// touches another when their columns, one more on each side, overlap.
void Runs::joinRows(int count) {
  int *link = link_.get();
  const int first = count_;
  int above = above_;
  for (int i = first; i < count; ++i) {
    const int left = start(i) - ncols_;
    const int right = end(i) - ncols_;
    while (above < first && end(above) < left)
      ++above;
    int component = link[i] = i;
    int touching = above;
    for (; touching < first && start(touching) <= right; ++touching) {
      const int other = leader(touching);
      const int smaller = std::min(component, other);
      link[std::max(component, other)] = smaller; // no change where both are the same leader
      component = smaller;
    }
    above = std::max(above, touching - 1); // the last one may reach the next run too
  }
  above_ = first;
  count_ = count;
}

} // namespace seedforest::detail
