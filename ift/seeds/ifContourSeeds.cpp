#include "ift/seeds/ifContourSeeds.h"

#include "ift/label/ifContour.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/imNeighborhood.h"

#include <cstdlib>

using namespace seedforest::detail;

namespace {

void markObjectBorders(const imImage *labels, imImage *border) {
  const NeighborWalk neighbors(labels, imNeighborhood8);
  const int *label = labels->band[0];
  int p = 0;
  for (int y = 0; y < labels->nrows; ++y)
    for (int x = 0; x < labels->ncols; ++x, ++p)
      if (label[p] > 0 && neighbors.any(x, y, [label](int q, int) { return label[q] == 0; }))
        border->band[0][p] = label[p];
}

} // namespace

void ifDistTransfRoots(const imImage *binary, ifRoots *roots, int contour) {
  requireBands("ifDistTransfRoots", binary, 1);
  const imImagePtr labels = createImage(1, imTypeAscii, binary->ncols, binary->nrows);
  const imImagePtr border = createImage(1, imTypeGrey, binary->ncols, binary->nrows);
  const imImage *marked = nullptr;
  if (contour != 0) {
    ifRegionsToContours(binary, border.get());
    labelContours(border.get(), labels.get());
    marked = labels.get();
  } else {
    ifLabelImage(binary, labels.get());
    markObjectBorders(labels.get(), border.get());
    marked = border.get();
  }
  ifRoots *record = ifLabelsToRoots(marked);
  *roots = *record; // the arrays are the caller's now
  std::free(record);
}
