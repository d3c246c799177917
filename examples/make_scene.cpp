// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Makes three images that belong together, 240 x 180 pixels each: a colour scene of soft-edged
// discs on bands, with noise; a marker with a label of its own on each thing in it; and some binary
// shapes. Integers only, so that they are the same on every machine:
//
//   make_scene SCENE.ppm MARKERS.pgm SHAPES.pgm
//
// Built with the project as build/examples/make_scene, or by hand from the project's folder:
//   g++ -std=c++20 -O2 -I. examples/make_scene.cpp -o make_scene
//       -Lbuild -lseedforest-image                            (one line)

#include "image/image.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <random>

namespace {

// All pixels as near as the radius to the line from (x0, y0) to (x1, y1), and their colour.
struct Stroke {
  int x0, y0, x1, y1;
  int radius;
  int colour[3];
};

// The sky, the sand and the grass; then the things on them. The bar on the grass is as bright as
// the grass, but of another colour.
constexpr Stroke scene[] = {
    {-60, 10, 300, 10, 55, {120, 170, 225}}, {-60, 95, 300, 95, 36, {215, 185, 130}},
    {-60, 185, 300, 185, 58, {75, 125, 60}}, {196, 34, 196, 34, 22, {245, 225, 90}},
    {46, 84, 46, 84, 30, {40, 95, 115}},     {128, 72, 128, 72, 17, {240, 240, 240}},
    {96, 136, 168, 146, 15, {130, 80, 150}}, {210, 120, 210, 120, 24, {95, 55, 40}},
};
constexpr Stroke markers[] = {
    {10, 22, 150, 22, 2, {1}},   {96, 108, 160, 108, 2, {2}},  {10, 168, 230, 168, 2, {3}},
    {190, 34, 202, 34, 3, {4}},  {36, 84, 56, 84, 3, {5}},     {123, 72, 133, 72, 3, {6}},
    {98, 137, 166, 145, 2, {7}}, {202, 120, 218, 120, 3, {8}},
};
// A hand, a ring, and a dumb-bell; strokes of 0 erase.
constexpr Stroke shapes[] = {
    {58, 118, 58, 128, 30, {150}},   {36, 108, 20, 66, 7, {150}},
    {48, 96, 42, 32, 8, {150}},      {64, 94, 70, 26, 8, {150}},
    {78, 102, 98, 44, 7, {150}},     {82, 132, 112, 104, 7, {150}},
    {170, 60, 170, 60, 42, {150}},   {170, 60, 170, 60, 20, {0}},
    {138, 146, 138, 146, 16, {150}}, {138, 146, 212, 140, 5, {150}},
    {210, 140, 210, 140, 22, {150}},
};

// The squared distance of a pixel from the stroke's line.
int squaredDistance(const Stroke &stroke, int x, int y) {
  const int dx = stroke.x1 - stroke.x0;
  const int dy = stroke.y1 - stroke.y0;
  const int length = dx * dx + dy * dy; // squared
  const int along = (x - stroke.x0) * dx + (y - stroke.y0) * dy;
  const bool fromEnd = along > length;
  const int u = x - (fromEnd ? stroke.x1 : stroke.x0);
  const int v = y - (fromEnd ? stroke.y1 : stroke.y0);
  const bool beside = along > 0 && !fromEnd && length > 0;
  return u * u + v * v - (beside ? static_cast<int>(std::int64_t{along} * along / length) : 0);
}

// Blends a stroke into an image; its edge fades over about `blur` pixels.
void draw(imImage *image, const Stroke &stroke, int blur) {
  const int radius = stroke.radius;
  for (int y = 0; y < image->nrows; ++y)
    for (int x = 0; x < image->ncols; ++x) {
      const int inside = radius * radius - squaredDistance(stroke, x, y);
      const int share = blur == 0 ? (inside >= 0 ? 256 : 0)
                                  : std::clamp(128 + 128 * inside / (radius * blur), 0, 256);
      for (int b = 0; b < image->nbands; ++b) {
        int &value = image->band[b][x + image->row[y]];
        value += (stroke.colour[b] - value) * share / 256;
      }
    }
}

template <class Strokes>
imImagePtr drawing(int nbands, char type, const Strokes &strokes, int blur) {
  imImagePtr image(imCreateImage(nbands, type, 240, 180));
  if (image == nullptr)
    return nullptr;
  image->maxValue = 255;
  for (const Stroke &stroke : strokes)
    draw(image.get(), stroke, blur);
  return image;
}

void addNoise(imImage *image) {
  std::mt19937 random(1); // raw numbers only: the standard does not fix its distributions
  const auto pick = [&random] { return static_cast<int>(random() % 9U); };
  for (int b = 0; b < image->nbands; ++b)
    for (int p = 0; p < image->npixels; ++p) {
      int &value = image->band[b][p];
      value = std::clamp(value + pick() + pick() - 8, 0, 255);
    }
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s SCENE.ppm MARKERS.pgm SHAPES.pgm\n", argv[0]);
    return 1;
  }
  const imImagePtr images[] = {drawing(3, imTypeColor, scene, 3),
                               drawing(1, imTypeGrey, markers, 0),
                               drawing(1, imTypeGrey, shapes, 0)};
  if (std::find(std::begin(images), std::end(images), nullptr) != std::end(images))
    return 1;
  addNoise(images[0].get());
  for (int i = 0; i < 3; ++i)
    imSaveImage(argv[1 + i], images[i].get());
  return 0;
}
