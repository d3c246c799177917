// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Draws a maze of ROOMS x ROOMS rooms, white on black, with more than one way through it:
//
//   make_maze ROOMS MAZE.pgm
//
// From the middle of the room in the upper left corner, pixel (4, 4), to that of the one in the lower
// right there is always a way. Built with the project as build/examples/make_maze.

#include "image/image.h"

#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

constexpr int roomSide = 6;
constexpr int pitch = roomSide + 2; // a room with its wall

// Makes a room, and the opening to its neighbour that many rooms away, white.
void open(imImage *maze, int column, int row, int dx, int dy) {
  for (int y = 2; y < pitch; ++y)
    for (int x = 2; x < pitch; ++x)
      for (int step = 0; step < (dx == 0 && dy == 0 ? 1 : pitch); ++step)
        maze->band[0][maze->row[row * pitch + y + dy * step] + column * pitch + x + dx * step] =
            255;
}

// Goes from room to room, back where there is no new one, until all are open.
void dig(imImage *maze, int rooms) {
  std::mt19937 random(2); // raw numbers only: the standard does not fix its distributions
  std::vector<bool> isOpen(static_cast<std::size_t>(rooms) * static_cast<std::size_t>(rooms));
  std::vector<int> way = {0};
  isOpen[0] = true;
  open(maze, 0, 0, 0, 0);
  while (!way.empty()) {
    const int column = way.back() % rooms;
    const int row = way.back() / rooms;
    const auto turn = static_cast<int>(random() % 4U);
    bool hasGone = false;
    for (int side = 0; side < 4 && !hasGone; ++side) {
      const int dx = ((turn + side) % 4 - 1) % 2; // -1 0 1 0
      const int dy = ((turn + side + 3) % 4 - 1) % 2;
      if (column + dx < 0 || column + dx >= rooms || row + dy < 0 || row + dy >= rooms)
        continue;
      const int next = (row + dy) * rooms + column + dx;
      // Some walls between rooms that are open already fall, too.
      hasGone = !isOpen[static_cast<std::size_t>(next)];
      if (hasGone || random() % 64U == 0)
        open(maze, column, row, dx, dy);
      if (hasGone)
        way.push_back(next);
      isOpen[static_cast<std::size_t>(next)] = true;
    }
    if (!hasGone)
      way.pop_back();
  }
}

} // namespace

int main(int argc, char **argv) {
  const int rooms = argc == 3 ? std::atoi(argv[1]) : 0;
  if (rooms < 1 || rooms > 1000) {
    std::fprintf(stderr, "usage: %s ROOMS MAZE.pgm, up to 1000 rooms\n", argv[0]);
    return 1;
  }
  const int side = rooms * pitch + 2;
  const imImagePtr maze(imCreateImage(1, imTypeGrey, side, side));
  if (maze == nullptr)
    return 1;
  maze->maxValue = 255;
  dig(maze.get(), rooms);
  imSaveImage(argv[2], maze.get());
  return 0;
}
