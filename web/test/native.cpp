// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The steps that speed.mjs measures in the browser, as a program: native IMAGE RUNS prints, for each
// step, its name and the time of each run in milliseconds.

#include "seedforest/seedforest.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

template <class Step>
void measure(const char *name, int runs, Step step) {
  using Clock = std::chrono::steady_clock;
  std::printf("%s:", name);
  for (int i = 0; i < runs; ++i) {
    const auto start = Clock::now();
    step(i);
    std::printf(" %.2f", std::chrono::duration<double, std::milli>(Clock::now() - start).count());
  }
  std::printf("\n");
}

} // namespace

int main(int argc, char **argv) {
  using namespace seedforest;
  if (argc != 3)
    return 1;
  const Image image = read(argv[1]);
  const int runs = std::atoi(argv[2]);
  const Image crests = gradient(image);
  Roots roots;
  measure("h-maxima, seeds of them", runs, [&](int i) { roots = markers(image, 20 + i % 2); });
  measure("watershed", runs, [&](int) { watershed(crests, roots); });
  return 0;
}
