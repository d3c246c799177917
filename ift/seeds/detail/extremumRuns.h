// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Regional extrema as runs of pixels.
#pragma once

#include "base/extremum.h"
#include "ift/label/detail/runs.h"
#include "image/imImage.h"

#include <cstdint>

namespace seedforest::detail {

/// The regional extrema of an image's band 0 with values >= 0 (for minima: below maxInt): plateaus
/// without a better neighbour. There are none at the end of the scale: maxima of 0; minima of 255 in
/// an image of type grey, of maxInt in others.
class ExtremumRuns {
public:
  ExtremumRuns(const imImage *image, Extremum kind);

  /// The number of pixels in extrema.
  std::int64_t pixels() const;

  /// Calls visit(start, end, label) for each run of extremal pixels, from start to before end, in
  /// raster order. Extrema are labelled 1, 2, ... in the order of their first pixels.
  template <class Visit>
  void forEach(Visit visit) const {
    for (int y = 0; y < image_->nrows; ++y) {
      const int n = findInRow(y);
      for (int i = 0; i < n; ++i)
        if (const LabelledRun &run = inRow_[i]; run.label > 0)
          visit(run.start + image_->row[y], run.end + image_->row[y], run.label);
    }
  }

private:
  struct LabelledRun {
    int start, end, label; // columns; label 0 for none
  };

  int findInRow(int y) const;

  const imImage *image_;
  Runs runs_; // of candidates
  Array<LabelledRun> inRow_;
};

} // namespace seedforest::detail
