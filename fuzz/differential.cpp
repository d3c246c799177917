// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Fast forms against literal ones, on images of every kind of value that both accept.

#include "harness.h"
#include "ift/core/detail/forestTransforms.h"
#include "ift/ift.h"
#include "image/image.h"
#include "reference/literalEuclid.h"
#include "reference/literalMosaic.h"
#include "reference/literalTransform.h"
#include "reference/plainAreaOpen.h"
#include "reference/plainDistance.h"
#include "reference/plainLabel.h"
#include "reference/plainMorph.h"

using namespace seedforest::detail;

namespace {

void checkSameBand(const imImagePtr &a, int i, const imImagePtr &b, int j, const char *what) {
  check(std::equal(a->band[i], a->band[i] + a->npixels, b->band[j]), what);
}

template <int r2>
int disc(int **list) {
  return imNeighborhood(list, r2);
}

int knight(int **list) { // with far steps
  const int n = imNeighborhood4(list);
  for (int i = 0; i < 2 * n; ++i)
    (*list)[i] = (*list)[i] * 2 + (i % 2 == 0 ? 1 : 5);
  return n;
}

constexpr imNeighborhoodFn relations[] = {imNeighborhood8,
                                          imNeighborhood4,
                                          imNeighborhood8forward,
                                          imNeighborhood8Clockwise,
                                          disc<2>,
                                          disc<25>,
                                          disc<100>,
                                          knight};

std::vector<Root> drawRoots(Draw &draw, int npixels, int most, int lo, int hi) {
  std::vector<Root> roots(draw.from(0, most));
  for (auto &[pixel, label, value] : roots) {
    pixel = draw.from(0, npixels - 1);
    label = draw.from(-1, 4);
    value = draw.from(lo, hi);
  }
  return roots;
}

// A forest by the transform of the library, and by the literal loop on the public queue.
template <class Towards>
void compareForest(Draw &draw, const imImage *image, int bound, ifPathCostFn pathCost,
                   const ifRoots *seeds) {
  constexpr bool isMinimising = std::is_same_v<Towards, Minimising>;
  const imNeighborhoodFn adjacency = draw.any(relations);
  const imImagePtr forest = blank(image->ncols, image->nrows, 3, imTypeWork);
  const auto transform = isMinimising ? iftNonNormalized : iftNonNormalizedInverted;
  transform(image, forest.get(), adjacency, ifWatershedMetric, bound, pathCost, seeds);

  const imImagePtr literal = blankLike(forest, 3, imTypeWork);
  int **band = literal->band;
  std::fill_n(band[1], literal->npixels, isMinimising ? ifInfiniteCost : ifInfiniteCostInverted);
  const auto weigh = [image](int, int q) { return image->band[0][q]; };
  using Arcs = AdjacencyArcs<decltype(weigh)>;
  literalTransform(ForestTransform<Towards, Arcs>{{band[0], band[1], band[2], bound},
                                                  Arcs{NeighborWalk(image, adjacency), weigh},
                                                  pathCost},
                   bound + 1, literal->npixels, *seeds);
  for (int b = 0; b < 3; ++b)
    checkSameBand(forest, b, literal, b, "a forest differs from the literal loop's");
}

// Mostly within the bound, where the transform is packed.
void forests(Draw &draw) {
  const int top = draw.any({1, 3, 20, 255, 256, 40000});
  const bool isInRange = !draw.chance(3);
  const int least = isInRange ? 0 : -top;
  const imImagePtr image = draw.image(1, imTypeAscii, draw.from(1, 16), draw.from(1, 16),
                                      [&] { return draw.from(least, top); });
  const ifRootsPtr seeds = makeRoots(
      drawRoots(draw, image->npixels, 8, isInRange ? 0 : -2 * top, isInRange ? top : 3 * top));
  const int bound = isInRange ? top : draw.any({0, 1, top / 3, top});
  const ifPathCostFn pathCosts[] = {ifPathCostMax,      ifPathCostMin,      ifPathCostSum,
                                    ifPathCostMaxLocal, ifPathCostMinLocal, fallingCost};
  const ifPathCostFn pathCost = draw.any(pathCosts);
  if (draw.chance(2))
    compareForest<Minimising>(draw, image.get(), bound, pathCost, seeds.get());
  else
    compareForest<Maximising>(draw, image.get(), bound, pathCost, seeds.get());
}

void euclideanDistances(Draw &draw) {
  const imImagePtr fast = blank(draw.from(1, 24), draw.from(1, 24), 3);
  const ifRootsPtr roots = makeRoots(drawRoots(draw, fast->npixels, 10, 0, 0));
  const imNeighborhoodFn adjacency = draw.any(relations);
  iftEuclideanDT(fast.get(), fast.get(), adjacency, roots.get());
  const imImagePtr literal =
      literalEuclid(fast.get(), adjacency, 2 * (fast->ncols + fast->nrows) + 2, roots->n,
                    roots->pixel, {roots->label});
  for (const auto &[made, expected] : {std::pair{0, 2}, {1, 0}, {2, 1}})
    checkSameBand(fast, made, literal, expected, "a distance differs from the literal form's");
}

void exactDistances(Draw &draw) {
  const imImagePtr fast = blank(draw.from(1, 24), draw.from(1, 24), 4);
  const std::vector<Root> roots = drawRoots(draw, fast->npixels, 30, 0, 0);
  ifExactDistance(fast.get(), fast.get(), makeRoots(roots).get());
  const imImagePtr expected = nearestOfAll(fast->ncols, fast->nrows, roots);
  for (int b = 1; b < 4; ++b)
    checkSameBand(fast, b, expected, b, "an exact distance is not that to the nearest root");
}

void morphology(Draw &draw) {
  const imImagePtr image = draw.image(draw.from(1, 2), imTypeGrey, draw.from(1, 40),
                                      draw.from(1, 12), [&] { return draw.hostileInt(); });
  const imImagePtr fast = blankLike(image, image->nbands, imTypeGrey);
  const imImagePtr plain = blankLike(image, image->nbands, imTypeGrey);
  const int s = draw.from(-1, draw.chance(8) ? 400 : 30);
  const bool dilates = draw.chance(2);
  (dilates ? imMorphDilate : imMorphErode)(image.get(), fast.get(), s);
  (dilates ? plainDilate : plainErode)(image.get(), plain.get(), s);
  checkSameImage(fast.get(), plain.get(), "a dilation or erosion differs from the plain form's");
}

void labelling(Draw &draw) {
  const imImagePtr binary = draw.image(1, imTypeGrey, draw.from(1, 140), draw.from(1, 8),
                                       [&] { return draw.hostileInt(); });
  const bool isFresh = draw.chance(2);
  const imImagePtr labels = draw.image(1, imTypeAscii, binary->ncols, binary->nrows,
                                       [&] { return isFresh ? 0 : draw.from(-1, 1); });
  const imImagePtr expected = flooded(binary, labels);
  ifLabelImage(binary.get(), labels.get());
  checkSameImage(labels.get(), expected.get(), "labels differ from the flood's");
}

void areaOpening(Draw &draw) {
  const char type = draw.any({imTypeGrey, imTypeAscii});
  const int top = type == imTypeGrey ? 255 : draw.any({3, 3000, maxInt - 1});
  const imImagePtr image =
      draw.image(1, type, draw.from(1, 10), draw.from(1, 10), [&] { return draw.from(0, top); });
  const int area = draw.from(1, image->npixels);
  imImage *made[2] = {};
  ifAreaOpen(image.get(), &made[0], &made[1], area);
  const imImagePtr opened(made[0]), labels(made[1]);
  checkSameBand(opened, 0, byThresholds(image, area), 0,
                "an area opening differs from that of every threshold");
}

void mosaics(Draw &draw) {
  const int top = draw.any({1, 3, 60});
  const imImagePtr labels = draw.image(1, imTypeAscii, draw.from(1, 40), draw.from(1, 12),
                                       [&] { return draw.from(0, top); });
  const ifGraphPtr graph(ifMosaicToGraph(labels.get()));
  check(listsOf(graph.get()) == literalMosaic(labels.get()),
        "a region graph differs from that of all pairs");
}

using Conversion = void (*)(const imImage *, imImage *);
constexpr Conversion conversions[] = {imRgb2xyz, imXyz2rgb,   imXyz2lab,   imLab2xyz, imXyz2luv,
                                      imLuv2xyz, imRgb2ycbcr, imYcbcr2rgb, imRgb2hsv, imHsv2rgb,
                                      imRgb2lab, imLab2rgb,   imRgb2luv,   imLuv2rgb};

// Whole images are converted in blocks; here, a pixel at a time.
void colours(Draw &draw) {
  bool isWarned = false;
  const seedforest::ThrowingErrors watched([&](seedforest::Notice kind, std::string_view) {
    isWarned = isWarned || kind == seedforest::Notice::warning;
  });
  const bool isHostile = draw.chance(2);
  const int top = draw.any({100, 255, 361, 16384});
  const imImagePtr image =
      draw.image(3, imTypeColor, draw.from(1, draw.chance(8) ? 300 : 24), 1,
                 [&] { return isHostile ? draw.hostileInt() : draw.from(0, top); });
  const imImagePtr whole = blankLike(image, 3);
  const Conversion convert = draw.any(conversions);
  convert(image.get(), whole.get());
  const bool isStopped = isWarned;
  isWarned = false;
  const imImagePtr pixel = blank(1, 1, 3), converted = blank(1, 1, 3);
  for (int p = 0; p < image->npixels; ++p) {
    for (int b = 0; b < 3; ++b) {
      pixel->band[b][0] = image->band[b][p];
      converted->band[b][0] = 0;
    }
    if (!isWarned) // else the conversion has stopped here
      convert(pixel.get(), converted.get());
    for (int b = 0; b < 3; ++b)
      check(whole->band[b][p] == converted->band[b][0], "a colour differs from that of its pixel");
  }
  check(isStopped == isWarned, "a conversion has stopped elsewhere");
}

constexpr void (*comparisons[])(Draw &) = {
    forests,   euclideanDistances, exactDistances, morphology,
    labelling, areaOpening,        mosaics,        colours};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const seedforest::ThrowingErrors throwing;
  Draw draw(bytes, size);
  draw.any(comparisons)(draw);
  return 0;
}
