// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the page in the browser calls: one image, the roots found in it, and the regions that grow
// from them, by the same functions as the programs on the command line.
//
// Functions that compute return 1, or 0 after an error, whose sentence is errorText(). Pointers are
// valid until the next call that computes.

#include "flood.h"
#include "formats.h"
#include "measures.h"
#include "pixels.h"
#include "regions.h"
#include "seeding.h"
#include "table.h"

#include <algorithm>
#include <array>
#include <emscripten.h>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

using namespace seedforest;
using namespace seedforest::tools;

namespace {

// More pixels would not leave room for a transform in the four gigabytes that the page may use.
constexpr int mostPixels = 36'000'000;

// Everything that a visitor sees. Kept steps are those whose settings have not changed.
struct Page {
  Image image;
  bool isForTool = false; // a file that the tool reads as the page does
  Image smooth;           // the image after smoothSteps steps of a filter
  int smoothSteps = 0;
  std::array<std::string, 2> rootsFiles; // for joining
  Roots found;                           // by a method
  int ground = 0;                        // the label of the ground in it, 0 for none
  Roots strokes;                         // drawn by hand
  Roots both;                            // where there are strokes
  std::optional<Relief> reliefKind;
  Image relief;
  Image labels;
  std::vector<Measures> regions;
  std::vector<double> rows;
  std::string text;
  std::string error;
};

Page page;

EM_JS(void, tellProgress, (double fraction), { Module.tellProgress(fraction); });

Roots &allRoots() {
  return page.strokes.empty() ? page.found : page.both;
}

template <class Work>
int guarded(Work work) {
  const WithProgress progress([](double fraction) {
    tellProgress(fraction);
    return true;
  });
  try {
    work();
    return 1;
  } catch (const OutOfMemory &) {
    page.error = "The image is too large for this step: the browser gives no more memory.";
  } catch (const std::bad_alloc &) {
    page.error = "The image is too large for this step: the browser gives no more memory.";
  } catch (const std::exception &error) {
    page.error = error.what();
  }
  return 0;
}

void start(Image image, bool isForTool) {
  if (image.npixels() > mostPixels)
    throw Error("The image has " + std::to_string(image.npixels() / 1'000'000) +
                " million pixels; this page takes up to " + std::to_string(mostPixels / 1'000'000) +
                " million. The programs on the command line have no such limit.");
  page = {};
  page.image = std::move(image);
  page.isForTool = isForTool;
}

const Image &smoothed(int steps) {
  if (steps == 0)
    return page.image;
  if (!page.smooth || page.smoothSteps != steps) {
    page.smooth = {};
    page.smooth = alternatingFilter(page.image, steps);
    page.smoothSteps = steps;
  }
  return page.smooth;
}

Roots joinedFiles(const Image &image) {
  for (const std::string &file : page.rootsFiles)
    if (file.empty())
      throw Error("Choose two roots files to join.");
  Roots joined = decodeRoots(page.rootsFiles[0], image);
  for (const Root &root : decodeRoots(page.rootsFiles[1], image))
    joined.push_back(root);
  return joined;
}

enum Method { drawn, regMax, regMin, dt, frame, labels, cells, join, markersBy, split };

Roots rootsBy(Method method, int a, int b, const Image &image, const Threshold &threshold) {
  switch (method) {
  case drawn:
    return {};
  case regMax:
    return regionalMaximaRoots(image).within(a, b);
  case regMin:
    return regionalMinimaRoots(image).within(a, b);
  case dt:
    return contourRoots(image);
  case frame:
    return a == 0 ? frameRoots(image) : frameRoots(image, b);
  case labels:
    return rootsOf(image);
  case cells:
    return cellRoots(image, a);
  case join:
    return joinedFiles(image);
  case markersBy:
    return markers(brightnessOf(image), a);
  case split:
    return splitRoots(image, threshold, a);
  }
  return {};
}

const Image &reliefFor(Relief kind) {
  if (!page.relief || page.reliefKind != kind) {
    page.relief = {};
    page.relief = reliefOf(page.image, kind);
    page.reliefKind = kind;
  }
  return page.relief;
}

int keepText(const std::function<std::string()> &textOf) {
  return guarded([&] { page.text = textOf(); });
}

} // namespace

