// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Rows of forest transforms and connected filters.

#include "bench/rows.h"

#include "ift/core/ifCost.h"
#include "ift/core/iftForest.h"
#include "ift/operators/ifConnected.h"
#include "image/imNeighborhood.h"
#include "seedforest/seedforest.hpp"

namespace bench {

namespace {

// A function that the transform does not recognise.
int destinationValue(const imImage *image, int, int q) {
  return image->band[0][q];
}

// From single seeds, by the largest value on the way: labels, costs and predecessors.
template <ifArcWeightFn weight>
Job watershed(Scene scene) {
  struct Work {
    imImagePtr image;
    ifRootsPtr seeds = gridSeeds(image.get());
    imImagePtr forest{imCreateImage(3, imTypeWork, image->ncols, image->nrows)};
  };
  const auto work = std::make_shared<Work>(Work{drawGrey(scene)});
  return {[work] {
            iftNonNormalized(work->image.get(), work->forest.get(), imNeighborhood8, weight, 255,
                             ifPathCostMax, work->seeds.get());
          },
          [work] { return sumOf(work->forest.get(), 1); }};
}

struct Filter {
  imImagePtr image;
  imImagePtr filtered;
  imImagePtr labels;

  template <class Work>
  void run(Work work) {
    filtered.reset(); // their memory serves again
    labels.reset();
    imImage *results[2] = {};
    work(image.get(), &results[0], &results[1]);
    filtered.reset(results[0]);
    labels.reset(results[1]);
  }
};

Job reconstructionFromEveryPixel(Scene scene) {
  struct Work {
    Filter filter;
    ifRootsPtr roots = everyPixelAsRoot(filter.image.get());
  };
  const auto work = std::make_shared<Work>(Work{{drawGrey(scene), nullptr, nullptr}});
  return {[work] {
            work->filter.run([&](const imImage *image, imImage **filtered, imImage **labels) {
              ifReconstr(image, nullptr, work->roots.get(), 1, filtered, labels);
            });
          },
          [work] { return sumOf(work->filter.filtered.get()); }};
}

Job reconstructionOfMarker(Scene scene) {
  struct Work {
    seedforest::Image image, marker, result;
  };
  const auto work = std::make_shared<Work>();
  work->image = seedforest::Image(drawGrey(scene));
  work->marker = work->image.copy();
  for (int &value : work->marker.pixels())
    value = std::max(0, value - 1);
  return {[work] {
            work->result = {};
            work->result = seedforest::reconstruct(work->image, work->marker).image;
          },
          [work] { return sumOf(work->result.get()); }};
}

template <int area>
Job areaOpening(Scene scene) {
  const auto work = std::make_shared<Filter>(Filter{drawGrey(scene), nullptr, nullptr});
  return {[work] {
            work->run([](const imImage *image, imImage **filtered, imImage **labels) {
              ifAreaOpen(image, filtered, labels, area);
            });
          },
          [work] { return sumOf(work->filtered.get()); }};
}

} // namespace

std::vector<Row> forestRows() {
  const std::vector<Drawing> both = {Drawing::micrograph, Drawing::noise};
  return {
      {"watershed", Subject::grey, both, true, watershed<ifWatershedMetric>},
      {"watershed by a caller's weights", Subject::grey, both, false, watershed<destinationValue>},
      {"reconstruction from every pixel", Subject::grey, both, true, reconstructionFromEveryPixel},
      {"reconstruction of a marker", Subject::grey, both, false, reconstructionOfMarker},
      {"area opening 50", Subject::grey, both, true, areaOpening<50>},
      {"area opening 1000", Subject::grey, both, false, areaOpening<1000>},
  };
}

} // namespace bench
