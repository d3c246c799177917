// Outlines the cells of a micrograph: finds a marker in each, gives every bright pixel to a marker
// by the watershed, proves the result right and draws the borders over the image.
//
//   outline_cells IMAGE PICTURE.ppm
//
// Built with the project as build/examples/outline_cells, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. -Iapi examples/outline_cells.cpp -o outline_cells
//       -Lbuild -lseedforest-api -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "seedforest/seedforest.hpp"

#include <iostream>

int main(int argc, char **argv) try {
  if (argc != 3)
    throw seedforest::Error("usage: outline_cells IMAGE PICTURE.ppm");
  const auto image = seedforest::read(argv[1]);
  const auto smooth = seedforest::alternatingFilter(image, 4);
  const auto bright = seedforest::threshold(smooth, 70, 255);
  const auto dark = seedforest::negative(smooth);
  const auto roots = seedforest::markers(smooth, 5);
  const auto cells = seedforest::watershed(dark, roots, {.mask = &bright});
  if (const auto fault = seedforest::verify(cells, dark, roots, {.mask = &bright}))
    throw seedforest::Error(fault->sentence);
  seedforest::write(seedforest::overlay(image, cells.labels), argv[2]);
} catch (const seedforest::Error &error) {
  std::cerr << error.what() << '\n';
  return 1;
}
