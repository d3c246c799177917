// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Splits an image into two objects by fuzzy connectedness and draws the border between them:
//
//   segment_fuzzy IMAGE ROOTS PICTURE.ppm [MEAN1 SIGMA1 MEAN2 SIGMA2]
//
// ROOTS has seeds of the labels 1 and 2, as the option cells makes them. If the objects' parameters
// are not given, they are measured around the seeds: the mean grey level, and as sigma four times
// the variance.
// Leaves the cost maps of both objects, tmp1.pgm and tmp2.pgm, in the current folder.
//
// Built with the project as build/examples/segment_fuzzy, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/segment_fuzzy.cpp -o segment_fuzzy
//       -Lbuild -lseedforest-ift -lseedforest-image           (one line)

#include "ift/ift.h"
#include "image/image.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

// The mean grey level and four times the variance in the 3 x 3 pixels around the seeds of a label:
// links whose average is less than two standard deviations from the mean then cost nothing.
static void measure(const imImage *image, const ifRoots *seeds, int label, int &mean, int &sigma) {
  double count = 0;
  double sum = 0;
  double sumOfSquares = 0;
  for (int i = 0; i < seeds->n; ++i) {
    const int p = seeds->pixel[i];
    if (seeds->label[i] != label || p < 0 || p >= image->npixels)
      continue;
    const int x = p % image->ncols;
    const int y = p / image->ncols;
    for (int v = std::max(0, y - 1); v <= std::min(image->nrows - 1, y + 1); ++v)
      for (int u = std::max(0, x - 1); u <= std::min(image->ncols - 1, x + 1); ++u) {
        const double value = image->band[0][u + image->row[v]];
        count += 1;
        sum += value;
        sumOfSquares += value * value;
      }
  }
  if (count == 0)
    return;
  const double average = sum / count;
  mean = static_cast<int>(average);
  sigma = static_cast<int>(
      std::clamp(4 * (sumOfSquares / count - average * average), 1.0, 2147483647.0));
}

int main(int argc, char **argv) {
  if (argc != 4 && argc != 8) {
    std::fprintf(stderr, "usage: %s IMAGE ROOTS PICTURE.ppm [MEAN1 SIGMA1 MEAN2 SIGMA2]\n",
                 argv[0]);
    return 1;
  }
  imImage *read = nullptr;
  imReadImage(argv[1], &read);
  const imImagePtr image(read);
  const ifRootsPtr seeds(ifReadRoots(argv[2], image.get()));
  const imImagePtr labels(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  const imImagePtr costs(imCreateImage(1, imTypeAscii, image->ncols, image->nrows));
  if (seeds == nullptr || labels == nullptr || costs == nullptr)
    return 1;
  int mean[3] = {0, 0, 0}; // entry 0 stands for no object
  int sigma[3] = {1, 1, 1};
  for (int object = 1; object <= 2; ++object) {
    if (argc == 8) {
      mean[object] = std::atoi(argv[2 + 2 * object]);
      sigma[object] = std::atoi(argv[3 + 2 * object]);
    } else {
      measure(image.get(), seeds.get(), object, mean[object], sigma[object]);
    }
    std::printf("object %d: mean %d, sigma %d\n", object, mean[object], sigma[object]);
  }
  iftFuzzy(image.get(), labels.get(), costs.get(), imNeighborhood8, seeds.get(), mean, sigma, 2);
  const imImagePtr picture(imShowSegm(image.get(), labels.get(), 255, 0, 0));
  if (picture == nullptr)
    return 1;
  imSaveImage(argv[3], picture.get());
  return 0;
}
