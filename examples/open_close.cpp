// Area opening and closing: an image of three parts, the input, without its bright spots smaller
// than AREA pixels, and without its dark ones:
//
//   open_close IMAGE AREA PICTURE.pgm
//
// Built with the project as build/examples/open_close, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/open_close.cpp -o open_close
//       -Lbuild -lseedforest-ift -lseedforest-graph -lseedforest-image  (one line)

#include "ift/ift.h"
#include "image/image.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>

// Copies an image into a wider one, from a column on.
static void paste(const imImage *part, imImage *picture, int column) {
  for (int y = 0; y < part->nrows; ++y)
    std::copy_n(part->band[0] + part->row[y], part->ncols,
                picture->band[0] + picture->row[y] + column);
}

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s IMAGE AREA PICTURE.pgm\n", argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  if (image->nbands != 1) {
    std::fprintf(stderr, "%s is no grey image\n", argv[1]);
    return 1;
  }
  const int area = std::atoi(argv[2]);
  imImage *opened = nullptr;
  imImage *closed = nullptr;
  imImage *openedLabels = nullptr;
  imImage *closedLabels = nullptr;
  ifAreaOpen(image.get(), &opened, &openedLabels, area);
  ifAreaClose(image.get(), &closed, &closedLabels, area);
  const imImagePtr owners[] = {imImagePtr(opened), imImagePtr(closed), imImagePtr(openedLabels),
                               imImagePtr(closedLabels)};
  const int ncols = image->ncols;
  if (ncols > INT_MAX / 3)
    return 1;
  const imImagePtr picture(imCreateImage(1, image->type, 3 * ncols, image->nrows));
  if (picture == nullptr)
    return 1;
  paste(image.get(), picture.get(), 0);
  paste(opened, picture.get(), ncols);
  paste(closed, picture.get(), 2 * ncols);
  picture->maxValue = image->maxValue;
  imSaveImage(argv[3], picture.get());
  return 0;
}
