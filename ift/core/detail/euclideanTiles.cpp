// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/detail/euclideanTiles.h"

#include "base/inline.h"
#include "base/multiversion.h"
#include "ift/core/detail/ancestry.h"
#include "ift/core/detail/iftPropagate.h"
#include "ift/core/detail/turningQueue.h"
#include "ift/core/detail/wordsInBand.h"
#include "ift/core/ifCost.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace seedforest::detail {

namespace {

constexpr int nsteps = 8;

// Where the words of pixels lie: tile by tile, row by row in each, with a frame of one pixel around
// the image.
class Tiles {
public:
  explicit Tiles(const imImage *image)
      : across_((image->ncols + 2 + width - 1) / width),
        down_((image->nrows + 2 + height - 1) / height) {}

  static constexpr int area = 32;

  std::int64_t size() const { return std::int64_t{across_} * down_ * area; }

  /// The tiles of row y of the image: their first place, and the number of their places.
  int beginOfStrip(int y) const { return (y + 1) / height * sizeOfStrip(); }
  int sizeOfStrip() const { return across_ * area; }

  /// A row of the image and its frame: `across()` times `width` places in a row, from place(-1, y).
  int across() const { return across_; }
  static constexpr int width = 8;

  /// Whether `ncols` ints for each row above a strip need as many bytes as the strips above it, of
  /// words of 16 bits, or more. If the second strip, with three rows above, has room, all have.
  bool leaveRoomAbove(int ncols) const {
    return std::int64_t{ncols} * (height - 1) * 2 >= sizeOfStrip();
  }

  /// The place of the pixel (x, y), which may be one in the frame.
  int place(int x, int y) const {
    const int column = x + 1;
    const int row = y + 1;
    return (row / height * across_ + column / width) * area + row % height * width + column % width;
  }

  /// From a place to the one beside it by (dx, dy); `lane` is the place modulo the area of a tile.
  int step(int lane, int dx, int dy) const {
    const int x = width + lane % width - 1; // anywhere but at the edge
    const int y = height + lane / width - 1;
    return place(x + dx, y + dy) - place(x, y);
  }

private:
  static constexpr int height = 4;

  int across_;
  int down_;
};

// A pixel's word: unreached or, while it waits, a flag and the last bits of its cost; when it is
// settled, the displacement by which it was reached, in two bits each, or none for a root. Waiting
// costs are no more than one step apart, so that their last bits tell which is less.
struct Word {
  static constexpr unsigned waiting = 0x8000;
  static constexpr std::uint16_t unreached = 0x4000;
  static constexpr std::uint16_t root = 5;    // settle(0, 0)
  static constexpr unsigned farther = 0x4000; // half of the costs that can be told apart
  static constexpr unsigned costMask = 0x7fff;
  static constexpr int longest = 8190; // a sum of dx and dy from which a step costs less than half

  static std::uint16_t wait(int cost) {
    return static_cast<std::uint16_t>(waiting | (static_cast<unsigned>(cost) & costMask));
  }
  static std::uint16_t settle(int dx, int dy) {
    return static_cast<std::uint16_t>((dx + 1) | (dy + 1) << 2);
  }
  static int dx(int settled) { return (settled & 3) - 1; }
  static int dy(int settled) { return (settled >> 2) - 1; }
  static bool isImprovedBy(int cost, unsigned word) {
    const bool isFarther = ((word - static_cast<unsigned>(cost) - 1) & farther) == 0;
    return word == unreached || (word >= waiting && isFarther);
  }
};

using Words = WordsInBand<std::uint16_t>;

// A waiting pixel with its offsets to its root.
struct TileEntry {
  int pixel; // its place and, in the last bits, the displacement by which it was reached
  std::uint16_t x;
  std::uint16_t y;

  static constexpr int arrivalBits = 3;
  static constexpr std::int64_t mostPlaces = std::int64_t{1} << (31 - arrivalBits);

  static TileEntry at(int place, int arrival, int x, int y) {
    return {place << arrivalBits | arrival, static_cast<std::uint16_t>(x),
            static_cast<std::uint16_t>(y)};
  }
  static int placeOf(int pixel) { return pixel >> arrivalBits; }
  int place() const { return placeOf(pixel); }
  int arrival() const { return pixel & ((1 << arrivalBits) - 1); }
  int cost() const { return static_cast<int>(unsigned{x} * x + unsigned{y} * y); }
};

// Pixels are settled in the order of their costs. An offer is left out where a neighbour that was
// settled before has surely made a better one. A pixel reached by a straight step has three
// neighbours that its predecessor does not share. One reached by a diagonal step has five, of which
// two lie back in x or in y. Say it was reached from s by (1, 1), and so has the offsets
// (x + 1, y + 1): s + (1, 0) costs at most (x + 1)^2 + y^2, was settled before, and has offered
// s + (2, 0) a path that costs less than (x + 2)^2 + (y + 2)^2, whichever root it leads to. That
// leaves three neighbours in all cases.
class TileTransform {
public:
  TileTransform(const NeighborWalk &neighbors, const Tiles &tiles, Words words) : words_(words) {
    for (int k = 0; k < nsteps; ++k) {
      const int dx = neighbors.dx(k);
      const int dy = neighbors.dy(k);
      length_[k] = {std::abs(dx), std::abs(dy)};
      settled_[k] = Word::settle(dx, dy);
      for (int lane = 0; lane < Tiles::area; ++lane)
        around_[lane][k] = tiles.step(lane, dx, dy);
      int n = 0;
      for (int onward = 0; onward < nsteps; ++onward)
        if (leadsOn(dx, neighbors.dx(onward), dy, neighbors.dy(onward)))
          onward_[k][n++] = onward;
    }
    for (int lane = 0; lane < Tiles::area; ++lane)
      corner_[lane] = {tiles.step(lane, -1, -1), tiles.step(lane, 1, -1), tiles.step(lane, -1, 1),
                       tiles.step(lane, 1, 1)};
  }