extern "C" {

EMSCRIPTEN_KEEPALIVE const char *errorText() {
  return page.error.c_str();
}

/// A PNM file.
EMSCRIPTEN_KEEPALIVE int loadFile(const char *bytes, int size) {
  return guarded([&] {
    const std::string_view file(bytes, static_cast<std::size_t>(size));
    Image image = decodeImage(file).image;
    const bool isWide = file[1] != '2' && image.maxValue() > 255;
    start(std::move(image), !isWide);
  });
}

/// Pixels of red, green, blue and a byte that is ignored: grey where all three are equal everywhere.
EMSCRIPTEN_KEEPALIVE int loadPixels(const unsigned char *samples, int ncols, int nrows) {
  return guarded([&] {
    const std::span pixels(samples, static_cast<std::size_t>(ncols) * nrows * 4);
    bool isGrey = true;
    for (std::size_t i = 0; i < pixels.size() && isGrey; i += 4)
      isGrey = pixels[i] == pixels[i + 1] && pixels[i] == pixels[i + 2];
    Image image(ncols, nrows, isGrey ? 1 : 3, isGrey ? ImageType::grey : ImageType::color);
    image.setMaxValue(255);
    for (int b = 0; b < image.nbands(); ++b)
      for (std::size_t p = 0; p < image.pixels().size(); ++p)
        image.pixels(b)[p] = pixels[4 * p + static_cast<std::size_t>(b)];
    start(std::move(image), true);
  });
}

EMSCRIPTEN_KEEPALIVE int columns() {
  return page.image.ncols();
}
EMSCRIPTEN_KEEPALIVE int rows() {
  return page.image.nrows();
}
EMSCRIPTEN_KEEPALIVE int bands() {
  return page.image.nbands();
}
EMSCRIPTEN_KEEPALIVE int isForTool() {
  return page.isForTool ? 1 : 0;
}
EMSCRIPTEN_KEEPALIVE const int *band(int b) {
  return page.image.pixels(b).data();
}
EMSCRIPTEN_KEEPALIVE int otsu() {
  return otsuThreshold(brightnessOf(page.image));
}

EMSCRIPTEN_KEEPALIVE int takeRootsFile(int place, const char *bytes, int size) {
  return guarded([&] {
    const std::string_view file(bytes, static_cast<std::size_t>(size));
    decodeRoots(file, page.image); // a damaged file is refused at once
    page.rootsFiles[static_cast<std::size_t>(place)] = file;
  });
}

/// Finds roots by a method with its parameters, after a filter of `steps`; the threshold, negative
/// for Otsu's, is that of the method `split` and of the ground.
EMSCRIPTEN_KEEPALIVE int findRoots(int method, int a, int b, int steps, int isAutomatic,
                                   int threshold, int hasGround) {
  return guarded([&] {
    page.labels = {}; // which will be new
    const Image &image = smoothed(steps);
    Threshold limit;
    if (isAutomatic == 0)
      limit.value = threshold;
    page.found = rootsBy(static_cast<Method>(method), a, b, image, limit);
    page.ground = hasGround == 0 ? 0 : addGround(page.found, image, limit).label;
    page.strokes = {};
    page.both = {};
  });
}

/// Adds `count` roots, each a pixel and a label, behind those that were found.
EMSCRIPTEN_KEEPALIVE int addStrokes(const int *pairs, int count) {
  return guarded([&] {
    page.strokes = {};
    page.both = {};
    if (count == 0)
      return;
    page.both = page.found.copy();
    for (int i = 0; i < count; ++i) {
      const Root root = {pairs[2 * i], pairs[2 * i + 1]};
      page.strokes.push_back(root);
      page.both.push_back(root);
    }
  });
}

EMSCRIPTEN_KEEPALIVE int rootCount() {
  return static_cast<int>(allRoots().size());
}
EMSCRIPTEN_KEEPALIVE const int *rootPixels() {
  return allRoots().pixels().data();
}
EMSCRIPTEN_KEEPALIVE const int *rootLabels() {
  return std::as_const(allRoots()).labels().data();
}
EMSCRIPTEN_KEEPALIVE int groundLabel() {
  return page.ground;
}

/// Grows regions from the roots: `only` is 0 for the whole image, 1 above Otsu's threshold, 2 above
/// `threshold`; `similar` is negative for no merging. The ground's label becomes 0.
EMSCRIPTEN_KEEPALIVE int growRegions(int relief, int isFour, int cost, int only, int threshold,
                                     int leastArea, int similar, int hasLines) {
  return guarded([&] {
    const Image &image = page.image;
    requireRegions(allRoots(), image, "The roots");
    Image mask;
    if (only != 0)
      mask = shapeAbove(image, only == 1 ? Threshold{} : Threshold{threshold});
    ForestOptions options;
    options.adjacency = isFour != 0 ? Adjacency::four() : Adjacency::eight();
    options.mask = only != 0 ? &mask : nullptr;
    page.labels = {};
    Image grown = labelsFrom(reliefFor(static_cast<Relief>(relief)), allRoots(),
                             static_cast<Cost>(cost), options);
    Merging merging = {leastArea};
    if (similar >= 0)
      merging.similar = similar;
    if (merging.isAsked())
      grown = merged(std::move(grown), image, merging);
    if (page.ground != 0)
      clearLabel(grown, page.ground);
    if (hasLines != 0)
      drawLines(grown, options.adjacency);
    page.labels = std::move(grown);
  });
}

EMSCRIPTEN_KEEPALIVE const int *labelPixels() {
  return std::as_const(page.labels).pixels().data();
}

/// Measures the regions. A row of numbers for each, by label: label, area, x, y, and the mean of
/// each band.
EMSCRIPTEN_KEEPALIVE int measureRegions() {
  return guarded([&] {
    page.regions = measuresOf(page.labels, &page.image);
    page.rows.clear();
    for (const Measures &region : page.regions) {
      page.rows.insert(page.rows.end(), {static_cast<double>(region.label),
                                         static_cast<double>(region.area), region.x, region.y});
      for (const BandMeasures &values : region.bands)
        page.rows.push_back(values.mean);
    }
  });
}

EMSCRIPTEN_KEEPALIVE const double *regionRows() {
  return page.rows.data();
}
EMSCRIPTEN_KEEPALIVE int regionRowsSize() {
  return static_cast<int>(page.rows.size());
}

/// The bytes of files: of all roots, of those by a method, of those drawn, the table of the
/// regions, and the image as PNM.
EMSCRIPTEN_KEEPALIVE int writeRootsText(int which) {
  return keepText([which] {
    const Roots &roots = which == 0 ? allRoots() : which == 1 ? page.found : page.strokes;
    return encodeRoots(roots, page.image);
  });
}
EMSCRIPTEN_KEEPALIVE int writeTable() {
  return keepText([] { return csvOf(columnsFor(page.image), page.regions); });
}
EMSCRIPTEN_KEEPALIVE int writeImageFile() {
  return keepText([] { return encodeImage(page.image, "-"); });
}
EMSCRIPTEN_KEEPALIVE const char *textBytes() {
  return page.text.data();
}
EMSCRIPTEN_KEEPALIVE int textSize() {
  return static_cast<int>(page.text.size());
}

} // extern "C"
