// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// With the shared library, a program's ifWatershedMetric is the one that the library recognises, so
// that watersheds take their fast form. The program has a function of that name of its own, which
// stands in for the library's and counts its calls: the general form calls it for every arc, the
// fast form never. Where the library saw a function of its own in its place, none of the calls below
// would be fast.

#include "ift/ift.h"
#include "image/image.h"
#include "seedforest/seedforest.hpp"

#include <cstdio>

static int calls = 0;

int ifWatershedMetric(const imImage *image, int, int q) {
  ++calls;
  return image->band[0][q];
}

static int ownWeight(const imImage *image, int p, int q) {
  return ifWatershedMetric(image, p, q);
}

namespace {

bool hasFailed = false;

template <class Grow>
void expectCalls(const char *name, bool areExpected, Grow grow) {
  calls = 0;
  grow();
  if ((calls > 0) != areExpected) {
    std::printf("%s: %d calls of the weight function\n", name, calls);
    hasFailed = true;
  }
}

} // namespace

int main() {
  seedforest::Image image(40, 30);
  for (int p = 0; p < 40 * 30; ++p)
    image.pixels()[p] = (p * 37) % 251;
  const seedforest::Roots roots{{0, 1, 0}, {1199, 2, 0}};
  const seedforest::ForestOptions options{.maxCost = 255};

  seedforest::Image general, fast;
  const auto grow = [&](ifArcWeightFn weight) {
    return forest(image, roots, seedforest::pathCost::max, weight, options).labels;
  };
  expectCalls("own weight", true, [&] { general = grow(ownWeight); });
  expectCalls("ifWatershedMetric", false, [&] { fast = grow(ifWatershedMetric); });
  expectCalls("arcWeight::watershed", false, [&] { grow(seedforest::arcWeight::watershed); });
  expectCalls("watershed()", false, [&] { watershed(image, roots, options); });
  if (!(general == fast)) {
    std::puts("the two forms differ");
    hasFailed = true;
  }
  return hasFailed;
}
