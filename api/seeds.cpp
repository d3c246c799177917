// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/seeds.hpp"

#include "base/arith.h"
#include "base/report.h"
#include "detail/quietly.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/seeds/detail/cellClasses.h"
#include "ift/seeds/ifContourSeeds.h"
#include "ift/seeds/ifExtrema.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "seedforest/filters.hpp"
#include "seedforest/morphology.hpp"
#include "seedforest/pixelwise.hpp"
#include "seedforest/shapes.hpp"

#include <algorithm>
#include <cstdlib>

namespace seedforest {

using namespace detail;

namespace {

Roots taken(ifRoots *roots) {
  return Roots(ifRootsPtr(roots));
}

// The roots that make(record) stores in a record.
template <class Make>
Roots filledIn(Make make) {
  ifRootsPtr roots = createRoots(0);
  ifReleaseRoots(roots.get());
  make(roots.get());
  return Roots(std::move(roots));
}

// The image, negated for minima, shifted so that its least value minus h is 1.
Image raised(const Image &image, int h, bool minima) {
  if (h < 0)
    fatal("extrema cannot stand out by more than %d\n", h);
  requireBands("extrema", recordOf(image), 1);
  const auto [least, most] = std::ranges::minmax(image.pixels());
  const std::int64_t range = std::int64_t{most} - least;
  if (range + h + 1 >= maxInt)
    fatal("values of %d .. %d are too far apart for h %d\n", least, most, h);
  const std::int64_t from = std::int64_t{h} + 1 + (minima ? most : -std::int64_t{least});
  Image result = like(image);
  std::ranges::transform(image.pixels(), result.pixels().begin(), [from, minima](int value) {
    return static_cast<int>(minima ? from - value : from + value);
  });
  result.setMaxValue(static_cast<int>(range + h + 1));
  return result;
}

Image extended(const Image &image, int h, bool minima) {
  return quietly([&] {
    const Image mask = raised(image, h, minima);
    const Image marker = add(mask, -h);
    return regionalMaxima(reconstruct(mask, marker).image);
  });
}

} // namespace

Roots frameRoots(const Image &image, int label) {
  return quietly([&] { return taken(ifFrameAsRoots(recordOf(image), 1, label)); });
}

Roots frameRoots(const Image &image) {
  return quietly([&] { return taken(ifFrameAsRoots(recordOf(image), 0, 0)); });
}

Image regionalMaxima(const Image &image) {
  return quietly([&] { return made(ifRegionalMaxima(recordOf(image))); });
}

Image regionalMinima(const Image &image) {
  return quietly([&] { return made(ifRegionalMinima(recordOf(image))); });
}

Roots regionalMaximaRoots(const Image &image) {
  return quietly([&] { return taken(ifRegionalMaximaAsRoots(recordOf(image))); });
}

Roots regionalMinimaRoots(const Image &image) {
  return quietly([&] { return taken(ifRegionalMinimaAsRoots(recordOf(image))); });
}

Image hMaxima(const Image &image, int h) {
  return extended(image, h, false);
}

Image hMinima(const Image &image, int h) {
  return extended(image, h, true);
}

Roots markers(const Image &image, int h, int steps) {
  return quietly([&] {
    if (steps <= 0)
      return rootsOf(components(hMaxima(image, h)).labels);
    return rootsOf(components(hMaxima(alternatingFilter(image, steps), h)).labels);
  });
}

Roots cellRoots(const Image &image, int steps) {
  return quietly([&] {
    imImage record = changeable(image);
    return taken(ifLabelsToRoots(findCellClasses(&record, steps).get()));
  });
}

Roots contourRoots(const Image &shapes, BorderLabels labels) {
  return quietly([&] {
    return filledIn([&](ifRoots *roots) {
      ifDistTransfRoots(recordOf(shapes), roots, labels == BorderLabels::places ? 1 : 0);
    });
  });
}

Roots skeletonRoots(const Image &shapes) {
  return quietly([&] {
    return filledIn([&](ifRoots *roots) {
      ifRoots2 followed = {};
      const imImagePtr shape(ifSkel2Roots(recordOf(shapes), &followed));
      std::free(followed.extra);
      *roots = {followed.pixel, followed.label, followed.value, followed.n};
    });
  });
}

Roots skeletonRootsByCurve(const Image &shapes) {
  return quietly([&] {
    return filledIn([&](ifRoots *roots) { ifSkel2RootsSplit(recordOf(shapes), roots); });
  });
}

} // namespace seedforest
