// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Area opening and closing. The picture has three parts: the input, the input without its bright
// spots of fewer than AREA pixels, and the input without such dark spots:
//
//   open_close IMAGE AREA PICTURE.pgm
//
// Built with the project as build/examples/open_close, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/open_close.cpp -o open_close
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "examples/picture.h"
#include "ift/ift.h"
#include "image/image.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE AREA PICTURE.pgm\n", argv[0]);
    return 1;
  }
  const imImagePtr image = readGrey(argv[1]);
  if (image == nullptr)
    return 1;
  const int area = std::atoi(argv[2]);
  imImage *opened = nullptr;
  imImage *closed = nullptr;
  imImage *openedLabels = nullptr;
  imImage *closedLabels = nullptr;
  ifAreaOpen(image.get(), &opened, &openedLabels, area);
  ifAreaClose(image.get(), &closed, &closedLabels, area);
  const imImagePtr owners[] = {imImagePtr(opened), imImagePtr(closed), imImagePtr(openedLabels),
                               imImagePtr(closedLabels)};
  const imImagePtr picture = sideBySide({image.get(), opened, closed});
  if (picture == nullptr)
    return 1;
  imSaveImage(argv[3], picture.get());
  return 0;
}
