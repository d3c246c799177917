#include "ift/seeds/ifContourSeeds.h"

#include "ift/label/ifContour.h"
#include "ift/label/ifLabel.h"
#include "ift/seeds/ifFrameSeeds.h"
#include "image/imNeighborhood.h"

#include <cstdlib>

using namespace seedforest::detail;

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
    forEachBorderPixel(labels.get(), imNeighborhood8,
                       [&](int p) { border->band[0][p] = labels->band[0][p]; });
    marked = border.get();
  }
  ifRoots *record = ifLabelsToRoots(marked);
  *roots = *record; // the arrays are the caller's now
  std::free(record);
}
