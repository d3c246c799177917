// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Grey-scale morphology, one operation for each run:
//
//   morphology OPERATION IMAGE N RESULT.pgm
//
// N is the squared radius of the disc for dilate, erode, open, close and the hats, and the number of
// steps for the alternating filters asfCO and asfOC; gradient ignores it. tophat is the image less its
// opening, the bright things into which the disc does not fit, on a ground of 0; bottomhat the closing
// less the image, the same for dark things.
//
// Built with the project as build/examples/morphology, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/morphology.cpp -o morphology
//       -Lbuild -lseedforest-image                            (one line)

#include "examples/picture.h"
#include "image/image.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

// Subtracts band 0 of one image from that of another, into `out`, which may be either.
static void subtract(const imImage *from, const imImage *image, imImage *out) {
  for (int p = 0; p < out->npixels; ++p)
    out->band[0][p] = from->band[0][p] - image->band[0][p];
}

static void topHat(const imImage *in, imImage *out, int s) {
  imMorphOpen(in, out, s);
  subtract(in, out, out);
}

static void bottomHat(const imImage *in, imImage *out, int s) {
  imMorphClose(in, out, s);
  subtract(out, in, out);
}

struct Operation {
  std::string_view name;
  void (*apply)(const imImage *in, imImage *out, int n);
};

static constexpr Operation operations[] = {
    {"dilate", imMorphDilate},
    {"erode", imMorphErode},
    {"open", imMorphOpen},
    {"close", imMorphClose},
    {"asfCO", imMorphAsfCO},
    {"asfOC", imMorphAsfOC},
    {"tophat", topHat},
    {"bottomhat", bottomHat},
    {"gradient", [](const imImage *in, imImage *out, int) { imMorphGrad(in, out); }},
};

int main(int argc, char **argv) {
  const std::string_view name = argc == 5 ? argv[1] : "";
  for (const Operation &operation : operations) {
    if (operation.name != name)
      continue;
    const imImagePtr image = readGrey(argv[2]);
    if (image == nullptr)
      return 1;
    const imImagePtr result(imCreateImage(1, image->type, image->ncols, image->nrows));
    if (result == nullptr)
      return 1;
    operation.apply(image.get(), result.get(), std::atoi(argv[3]));
    imSaveImage(argv[4], result.get());
    return 0;
  }
  std::fprintf(stderr, "usage: %s OPERATION IMAGE N RESULT.pgm, where OPERATION is one of",
               argv[0]);
  for (const Operation &operation : operations)
    std::fprintf(stderr, " %s", operation.name.data());
  std::fputs("\n", stderr);
  return 1;
}
