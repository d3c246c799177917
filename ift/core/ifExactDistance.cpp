// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifExactDistance.h"

#include "base/arith.h"
#include "base/multiversion.h"
#include "ift/core/detail/lowerEnvelope.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/core/ifCost.h"
#include "image/detail/imageTools.h"

#include <algorithm>

using namespace seedforest::detail;

namespace {

// The nearest root in a pixel's column: how many rows away (nrows where there is none), and its
// place in the list (-1).
struct ColumnBands {
  int *distance;
  int *place;
};

// From one row to the next one below, where `place` is that of the row's own roots so far.
SEEDFOREST_MULTIVERSION void sweepDown(const ColumnBands &above, const ColumnBands &row, int ncols,
                                       int nrows) {
  const int *aboveDistance = above.distance;
  const int *abovePlace = above.place;
  int *distance = row.distance;
  int *place = row.place;
  for (int x = 0; x < ncols; ++x) {
    const bool isRoot = place[x] >= 0;
    distance[x] = isRoot ? 0 : std::min(aboveDistance[x], nrows - 1) + 1;
    place[x] = isRoot ? place[x] : abovePlace[x];
  }
}

// From one row to the next one above. A root above the lower row is nearer to the upper one still,
// and known there, so it never wins by way of the lower row.
SEEDFOREST_MULTIVERSION void sweepUp(const ColumnBands &below, const ColumnBands &row, int ncols,
                                     int nrows) {
  const int *belowDistance = below.distance;
  const int *belowPlace = below.place;
  int *distance = row.distance;
  int *place = row.place;
  for (int x = 0; x < ncols; ++x) {
    const int offered = std::min(belowDistance[x], nrows - 1) + 1;
    const bool wins =
        (offered < distance[x]) | ((offered == distance[x]) & (belowPlace[x] < place[x]));
    distance[x] = wins ? offered : distance[x];
    place[x] = wins ? belowPlace[x] : place[x];
  }
}

void findNearestInColumns(const imImage *image, const ColumnBands &bands, const ifRoots *roots) {
  const int ncols = image->ncols;
  const int nrows = image->nrows;
  const auto rowAt = [&](int y) {
    return ColumnBands{bands.distance + image->row[y], bands.place + image->row[y]};
  };
  std::fill_n(bands.place, image->npixels, -1);
  for (int i = 0; i < roots->n; ++i)
    bands.place[roots->pixel[i]] = i;
  std::transform(bands.place, bands.place + ncols, bands.distance,
                 [nrows](int place) { return place >= 0 ? 0 : nrows; });
  Meter meter(2 * std::int64_t{image->npixels});
  for (int y = 1; y < nrows; ++y) {
    sweepDown(rowAt(y - 1), rowAt(y), ncols, nrows);
    meter.advance(ncols);
  }
  for (int y = nrows - 2; y >= 0; --y) {
    sweepUp(rowAt(y + 1), rowAt(y), ncols, nrows);
    meter.advance(ncols);
  }
}

// What a row's pixels get.
struct ResultRow {
  int *label;
  int *distance; // before, that in the column
  int *pixel;    // before, the place of the root in the column
  int first;     // the row's first pixel
};

void findNearest(const ResultRow &row, const ifRoots *roots, int ncols, int nrows,
                 LowerEnvelope &envelope) {
  envelope.clear();
  for (int x = 0; x < ncols; ++x)
    if (const std::int64_t away = row.distance[x]; away < nrows)
      envelope.add({x, row.pixel[x], away * away});
  const auto setNone = [&row](int x) {
    row.label[x] = 0;
    row.distance[x] = ifInfiniteCost;
    row.pixel[x] = row.first + x;
  };
  for (int x = 0; envelope.isEmpty() && x < ncols; ++x)
    setNone(x);
  envelope.each([&](const Parabola &parabola, int begin, int end) {
    const int label = roots->label[parabola.rank];
    const int pixel = roots->pixel[parabola.rank];
    for (int x = begin; x < end; ++x) {
      const std::int64_t distance = parabola.at(x);
      if (distance >= ifInfiniteCost) {
        setNone(x);
        continue;
      }
      row.label[x] = label;
      row.distance[x] = static_cast<int>(distance);
      row.pixel[x] = pixel;
    }
  });
}

} // namespace

void ifExactDistance(const imImage *image, imImage *result, const ifRoots *roots) {
  const char *operation = "ifExactDistance";
  requireBands(operation, image, 0);
  requireBands(operation, result, 3);
  requireSameSize(operation, image, result);
  requireRoots(operation, roots, image);
  LowerEnvelope envelope(image->ncols);
  int **bands = result->band + result->nbands - 3;
  findNearestInColumns(image, {bands[1], bands[2]}, roots);
  Meter meter(image->npixels);
  for (int y = 0; y < image->nrows; ++y) {
    const int first = image->row[y];
    findNearest({bands[0] + first, bands[1] + first, bands[2] + first, first}, roots, image->ncols,
                image->nrows, envelope);
    meter.advance(image->ncols);
  }
}
