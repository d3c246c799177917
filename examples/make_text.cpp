// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Makes a page of 29 dark letters on paper, 240 x 110 pixels, that lies in the shade on its right, with
// noise. Integers only, so that it is the same on every machine:
//
//   make_text PAGE.pgm
//
// Built with the project as build/examples/make_text, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/make_text.cpp -o make_text
//       -Lbuild -lseedforest-image                            (one line)

#include "image/image.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <string_view>

namespace {

constexpr int width = 5; // of a letter, in squares of `side` pixels
constexpr int height = 7;
constexpr int side = 3;

struct Letter {
  char name;
  std::string_view rows[height];
};

constexpr Letter letters[] = {
    {'A', {" ### ", "#   #", "#   #", "#####", "#   #", "#   #", "#   #"}},
    {'D', {"#### ", "#   #", "#   #", "#   #", "#   #", "#   #", "#### "}},
    {'E', {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#####"}},
    {'F', {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#    "}},
    {'G', {" ####", "#    ", "#    ", "#  ##", "#   #", "#   #", " ####"}},
    {'I', {"#####", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "#####"}},
    {'N', {"#   #", "##  #", "##  #", "# # #", "#  ##", "#  ##", "#   #"}},
    {'O', {" ### ", "#   #", "#   #", "#   #", "#   #", "#   #", " ### "}},
    {'R', {"#### ", "#   #", "#   #", "#### ", "# #  ", "#  # ", "#   #"}},
    {'S', {" ####", "#    ", "#    ", " ### ", "    #", "    #", "#### "}},
    {'T', {"#####", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "  #  "}},
    {'W', {"#   #", "#   #", "#   #", "# # #", "# # #", "## ##", "#   #"}},
};

// Makes the letter's squares dark; a name without a letter is a blank.
void print(imImage *page, char name, int left, int top) {
  const Letter *letter = std::find_if(std::begin(letters), std::end(letters),
                                      [name](const Letter &other) { return other.name == name; });
  if (letter == std::end(letters))
    return;
  for (int y = 0; y < height * side; ++y)
    for (int x = 0; x < width * side; ++x)
      if (letter->rows[y / side][static_cast<std::size_t>(x / side)] == '#')
        page->band[0][page->row[top + y] + left + x] -= 70;
}

// The paper's grey falls from 215 to 95; the ink takes 70 from it.
void shade(imImage *page) {
  std::mt19937 random(1); // raw numbers only: the standard does not fix its distributions
  for (int y = 0; y < page->nrows; ++y)
    for (int x = 0; x < page->ncols; ++x)
      page->band[0][x + page->row[y]] =
          215 - 120 * x / page->ncols + static_cast<int>(random() % 13U);
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s PAGE.pgm\n", argv[0]);
    return 1;
  }
  const imImagePtr page(imCreateImage(1, imTypeGrey, 240, 110));
  if (page == nullptr)
    return 1;
  page->maxValue = 255;
  shade(page.get());
  int top = 10;
  for (const std::string_view line : {"SEEDS GROW", "INTO REGIONS", "OF A FOREST"}) {
    int left = 12;
    for (const char name : line) {
      print(page.get(), name, left, top);
      left += (width + 1) * side;
    }
    top += (height + 4) * side;
  }
  imSaveImage(argv[1], page.get());
  return 0;
}
