#include "ift/operators/ifSkeleton.h"

#include "base/report.h"
#include "base/require.h"
#include "ift/core/detail/euclideanPropagation.h"
#include "ift/core/ifCost.h"
#include "ift/core/iftEuclidean.h"
#include "ift/label/ifContour.h"
#include "ift/seeds/detail/ownedRoots.h"
#include "ift/seeds/ifContourSeeds.h"
#include "image/detail/imageTools.h"
#include "image/detail/neighborWalk.h"
#include "image/imPixelwise.h"

#include <algorithm>

using namespace seedforest::detail;

namespace {

int nearDisc(int **list) {
  return imNeighborhood(list, 2);
}

// How far apart, along the contour, the border pixels nearest to neighbouring pixels lie; and each
// pixel's squared distance to the border.
struct Distances {
  bool haveRoots;
  imImagePtr alongContour;
  imImagePtr squared;
};

// The work image of iftSkelNova() for a shape's border.
imImagePtr spreadBorder(const imImage *image) {
  OwnedRoots2 roots;
  const imImagePtr shape(ifSkel2Roots(image, &roots));
  imImagePtr work = createLike(image, 5, imTypeWork);
  iftSkelNova(image, work.get(), &roots);
  return work;
}

Distances distances(const imImage *image) {
  const imImagePtr work = spreadBorder(image);
  const imImagePtr label = requireMade(imCopyBand(work.get(), imTypeAscii, 1));
  const imImagePtr contour = requireMade(imCopyBand(work.get(), imTypeAscii, 4));
  Distances distances = {contour->maxValue > 0, createLike(image, 1, imTypeAscii),
                         requireMade(imCopyBand(work.get(), imTypeAscii, 2))};
  ifLabelDifferences(label.get(), contour.get(), distances.alongContour.get(), 0);
  return distances;
}

imImagePtr masked(const imImagePtr &image, const imImage *mask) {
  return requireMade(imMask(image.get(), mask, 0));
}

} // namespace

void iftSkelNova(const imImage *image, imImage *work, const ifRoots2 *roots) {
  const char *operation = "iftSkelNova";
  requireBands(operation, image, 0);
  requireBands(operation, work, 4);
  requireSameSize(operation, image, work);
  requireGiven(operation, "roots record", roots);
  int **bands = work->band + work->nbands - 4;
  propagateEuclidean({operation,
                      image,
                      NeighborWalk(image, nearDisc),
                      2 * (std::int64_t{image->ncols} + image->nrows),
                      roots->pixel,
                      roots->n,
                      bands[1],
                      bands[2],
                      {{bands[0], roots->label}, {bands[3], roots->value}}});
}

int ifSkel(const imImage *image, int skelType, int threshold, imImage **result) {
  requireGiven("ifSkel", "place for the skeleton", result);
  *result = nullptr;
  requireBands("ifSkel", image, 1);
  if (image->nbands != 1)
    fatal("ifSkel: an image of %d bands is no shape\n", image->nbands);
  Distances found = distances(image);
  const int largest = found.alongContour->maxValue;
  // Without roots there are no differences, and no pixel reaches `largest`: nothing is selected.
  const int least = found.haveRoots ? std::min(threshold, largest) : largest;
  const imImagePtr selected =
      requireMade(imThreshold(found.alongContour.get(), imTypeAscii, least, ifInfiniteCost));
  found.alongContour.reset();
  imImagePtr side = std::move(found.squared);
  if (skelType == 1)
    side = masked(side, image);
  else if (skelType == 2)
    side = masked(side, requireMade(imNegative2(image, imTypeGrey)).get());
  else if (skelType != 0)
    warn("invalid skelType: %d\n", skelType);
  if (skelType >= 0 && skelType <= 2)
    *result = masked(side, selected.get()).release();
  return largest;
}
