// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Counts the objects of at least grey level 128 and gives each pixel of the image to the nearest.
//
//   count_objects IMAGE REGIONS.pgm
//
// Without CMake: g++ -std=c++20 count_objects.cpp $(pkg-config --cflags --libs seedforest)

#include "seedforest/seedforest.hpp"

#include <iostream>

int main(int argc, char **argv) try {
  const auto image = seedforest::read(argc > 1 ? argv[1] : "image.pgm");
  const auto objects = seedforest::components(seedforest::threshold(image, 128, 255));
  const auto roots = seedforest::rootsOf(objects.labels);
  const auto nearest = seedforest::exactDistanceTransform(image, roots);
  seedforest::write(nearest.labels, argc > 2 ? argv[2] : "regions.pgm");
  std::cout << objects.count << " objects\n";
} catch (const seedforest::Error &error) {
  std::cerr << error.what() << '\n';
  return 1;
}
