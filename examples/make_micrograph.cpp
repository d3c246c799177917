// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Makes a synthetic micrograph, bright cells on a dark ground, as a P5 file. The ground is brighter at
// the right edge by SLOPE grey levels (255 at most; 20 unless given):
//
//   make_micrograph NCOLS NROWS IMAGE.pgm [SLOPE]
//
// Built with the project as build/examples/make_micrograph, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/make_micrograph.cpp -o make_micrograph
//       -Lbuild -lseedforest-image                            (one line)

#include "examples/micrograph.h"
#include "image/image.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv) {
  if (argc != 4 && argc != 5) {
    std::fprintf(stderr, "usage: %s NCOLS NROWS IMAGE.pgm [SLOPE]\n", argv[0]);
    return 1;
  }
  const int slope = argc == 5 ? std::clamp(std::atoi(argv[4]), -255, 255) : 20;
  const imImagePtr image = micrograph(std::atoi(argv[1]), std::atoi(argv[2]), slope);
  if (image == nullptr)
    return 1;
  imSaveImage(argv[3], image.get());
  return 0;
}
