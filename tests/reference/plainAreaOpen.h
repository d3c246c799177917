// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The area opening by its definition, threshold by threshold.
#pragma once

#include "ift/label/ifLabel.h"
#include "image/imPixelwise.h"
#include "support.h"

#include <algorithm>
#include <set>

/// What each pixel keeps: the highest threshold at which its component has `area` pixels.
inline imImagePtr byThresholds(const imImagePtr &f, int area) {
  const int *value = f->band[0];
  imImagePtr result = blankLike(f);
  for (const int t : std::set<int>(value, value + f->npixels)) {
    const imImagePtr above(imThreshold(f.get(), imTypeAscii, t, maxInt));
    const imImagePtr labels = blankLike(f);
    ifLabelImage(above.get(), labels.get());
    const int *label = labels->band[0];
    for (int p = 0; p < f->npixels; ++p)
      if (label[p] > 0 && std::count(label, label + f->npixels, label[p]) >= area)
        result->band[0][p] = t;
  }
  return result;
}