  using Entry = TileEntry;
  Entry entry(int q, int k, int) const {
    return Entry::at(q, k, x_ + length_[k].dx, y_ + length_[k].dy);
  }

  bool isCurrent(Entry entry, int) const {
    return words_[entry.place()] == Word::wait(entry.cost());
  }

  void settle(Entry entry) {
    x_ = entry.x;
    y_ = entry.y;
    const int cost = entry.cost();
    isExact_ = isExact_ && cost >= cost_ && x_ + y_ <= Word::longest;
    cost_ = cost;
    words_.set(entry.place(), cost == 0 ? Word::root : settled_[entry.arrival()]);
  }

  template <class Offer>
  void offers(Entry entry, Offer offer) const {
    const int p = entry.place();
    const auto &around = around_[p % Tiles::area];
    const auto offerStep = [&](int k) SEEDFOREST_INLINE {
      offer(p + around[k], k, cost_ + length_[k].dx * (2 * x_ + 1) + length_[k].dy * (2 * y_ + 1));
    };
    if (!isExact_)
      return; // all this is for nothing, and offsets may not grow without bounds
    if (cost_ == 0)
      for (int k = 0; k < nsteps; ++k)
        offerStep(k);
    else
      for (const int k : onward_[entry.arrival()])
        offerStep(k);
  }

  bool improves(int cost, int q) const { return Word::isImprovedBy(cost, words_[q]); }
  void conquer(int, int q, int, int cost) { words_.set(q, Word::wait(cost)); }
  int bucket(int cost, int) const { return cost; } // the queue knows how often to go round
  SEEDFOREST_INLINE void prefetch(int pixel) const {
    const int p = TileEntry::placeOf(pixel);
    for (const int offset : corner_[p % Tiles::area])
      prefetchAt(words_.at(p + offset));
  }

  /// Whether a root at this place can improve a neighbour.
  bool reaches(int p) const {
    const auto &around = around_[p % Tiles::area];
    return std::any_of(around.begin(), around.end(),
                       [&](int offset) { return words_[p + offset] == Word::unreached; });
  }

  /// False when pixels were settled out of order, or costs could not be told apart.
  bool isExact() const { return isExact_; }

private:
  // Whether a step behind (dx, dy) leads to a pixel that is to be offered a path.
  static bool leadsOn(int dx, int nextX, int dy, int nextY) {
    const bool isShared = std::abs(dx + nextX) <= 1 && std::abs(dy + nextY) <= 1;
    return !isShared && dx * nextX >= 0 && dy * nextY >= 0;
  }

