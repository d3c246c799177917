// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The watershed in C++, for bench.py: for each line on standard input, runs it once from the image and
// the roots file of the arguments, and prints the seconds.

#include "seedforest/seedforest.hpp"

#include <chrono>
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
    const auto start = std::chrono::steady_clock::now();
    sf::watershed(image, roots);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::cout << seconds.count() << std::endl;
  }
} catch (const sf::Error &error) {
  std::cerr << error.what() << '\n';
  return 1;
}
