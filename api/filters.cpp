// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/filters.hpp"

#include "base/arith.h"
#include "base/report.h"
#include "detail/quietly.h"
#include "ift/core/detail/costs.h"
#include "ift/core/detail/reconstructValues.h"
#include "ift/operators/detail/fuzzyObjects.h"
#include "ift/operators/ifConnected.h"
#include "ift/operators/iftFuzzy.h"
#include "seedforest/pixelwise.hpp"

#include "image/detail/imageTools.h"
#include "image/imPixelwise.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace seedforest {

using namespace detail;

namespace {

// The two images that filter(filtered, labels) stores.
template <class Filter>
Filtered filtered(Filter filter) {
  return quietly([&] {
    imImage *image = nullptr;
    imImage *labels = nullptr;
    filter(&image, &labels);
    return Filtered{Image(imImagePtr(image)), Image(imImagePtr(labels))};
  });
}

// The marker's local extrema are enough as roots of a reconstruction: from any other pixel a path
// leads up (down) to one of them, and a path that starts there arrives with at least as good a
// cost.
Roots extremaOf(const Image &marker, imImage *(*find)(const imImage *image)) {
  Roots roots = rootsOf(made(find(marker.get())));
  roots.startAt(marker);
  return roots;
}

Filtered dilated(const Image &image, const Roots &roots, int flag) {
  return filtered([&](imImage **result, imImage **labels) {
    ifReconstr(recordOf(image), nullptr, roots.get(), flag, result, labels);
  });
}

// The bound of costs is the largest value of the image and the roots.
Filtered eroded(const Image &image, const Roots &roots, int flag) {
  return filtered([&](imImage **result, imImage **labels) {
    imImage bound = changeable(image);
    requireBands("reconstructDual", &bound, 1);
    bound.maxValue = costBound(&bound);
    for (const int value : roots.values())
      bound.maxValue = std::max(bound.maxValue, value);
    ifDualReconstr(image.get(), &bound, roots.get(), flag, result, labels);
  });
}

Filtered labelledOne(imImagePtr filtered) {
  imImagePtr labels = createLike(filtered.get(), 1, imTypeAscii);
  std::fill_n(labels->band[0], labels->npixels, 1);
  labels->maxValue = 1;
  return {Image(std::move(filtered)), Image(std::move(labels))};
}

} // namespace

Filtered reconstruct(const Image &image, const Image &marker) {
  return quietly([&] {
    const Image below = lowerEnvelope(marker, image);
    if (imImagePtr values = reconstructValues(byDilation, recordOf(image), recordOf(below)))
      return labelledOne(std::move(values));
    return reconstruct(image, extremaOf(below, imFalseRegionalMaximum));
  });
}

Filtered reconstructDual(const Image &image, const Image &marker) {
  return quietly([&] {
    const Image above = upperEnvelope(marker, image);
    if (imImagePtr values = reconstructValues(byErosion, recordOf(image), recordOf(above)))
      return labelledOne(std::move(values));
    return reconstructDual(image, extremaOf(above, imFalseRegionalMinimum));
  });
}

Filtered reconstruct(const Image &image, const Roots &roots) {
  return dilated(image, roots, 1);
}

Filtered reconstructDual(const Image &image, const Roots &roots) {
  return eroded(image, roots, 1);
}

Filtered reconstructLocally(const Image &image, const Roots &roots) {
  return dilated(image, roots, 0);
}

Filtered reconstructDualLocally(const Image &image, const Roots &roots) {
  return eroded(image, roots, 0);
}

Filtered areaOpen(const Image &image, int area) {
  return filtered([&](imImage **result, imImage **labels) {
    ifAreaOpen(recordOf(image), result, labels, area);
  });
}

Filtered areaClose(const Image &image, int area) {
  return filtered([&](imImage **result, imImage **labels) {
    imImage record = changeable(image);
    ifAreaClose(&record, result, labels, area);
  });
}

Image level(const Image &image, const Image &marker) {
  return quietly([&] {
    imImage *result = nullptr;
    ifLevel2(recordOf(image), recordOf(marker), &result);
    return made(result);
  });
}

Filtered level(const Image &image, const Image &marker, const Roots &roots) {
  return filtered([&](imImage **result, imImage **labels) {
    for (const int label : roots.labels())
      if (label != 1 && label != 2)
        fatal("level: a root of label %d, where 1 grows from below and 2 from above\n", label);
    ifLevel(recordOf(image), recordOf(marker), roots.get(), result, labels);
  });
}

Connectedness fuzzyConnectedness(const Image &image, const Roots &roots,
                                 std::span<const FuzzyObject> objects, const Adjacency &adjacency) {
  return quietly([&] {
    std::vector<int> mean = {0}; // entry o is that of object o, from 1
    std::vector<int> sigma = {0};
    for (const FuzzyObject &object : objects) {
      mean.push_back(object.mean);
      sigma.push_back(object.sigma);
    }
    Connectedness result = {like(image), like(image)};
    const int count = static_cast<int>(objects.size());
    withNeighborhood(adjacency, [&](imNeighborhoodFn neighbors) {
      connectFuzzy("fuzzyConnectedness", image.get(), result.labels.get(), result.costs.get(),
                   neighbors, roots.get(), mean.data(), sigma.data(), count);
    });
    result.labels.setMaxValue(count);
    return result;
  });
}

Connectedness fuzzyConnectedness(std::span<const Image> links, const Roots &roots,
                                 const Adjacency &adjacency) {
  return quietly([&] {
    if (links.empty())
      fatal("fuzzyConnectedness: there are no links\n");
    std::vector<const imImage *> weights = {nullptr}; // entry o is that of object o, from 1
    for (const Image &object : links)
      weights.push_back(recordOf(object));
    Connectedness result = {like(links[0]), like(links[0])};
    const int count = static_cast<int>(links.size());
    withNeighborhood(adjacency, [&](imNeighborhoodFn neighbors) {
      iftFuzzyEdges(weights[1], result.labels.get(), result.costs.get(), neighbors, roots.get(),
                    weights.data(), count);
    });
    result.labels.setMaxValue(count);
    return result;
  });
}

} // namespace seedforest