  struct Length {
    int dx;
    int dy;
  };
  Words words_;
  std::array<Length, nsteps> length_;                       // of each step
  std::array<std::uint16_t, nsteps> settled_;               // the word, by arrival
  std::array<std::array<int, 3>, nsteps> onward_;           // by arrival
  std::array<std::array<int, nsteps>, Tiles::area> around_; // by the place in a tile
  std::array<std::array<int, 4>, Tiles::area> corner_;      // together in all tiles of a window
  int x_ = 0;                                               // of the pixel settled last
  int y_ = 0;
  int cost_ = 0;
  bool isExact_ = true;
};

// A function of its own, as for any relation of neighbours.
[[gnu::noinline]] void run(TileTransform &transform, TurningQueue<TileEntry> &queue) {
  propagate(transform, queue);
}

// All pixels are unreached, and the frame is settled.
void clear(const imImage *image, const Tiles &tiles, Words words) {
  const auto size = static_cast<int>(tiles.size());
  for (int p = 0; p < size; ++p)
    words.set(p, Word::unreached);
  for (int x = -1; x <= image->ncols; ++x) {
    words.set(tiles.place(x, -1), Word::root);
    words.set(tiles.place(x, image->nrows), Word::root);
  }
  for (int y = 0; y < image->nrows; ++y) {
    words.set(tiles.place(-1, y), Word::root);
    words.set(tiles.place(image->ncols, y), Word::root);
  }
}

// A pixel that is its own neighbour, as in a disc, improves nothing by that.
NeighborWalk withoutCentre(const EuclideanProblem &problem) {
  Vector<int> displacements;
  for (int k = 0; k < problem.neighbors.size(); ++k)
    if (problem.neighbors.dx(k) != 0 || problem.neighbors.dy(k) != 0)
      displacements.insert(displacements.end(), {problem.neighbors.dx(k), problem.neighbors.dy(k)});
  return {problem.image, static_cast<int>(displacements.size() / 2), displacements.data()};
}

// A step, or the sum of several, as a cost on the way: dx and dy in 16 bits each.
struct PackedSteps {
  static int pack(int dx, int dy) { return dx + (dy << 16); }
  static int squaredLength(int steps) {
    const int dx = steps & 0xffff;
    const int dy = steps >> 16;
    return dx * dx + dy * dy;
  }
};

SEEDFOREST_MULTIVERSION void squareSteps(int *steps, int n) {
  for (int p = 0; p < n; ++p)
    steps[p] = PackedSteps::squaredLength(steps[p]);
}

// The predecessors and the steps of a row that begins at pixel p, of settled words.
SEEDFOREST_MULTIVERSION void unpackRow(const std::uint16_t *word, int p, int ncols, int *pred,
                                       int *cost) {
  for (int x = 0; x < ncols; ++x) {
    const int dx = Word::dx(word[x]);
    const int dy = Word::dy(word[x]);
    pred[x] = p + x - dx - dy * ncols;
    cost[x] = PackedSteps::pack(std::abs(dx), std::abs(dy));
  }
}

// Finds the roots, and writes what the problem asks for. The words lie in the memory of the costs,
// packed more densely: from the last row to the first, a row's costs take the place of words that
// have been read.
void unpack(const EuclideanProblem &problem, const Tiles &tiles, Words words) {
  const imImage *image = problem.image;
  const auto stripBytes = static_cast<std::size_t>(tiles.sizeOfStrip()) * sizeof(std::uint16_t);
  const Array<unsigned char> strip = makeArray<unsigned char>(stripBytes);
  const Words stripWords(strip.get());
  int begin = -1; // of the strip in this memory
  const auto rowLength = static_cast<std::size_t>(tiles.across()) * Tiles::width;
  const Array<std::uint16_t> rowWords = makeArray<std::uint16_t>(rowLength);
  const Array<int> rowPred = makeArray<int>(rowLength);
  Ancestry<true> ancestry(problem);
  for (int y = image->nrows - 1; y >= 0; --y) {
    if (begin != tiles.beginOfStrip(y)) {
      begin = tiles.beginOfStrip(y);
      std::memcpy(strip.get(), words.at(begin), stripBytes);
    }
    const int p = image->row[y];
    for (int x = 0; x < tiles.across() * Tiles::width; x += Tiles::width)
      std::memcpy(&rowWords[x], stripWords.at(tiles.place(x - 1, y) - begin),
                  Tiles::width * sizeof(std::uint16_t));
    int *pred = problem.pred != nullptr ? problem.pred + p : rowPred.get();
    unpackRow(&rowWords[1], p, image->ncols, pred, problem.cost + p);
    ancestry.addRow(y, pred);
  }
  ancestry.handDown();
  squareSteps(problem.cost, image->npixels);
}

} // namespace

bool propagateInTiles(const EuclideanProblem &problem) {
  const imImage *image = problem.image;
  const NeighborWalk window = withoutCentre(problem);
  const Tiles tiles(image);
  const bool fits = tiles.size() <= 2 * std::int64_t{image->npixels} &&
                    tiles.size() <= TileEntry::mostPlaces && tiles.leaveRoomAbove(image->ncols);
  // Where roots are many, little is left to flood, and unpacking would cost more than that saves.
  // With one root at least, every pixel is reached.
  const bool isWorthwhile =
      !problem.rootPixels.empty() && std::ssize(problem.rootPixels) <= image->npixels / 4;
  if (!window.isWindow() || !fits || !isWorthwhile)
    return false;
  const Words words(problem.cost);
  clear(image, tiles, words);
  const auto placeOf = [&](int p) {
    const int y = p / image->ncols;
    return tiles.place(p - y * image->ncols, y);
  };
  for (const int p : problem.rootPixels)
    words.set(placeOf(p), Word::root);
  TileTransform transform(window, tiles, words);
  {
    TurningQueue<TileEntry> queue(problem.nbuckets, image->npixels);
    forEachSeed(problem.rootPixels, problem.inherited.begin()->band, [&](int, int p) {
      const int place = placeOf(p);
      if (!transform.reaches(place)) // a root among roots improves none
        return;
      words.set(place, Word::wait(0));
      queue.append(0, TileEntry::at(place, 0, 0, 0));
    });
    run(transform, queue);
  }
  if (!transform.isExact())
    return false;
  unpack(problem, tiles, words);
  ++propagationsInTiles;
  return true;
}

} // namespace seedforest::detail
