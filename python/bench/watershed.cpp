// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The watershed in C++, for bench.py: for each line on standard input, runs it once from the image and
// the roots file of the arguments, and prints the seconds of processor time.

#include "seedforest/seedforest.hpp"

#include <ctime>
#include <iostream>
#include <string>

namespace sf = seedforest;

int main(int argc, char **argv) try {
  if (argc != 3) {
    std::cerr << "usage: watershed IMAGE.pgm ROOTS.txt\n";
    return 1;
  }
  const sf::Image image = sf::read(argv[1]);
  const sf::Roots roots = sf::readRoots(argv[2], image);
  for (std::string line; std::getline(std::cin, line);) {
    const std::clock_t start = std::clock();
    sf::watershed(image, roots);
    std::cout << static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC << std::endl;
  }
} catch (const sf::Error &error) {
  std::cerr << error.what() << '\n';
  return 1;
}
