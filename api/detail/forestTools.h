// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Shared by the transforms and by verify().
#pragma once

#include "base/buffer.h"
#include "base/report.h"
#include "detail/quietly.h"
#include "seedforest/forest.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace seedforest::detail {

/// Images of one band as the bands of one record, for operations that read or write a forest image.
template <std::size_t n>
class Bands {
public:
  explicit Bands(const std::array<const Image *, n> &images) : record_(*recordOf(*images[0])) {
    for (std::size_t b = 0; b < n; ++b) {
      requireBands("a forest", recordOf(*images[b]), 1);
      requireSameSize("a forest", images[0]->get(), images[b]->get());
      band_[b] = images[b]->get()->band[0];
    }
    record_.band = band_;
    record_.nbands = n;
    record_.type = imTypeWork;
  }
  Bands(const Bands &) = delete;
  Bands &operator=(const Bands &) = delete;

  imImage *get() { return &record_; }

private:
  imImage record_;
  int *band_[n];
};

inline constexpr int infiniteCost(Best best) {
  return best == Best::least ? ifInfiniteCost : ifInfiniteCostInverted;
}

/// The roots with the image's values at their pixels, at which a watershed starts.
class FloodRoots {
public:
  FloodRoots(const Image &image, const Roots &roots)
      : values_(makeArray<int>(roots.size())), record_(*roots.get()) {
    takeValues(image, roots, values_.get());
    record_.value = values_.get();
  }

  const ifRoots &get() const { return record_; }

private:
  Array<int> values_;
  ifRoots record_;
};

/// Calls use(roots, cost, weight) with the roots inside options.mask, and with functions by which
/// an arc to a pixel outside the mask has infinite weight, and a path along it infinite cost.
/// Without a mask, passes the arguments as they are.
template <class Use>
auto withinMask(const Image &image, const ifRoots &roots, ifPathCostFn cost, ifArcWeightFn weight,
                const ForestOptions &options, Use use) {
  if (options.mask == nullptr)
    return use(roots, cost, weight);
  const imImage *mask = recordOf(*options.mask);
  requireBands("a mask", mask, 1);
  requireSameSize("a mask", recordOf(image), mask);
  const int *inside = mask->band[0];
  const int closed = infiniteCost(options.best);
  Roots kept;
  for (int i = 0; i < roots.n; ++i) {
    requirePixel("a root", mask, roots.pixel[i]);
    if (inside[roots.pixel[i]] > 0)
      kept.push_back({roots.pixel[i], roots.label[i], roots.value[i]});
  }
  const auto costInside = [cost, closed](int c, int w) { return w == closed ? w : cost(c, w); };
  const auto weightInside = [weight, inside, closed](const imImage *record, int p, int q) {
    return inside[q] != 0 ? weight(record, p, q) : closed;
  };
  return withFunctions(costInside, weightInside,
                       [&](ifPathCostFn c, ifArcWeightFn w) { return use(*kept.get(), c, w); });
}

} // namespace seedforest::detail
