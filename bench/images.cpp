// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/images.h"

#include "examples/micrograph.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifContourSeeds.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <random>

using seedforest::detail::createRoots;

namespace bench {

namespace {

void drawSpiral(imImage *image) {
  int *value = image->band[0];
  std::fill_n(value, image->npixels, 255);
  const int turn[4][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  int x = 0;
  int y = 0;
  int length = image->ncols - 1;
  for (int side = 0; length > 0; ++side) {
    for (int step = 0; step < length; ++step) {
      value[x + image->row[y]] = 0;
      x += turn[side % 4][0];
      y += turn[side % 4][1];
    }
    if (side > 0 && side % 2 == 0)
      length -= 2;
  }
}

// A pixel of a drawing that has a formula.
int valueAt(Drawing drawing, int x, int y, std::mt19937 &random) {
  switch (drawing) {
  case Drawing::noise:
    return static_cast<int>(random() & 255);
  case Drawing::plateau:
    return (x / 32 * 7 + y / 32 * 13) % 4 * 60;
  case Drawing::checkerboard:
    return (x + y) % 2 == 0 ? 200 : 50;
  case Drawing::comb:
    return y == 0 || x % 2 == 0 ? 180 : 20;
  case Drawing::columns:
    return x % 2 == 0 ? 180 : 20;
  case Drawing::manyMaxima:
    return x % 2 == 0 && y % 2 == 0 ? 128 + static_cast<int>(random() % 128) : 100;
  case Drawing::oneGround:
    return x % 6 == 3 && y % 6 == 3 ? 200 : 100;
  default:
    return 7;
  }
}

const char *nameOfNatural(Subject subject) {
  switch (subject) {
  case Subject::shapes:
    return "shapes";
  case Subject::mosaic:
    return "bricks";
  case Subject::colour:
    return "photograph";
  default:
    return "micrograph";
  }
}

// Every pixel for which isRoot holds, with its place in raster order as label.
template <class IsRoot>
ifRootsPtr rootsWhere(const imImage *image, IsRoot isRoot) {
  const int *value = image->band[0];
  ifRootsPtr roots = createRoots(std::count_if(value, value + image->npixels, isRoot));
  int i = 0;
  for (int p = 0; p < image->npixels; ++p)
    if (isRoot(value[p])) {
      roots->pixel[i] = p;
      ++i;
      roots->label[i - 1] = i;
    }
  return roots;
}

} // namespace

const char *nameOf(Drawing drawing, Subject subject) {
  if (drawing == Drawing::micrograph)
    return nameOfNatural(subject);
  static const char *const names[] = {"",     "noise",   "plateau",  "spiral",      "checkerboard",
                                      "comb", "columns", "constant", "many maxima", "one ground"};
  return names[static_cast<int>(drawing)];
}

imImagePtr drawGrey(Scene scene) {
  if (scene.drawing == Drawing::micrograph)
    return micrograph(scene.side, scene.side);
  imImagePtr image(imCreateImage(1, imTypeGrey, scene.side, scene.side));
  image->maxValue = 255;
  if (scene.drawing == Drawing::spiral) {
    drawSpiral(image.get());
    return image;
  }
  std::mt19937 random(scene.drawing == Drawing::noise ? 5 : 3);
  for (int y = 0; y < scene.side; ++y)
    for (int x = 0; x < scene.side; ++x)
      image->band[0][x + image->row[y]] = valueAt(scene.drawing, x, y, random);
  return image;
}

imImagePtr drawShapes(Scene scene) {
  imImagePtr image = drawGrey(scene);
  const int threshold = scene.drawing == Drawing::micrograph ? 80 : 127;
  for (int p = 0; p < image->npixels; ++p)
    image->band[0][p] = image->band[0][p] > threshold ? 255 : 0;
  return image;
}

imImagePtr drawBricks(int side, int brick) {
  imImagePtr labels(imCreateImage(1, imTypeAscii, side, side));
  const int perRow = side / brick + 1;
  for (int p = 0; p < labels->npixels; ++p) {
    const int row = p / side / brick;
    labels->band[0][p] = 1 + row * perRow + (p % side + row % 2 * brick / 2) / brick;
  }
  labels->maxValue = *std::max_element(labels->band[0], labels->band[0] + labels->npixels);
  return labels;
}

imImagePtr drawMosaic(Scene scene) {
  if (scene.drawing == Drawing::micrograph)
    return drawBricks(scene.side, 16);
  const imImagePtr shapes = drawShapes(scene);
  imImagePtr labels(imCreateImage(1, imTypeAscii, scene.side, scene.side));
  ifLabelImage(shapes.get(), labels.get());
  for (int p = 0; p < labels->npixels; ++p)
    ++labels->band[0][p];
  ++labels->maxValue;
  return labels;
}

imImagePtr drawColour(Scene scene) {
  imImagePtr colour(imCreateImage(3, imTypeColor, scene.side, scene.side));
  colour->maxValue = 255;
  if (scene.drawing == Drawing::micrograph) {
    std::mt19937 random(9);
    for (int b = 0; b < 3; ++b)
      for (int p = 0, v = 128; p < colour->npixels; ++p) {
        v = std::clamp(v + static_cast<int>(random() % 17) - 8, 0, 255);
        colour->band[b][p] = v;
      }
    return colour;
  }
  const imImagePtr grey = drawGrey(scene);
  for (int b = 0; b < 3; ++b)
    for (int p = 0; p < colour->npixels; ++p)
      colour->band[b][p] = (grey->band[0][p] * (b + 1) + p % 17 * b) % 256;
  return colour;
}

imImagePtr drawOfType(char type, Scene scene) {
  imImagePtr image = type == imTypeColor ? drawColour(scene) : drawGrey(scene);
  image->type = type;
  return image;
}

ifRootsPtr gridSeeds(const imImage *image) {
  const int step = 40;
  const int columns = (image->ncols + step - 1) / step;
  const int rows = (image->nrows + step - 1) / step;
  ifRootsPtr seeds = createRoots(columns * rows);
  for (int i = 0; i < seeds->n; ++i) {
    const int p = i % columns * step + image->row[i / columns * step];
    seeds->pixel[i] = p;
    seeds->label[i] = i + 1;
    seeds->value[i] = image->band[0][p];
  }
  return seeds;
}

ifRootsPtr everyPixelAsRoot(const imImage *image) {
  ifRootsPtr roots = rootsWhere(image, [](int) { return true; });
  for (int i = 0; i < roots->n; ++i)
    roots->value[i] = std::max(0, image->band[0][i] - 1);
  return roots;
}

ifRootsPtr groundAsRoots(const imImage *shapes) {
  return rootsWhere(shapes, [](int value) { return value == 0; });
}

ifRootsPtr bordersAsRoots(const imImage *shapes) {
  ifRootsPtr roots = createRoots(0);
  ifReleaseRoots(roots.get());
  ifDistTransfRoots(shapes, roots.get(), 1);
  return roots;
}

std::vector<int> randomFeatures(int maxLabel) {
  std::mt19937 random(7);
  std::vector<int> values(static_cast<std::size_t>(maxLabel) + 1);
  std::generate(values.begin(), values.end(), [&] { return static_cast<int>(random() % 1000); });
  return values;
}

double sumOf(const imImage *image, int b) {
  return static_cast<double>(std::accumulate(image->band[b], image->band[b] + image->npixels, 0LL));
}

} // namespace bench
