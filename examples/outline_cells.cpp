// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Outlines the cells of a micrograph in ten lines: finds a marker in each cell, gives every bright
// pixel to a marker by the watershed, verifies the result and draws the borders over the image.
//
//   outline_cells [IMAGE [PICTURE.ppm]]
//
// Built with the project as build/examples/outline_cells, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. -Iapi examples/outline_cells.cpp -o outline_cells
//       -Lbuild -lseedforest -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "seedforest/seedforest.hpp"

#include <iostream>

int main(int argc, char **argv) try {
  const auto image = seedforest::read(argc > 1 ? argv[1] : "sample.pgm");
  const auto bright = seedforest::threshold(image, 70, 255);
  const auto dark = seedforest::negative(image);
  const auto roots = seedforest::markers(image, 5, 4);
  const auto cells = seedforest::watershed(dark, roots, {.mask = &bright});
  if (const auto fault = seedforest::verify(cells, dark, roots, {.mask = &bright}))
    throw seedforest::Error(fault->sentence);
  seedforest::write(seedforest::overlay(image, cells.labels), argc > 2 ? argv[2] : "cells.ppm");
} catch (const seedforest::Error &error) {
  std::cerr << error.what() << '\n';
  return 1;
}
