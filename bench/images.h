// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The images that the benchmarks run on, square, with 8-bit values, the same on every machine: a
// synthetic micrograph as the natural image, and images that are hard in different ways. A header
// for C++17 too, since not every library to compare with can be compiled as C++20.
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imImage.h"

#include <vector>

namespace bench {

enum class Drawing {
  micrograph,
  noise,
  plateau,      // squares of 32 pixels in four values
  spiral,       // a way of width 1 and value 0 between walls of 255, from the outside to the middle
  checkerboard, // 200 and 50
  comb,         // teeth of width 1, joined at the top
  columns,      // alternating
  constant,
  manyMaxima, // one in each 2 x 2 pixels
  oneGround,  // single peaks, one in 36 pixels, on one plateau that touches all of them
};

/// What is made of a drawing.
enum class Subject { grey, shapes, mosaic, colour };

struct Scene {
  Drawing drawing;
  int side; // in pixels
};

const char *nameOf(Drawing drawing, Subject subject = Subject::grey);

/// A new image of type grey.
imImagePtr drawGrey(Scene scene);

/// The grey image thresholded, 0 and 255.
imImagePtr drawShapes(Scene scene);

/// Labels from 1: in place of the micrograph, bricks of 16 pixels; else the components of the
/// shapes, on a ground of label 1.
imImagePtr drawMosaic(Scene scene);

/// Bricks of some pixels, shifted from row to row, numbered from 1.
imImagePtr drawBricks(int side, int brick);

/// Colours: in place of the micrograph, some that change little from pixel to pixel, as in
/// photographs; else made of the grey values.
imImagePtr drawColour(Scene scene);

/// The colours for type colour, else the grey image, with that type.
imImagePtr drawOfType(char type, Scene scene);

/// Single seeds, one every 40 pixels or so, each with a label of its own and its pixel's value.
ifRootsPtr gridSeeds(const imImage *image);

/// Each pixel a seed, with its place as label and the value one below its own (at least 0).
ifRootsPtr everyPixelAsRoot(const imImage *image);

/// All pixels of value 0, each with a label of its own.
ifRootsPtr groundAsRoots(const imImage *shapes);

/// The border pixels of the shapes, numbered along the contours.
ifRootsPtr bordersAsRoots(const imImage *shapes);

/// A value 0 .. 999 for each label 0 .. maxLabel, the same ones every time.
std::vector<int> randomFeatures(int maxLabel);

/// The sum of a band, exact.
double sumOf(const imImage *image, int b = 0);

} // namespace bench
