// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "outlines.h"

#include <algorithm>

namespace seedforest::tools {

namespace {

// The 4-connected parts of equal number: of each pixel its part, from 0 in raster order.
struct Parts {
  std::vector<int> of;
  std::vector<int> numberOf;
};

Parts partsOf(const Image &numbers) {
  constexpr int unseen = -1;
  const std::span<const int> number = numbers.pixels();
  const int ncols = numbers.ncols();
  Parts parts = {std::vector<int>(number.size(), unseen), {}};
  std::vector<int> stack;
  for (int start = 0; start < numbers.npixels(); ++start) {
    if (parts.of[static_cast<std::size_t>(start)] != unseen)
      continue;
    const int part = static_cast<int>(parts.numberOf.size());
    const int own = number[static_cast<std::size_t>(start)];
    parts.numberOf.push_back(own);
    const auto reach = [&](int p, int step, bool isInside) {
      const int q = isInside ? p + step : p;
      const auto at = static_cast<std::size_t>(q);
      if (parts.of[at] == unseen && number[at] == own) {
        parts.of[at] = part;
        stack.push_back(q);
      }
    };
    reach(start, 0, true);
    while (!stack.empty()) {
      const int p = stack.back();
      stack.pop_back();
      reach(p, -1, p % ncols > 0);
      reach(p, 1, p % ncols + 1 < ncols);
      reach(p, -ncols, p >= ncols);
      reach(p, ncols, p < numbers.npixels() - ncols);
    }
  }
  return parts;
}

// Follows the edges of parts with the part at the right hand, as seen on a screen. In coordinates
// whose y grows downward this is counter-clockwise around the outside.
class Follower {
public:
  Follower(const Parts &parts, int ncols, int nrows)
      : parts_(parts), ncols_(ncols), nrows_(nrows), isPassed_(parts.of.size()) {}

  // Whether a ring that was not followed yet runs along a pixel's upper edge.
  bool startsRing(int x, int y) const {
    return !isPassed_[index(x, y)] && partAt(x, y - 1) != partAt(x, y);
  }

  Ring ringFrom(int x, int y) {
    const int part = partAt(x, y);
    const Corner first = {x, y};
    Corner at = first;
    Heading heading = east;
    Ring ring = {first};
    do {
      if (heading == east)
        isPassed_[index(at.x, at.y)] = true;
      at = {at.x + step[heading].dx, at.y + step[heading].dy};
      const Heading next = nextHeading(at, heading, part);
      if (next != heading)
        ring.push_back(at);
      heading = next;
    } while (at != first || heading != east);
    return ring;
  }

private:
  enum Heading { east, south, west, north };
  static constexpr Displacement step[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};

  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(ncols_) +
           static_cast<std::size_t>(x);
  }
  int partAt(int x, int y) const {
    const bool isInside = x >= 0 && x < ncols_ && y >= 0 && y < nrows_;
    return isInside ? parts_.of[index(x, y)] : -1;
  }

  // Of the two pixels ahead, that to the left decides first: where it is of the part, the line turns
  // towards it, so that a part's pixels that meet in a corner only stay on one side, together.
  Heading nextHeading(const Corner &at, Heading heading, int part) const {
    const auto isPart = [&](int dx, int dy) { return partAt(at.x + dx, at.y + dy) == part; };
    static constexpr Displacement aheadLeft[] = {{0, -1}, {0, 0}, {-1, 0}, {-1, -1}};
    static constexpr Displacement aheadRight[] = {{0, 0}, {-1, 0}, {-1, -1}, {0, -1}};
    if (isPart(aheadLeft[heading].dx, aheadLeft[heading].dy))
      return static_cast<Heading>((heading + 3) % 4);
    if (isPart(aheadRight[heading].dx, aheadRight[heading].dy))
      return heading;
    return static_cast<Heading>((heading + 1) % 4);
  }

  const Parts &parts_;
  int ncols_;
  int nrows_;
  std::vector<bool> isPassed_; // upper edges
};

} // namespace

std::vector<std::vector<Polygon>> outlinesOf(const Image &numbers) {
  const Parts parts = partsOf(numbers);
  std::vector<std::vector<Polygon>> outlines(static_cast<std::size_t>(numbers.maxValue()) + 1);
  std::vector<std::size_t> placeOf(parts.numberOf.size()); // 1 more than that in its number's list
  Follower follower(parts, numbers.ncols(), numbers.nrows());
  for (int y = 0, p = 0; y < numbers.nrows(); ++y)
    for (int x = 0; x < numbers.ncols(); ++x, ++p) {
      const auto part = static_cast<std::size_t>(parts.of[static_cast<std::size_t>(p)]);
      const int number = parts.numberOf[part];
      if (number == 0 || !follower.startsRing(x, y))
        continue;
      std::vector<Polygon> &polygons = outlines[static_cast<std::size_t>(number)];
      if (placeOf[part] == 0) { // the first ring in raster order is the outer one
        polygons.emplace_back();
        placeOf[part] = polygons.size();
      }
      polygons[placeOf[part] - 1].push_back(follower.ringFrom(x, y));
    }
  return outlines;
}

} // namespace seedforest::tools
