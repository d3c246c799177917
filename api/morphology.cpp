// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/morphology.hpp"

#include "base/buffer.h"
#include "detail/quietly.h"
#include "image/imMorph.h"
#include "image/imPixelwise.h"
#include "seedforest/pixelwise.hpp"

#include <algorithm>

namespace seedforest {

using namespace detail;

namespace {

// The result of an operation that writes into an image like its input.
Image morphed(void (*operation)(const imImage *in, imImage *out, int parameter), const Image &image,
              int parameter) {
  return quietly([&] {
    Image result = alike(image);
    operation(image.get(), result.get(), parameter);
    return result;
  });
}

void declareLargest(Image &image) {
  int largest = 0;
  for (int b = 0; b < image.nbands(); ++b)
    largest = std::max(largest, largestValue(image.get(), b));
  image.setMaxValue(largest);
}

Image combined(imImage *(*operation)(const imImage *a, const imImage *b), const Image &a,
               const Image &b) {
  return quietly([&] { return made(operation(recordOf(a), recordOf(b))); });
}

} // namespace

Image dilate(const Image &image, int squaredRadius) {
  return morphed(imMorphDilate, image, squaredRadius);
}

Image erode(const Image &image, int squaredRadius) {
  return morphed(imMorphErode, image, squaredRadius);
}

Image open(const Image &image, int squaredRadius) {
  return morphed(imMorphOpen, image, squaredRadius);
}

Image close(const Image &image, int squaredRadius) {
  return morphed(imMorphClose, image, squaredRadius);
}

Image alternatingFilter(const Image &image, int steps, First first) {
  Image result = morphed(first == First::open ? imMorphAsfOC : imMorphAsfCO, image, steps);
  declareLargest(result);
  return result;
}

Image gradient(const Image &image) {
  return quietly([&] {
    Image result = like(image);
    imMorphGrad(image.get(), result.get());
    return result;
  });
}

Image threshold(const Image &image, int lo, int hi) {
  return quietly([&] { return made(imThreshold(recordOf(image), imTypeAscii, lo, hi)); });
}

Image bandPass(const Image &image, int lo, int hi) {
  return quietly([&] { return made(imBandPass(recordOf(image), imTypeAscii, lo, hi)); });
}

Image negative(const Image &image) {
  return quietly([&] {
    imImage record = changeable(image);
    Image result = made(imNegative(&record, imTypeAscii));
    declareLargest(result);
    return result;
  });
}

Image complement(const Image &shape) {
  return quietly([&] { return made(imNegative2(recordOf(shape), imTypeAscii)); });
}

Image shapeDifference(const Image &a, const Image &b) {
  return quietly([&] { return made(imBinaryDifference(recordOf(a), recordOf(b), imTypeAscii)); });
}

Image shapeUnion(const Image &a, const Image &b) {
  return quietly([&] { return made(imBinaryUnion(recordOf(a), recordOf(b), imTypeAscii)); });
}

Image masked(const Image &image, const Image &mask, int fill) {
  return quietly([&] { return made(imMask(recordOf(image), recordOf(mask), fill)); });
}

Image addBorder(const Image &image, int width) {
  return quietly([&] { return made(imAddBorder(recordOf(image), width)); });
}

Image removeBorder(const Image &image, int width) {
  return quietly([&] { return made(imRemoveBorder(recordOf(image), width)); });
}

Image upperEnvelope(const Image &a, const Image &b) {
  return combined(imUpperEnvelope, a, b);
}

Image lowerEnvelope(const Image &a, const Image &b) {
  return combined(imLowerEnvelope, a, b);
}

Image add(const Image &image, int k) {
  return quietly([&] { return made(imAddToPixelValues(recordOf(image), k)); });
}

Image subtract(const Image &a, const Image &b) {
  return combined(imSubtractImage, a, b);
}

std::vector<float> histogram(const Image &image, const Image &mask) {
  return quietly([&] {
    float *counts = nullptr;
    int size = 0;
    imHistogram(recordOf(image), recordOf(mask), &counts, &size);
    const Array<float> owner(counts);
    return std::vector<float>(counts, counts + size);
  });
}

} // namespace seedforest
