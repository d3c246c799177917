// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Leptonica: images of 1 bit and of 8 bits a pixel.

#include "bench/rows.h"

#include <cstdlib>

#include <leptonica/allheaders.h>

namespace bench {

namespace {

struct PixDeleter {
  void operator()(PIX *pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<PIX, PixDeleter>;

PixPtr bytesOf(const imImage *image, int lower = 0) {
  PixPtr pix(pixCreate(image->ncols, image->nrows, 8));
  for (int y = 0; y < image->nrows; ++y)
    for (int x = 0; x < image->ncols; ++x)
      SET_DATA_BYTE(pixGetData(pix.get()) + std::ptrdiff_t{y} * pixGetWpl(pix.get()), x,
                    std::max(0, image->band[0][x + image->row[y]] - lower));
  return pix;
}

PixPtr bitsOf(const imImage *shapes) {
  const PixPtr bytes = bytesOf(shapes);
  PixPtr dark(pixThresholdToBinary(bytes.get(), 128)); // sets the bits of values below
  pixInvert(dark.get(), dark.get());
  return dark;
}

double sumOfBytes(PIX *pix) {
  double sum = 0;
  for (int y = 0; y < pixGetHeight(pix); ++y)
    for (int x = 0; x < pixGetWidth(pix); ++x)
      sum += GET_DATA_BYTE(pixGetData(pix) + std::ptrdiff_t{y} * pixGetWpl(pix), x);
  return sum;
}

struct Work {
  PixPtr in;
  PixPtr out;
  PixPtr marker;
  double count = 0;
};

Job components(Scene scene) {
  const auto work = std::make_shared<Work>();
  work->in = bitsOf(drawShapes(scene).get());
  return {[work] {
            BOXA *boxes = pixConnCompBB(work->in.get(), 8);
            work->count = boxaGetCount(boxes);
            boxaDestroy(&boxes);
          },
          [work] { return work->count; }};
}

// Works in place, on a copy of the marker.
Job reconstruction(Scene scene) {
  const auto work = std::make_shared<Work>();
  const imImagePtr image = drawGrey(scene);
  work->in = bytesOf(image.get());
  work->marker = bytesOf(image.get(), 1);
  work->out.reset(pixCopy(nullptr, work->marker.get()));
  return {[work] {
            pixCopy(work->out.get(), work->marker.get());
            pixSeedfillGray(work->out.get(), work->in.get(), 8);
          },
          [work] { return sumOfBytes(work->out.get()); }};
}

Job thinning(Scene scene) {
  const auto work = std::make_shared<Work>();
  work->in = bitsOf(drawShapes(scene).get());
  return {[work] { work->out.reset(pixThinConnected(work->in.get(), L_THIN_FG, 8, 0)); },
          [work] { return 0.0; }};
}

} // namespace

std::vector<Peer> leptonicaPeers() {
  char *text = getLeptonicaVersion(); // with the name in front, and a hyphen
  std::string leptonica = "Leptonica " + std::string(text).substr(std::string("leptonica-").size());
  std::free(text);
  const std::string seedfill = "pixSeedfillGray: 8-bit, values only";
  return {
      {"components", leptonica, "pixConnCompBB: 1-bit, boxes, no labels", true, components},
      {"reconstruction from every pixel", leptonica, seedfill, true, reconstruction},
      {"reconstruction of a marker", leptonica, seedfill, true, reconstruction},
      {"skeleton", leptonica, "pixThinConnected: 1-bit, another skeleton, no scale", false,
       thinning},
  };
}

} // namespace bench
