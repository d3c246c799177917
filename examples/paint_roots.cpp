// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Paints a roots file over its image, a colour for each label:
//
//   paint_roots IMAGE ROOTS PICTURE.ppm [TURN]
//
// Consecutive labels get very different colours or, with TURN, similar ones: the colours go once
// around the colour circle in TURN labels.
//
// Built with the project as build/examples/paint_roots, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/paint_roots.cpp -o paint_roots
//       -Lbuild -lseedforest-ift -lseedforest-image           (one line)

#include "examples/picture.h"
#include "ift/ift.h"
#include "image/image.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// The image as a dimmed colour picture, its largest value at three quarters of white.
static imImagePtr background(const imImage *image) {
  imImagePtr picture(imCreateImage(3, imTypeColor, image->ncols, image->nrows));
  if (picture == nullptr)
    return nullptr;
  int brightest = image->type == imTypeAscii ? 1 : 255; // ASCII images often use a few values only
  for (int b = 0; b < image->nbands; ++b)
    brightest =
        std::max(brightest, *std::max_element(image->band[b], image->band[b] + image->npixels));
  for (int b = 0; b < 3; ++b) {
    const int *band = image->band[image->nbands == 3 ? b : 0];
    for (int p = 0; p < image->npixels; ++p)
      picture->band[b][p] = static_cast<int>(std::int64_t{std::max(band[p], 0)} * 191 / brightest);
  }
  return picture;
}

int main(int argc, char **argv) {
  if (argc != 4 && argc != 5) {
    std::fprintf(stderr, "usage: %s IMAGE ROOTS PICTURE.ppm [TURN]\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  const ifRootsPtr roots(ifReadRoots(argv[2], image.get()));
  const imImagePtr picture = background(image.get());
  if (roots == nullptr || picture == nullptr)
    return 1;
  const int turn = argc == 5 ? std::atoi(argv[4]) : 0;
  for (int i = 0; i < roots->n; ++i) {
    const int p = roots->pixel[i];
    if (p < 0 || p >= image->npixels)
      continue; // the file was made for another image
    const int label = roots->label[i];
    paint(picture.get(), p,
          turn > 0 ? colourAt(static_cast<double>(label) / turn) : colourOf(label));
  }
  imSaveImage(argv[3], picture.get());
  return 0;
}
