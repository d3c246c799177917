// Each function of the C++ interface gives what the library's operation gives.

#include "api/interfaceSupport.h"
#include "ift/ift.h"
#include "image/image.h"

#include <array>
#include <cstdlib>
#include <functional>

namespace {

// What the library writes into a new image, of as many bands, or returns.
using Fill = std::function<void(imImage *out)>;
sf::Image filled(const sf::Image &like, int nbands, char type, const Fill &fill) {
  imImagePtr out(imCreateImage(nbands, type, like.ncols(), like.nrows()));
  fill(out.get());
  return sf::Image(std::move(out));
}
sf::Image filled(const sf::Image &like, const Fill &fill) {
  return filled(like, 1, imTypeAscii, fill);
}
sf::Image given(imImage *image) {
  return sf::Image(imImagePtr(image));
}

struct Case {
  const char *name;
  sf::Image got;
  sf::Image expected;
};

void expectSame(const std::vector<Case> &cases) {
  for (const Case &c : cases) {
    EXPECT_TRUE(c.got == c.expected) << c.name;
    EXPECT_EQ(c.got.type(), c.expected.type()) << c.name;
  }
}

template <class... Cases>
std::vector<Case> table(Cases... cases) {
  std::vector<Case> list;
  (list.push_back(std::move(cases)), ...);
  return list;
}

using Operation = void (*)(const imImage *in, imImage *out);
using Parameter = void (*)(const imImage *in, imImage *out, int parameter);

// A 3-band forest record of the library's, as its three images.
std::array<sf::Image, 3> split(const sf::Image &forest) {
  return {forest.copyBand(0), forest.copyBand(1), forest.copyBand(2)};
}

void expectForest(const char *name, const sf::Forest &got, const sf::Image &like,
                  const Fill &fill) {
  const std::array<sf::Image, 3> expected = split(filled(like, 3, imTypeWork, fill));
  EXPECT_TRUE(got.labels == expected[0]) << name;
  EXPECT_TRUE(got.costs == expected[1]) << name;
  EXPECT_TRUE(got.predecessors == expected[2]) << name;
}

class Interface : public InTemporaryFolder {
protected:
  const sf::ThrowingErrors quiet; // the library's own calls print nothing either
  const sf::Image grey = random(1, 23, 17, 0, 40);
  const sf::Image other = random(2, 23, 17, 0, 40);
  const sf::Image color = random(3, 23, 17, 0, 255, 3, imTypeColor);
  const sf::Image shape = random(4, 23, 17, -1, 1);
  const imImage *g = grey.get();
  const imImage *o = other.get();
  const imImage *s = shape.get();
};

} // namespace

TEST_F(Interface, GivesImagesOfTheLibrary) {
  const auto morph = [this](Parameter operation) {
    return filled(color, 3, imTypeColor, [&](imImage *out) { operation(color.get(), out, 5); });
  };
  const auto convert = [this](Operation operation, char type) {
    return filled(color, 3, type, [&](imImage *out) { operation(color.get(), out); });
  };
  imImage changed = *g; // imNegative and ifAreaClose change fields of their input
  const sf::Image labels = sf::components(shape).labels;
  const sf::Image thin = sf::innerBorder(labels);
  expectSame(table(
      Case{"dilate", sf::dilate(color, 5), morph(imMorphDilate)},
      Case{"erode", sf::erode(color, 5), morph(imMorphErode)},
      Case{"open", sf::open(color, 5), morph(imMorphOpen)},
      Case{"close", sf::close(color, 5), morph(imMorphClose)},
      Case{"filter, opening", sf::alternatingFilter(color, 5), morph(imMorphAsfOC)},
      Case{"filter, closing", sf::alternatingFilter(color, 5, sf::First::close),
           morph(imMorphAsfCO)},
      Case{"gradient", sf::gradient(color),
           filled(color, [&](imImage *out) { imMorphGrad(color.get(), out); })},
      Case{"threshold", sf::threshold(grey, 3, 20), given(imThreshold(g, imTypeAscii, 3, 20))},
      Case{"bandPass", sf::bandPass(grey, 3, 20), given(imBandPass(g, imTypeAscii, 3, 20))},
      Case{"negative", sf::negative(grey), given(imNegative(&changed, imTypeAscii))},
      Case{"complement", sf::complement(shape), given(imNegative2(s, imTypeAscii))},
      Case{"difference", sf::shapeDifference(grey, shape),
           given(imBinaryDifference(g, s, imTypeAscii))},
      Case{"union", sf::shapeUnion(grey, shape), given(imBinaryUnion(g, s, imTypeAscii))},
      Case{"masked", sf::masked(color, shape, 7), given(imMask(color.get(), s, 7))},
      Case{"addBorder", sf::addBorder(color, 2), given(imAddBorder(color.get(), 2))},
      Case{"removeBorder", sf::removeBorder(color, 2), given(imRemoveBorder(color.get(), 2))},
      Case{"upper", sf::upperEnvelope(grey, other), given(imUpperEnvelope(g, o))},
      Case{"lower", sf::lowerEnvelope(grey, other), given(imLowerEnvelope(g, o))},
      Case{"add", sf::add(grey, -7), given(imAddToPixelValues(g, -7))},
      Case{"subtract", sf::subtract(grey, other), given(imSubtractImage(g, o))},
      Case{"rgbToXyz", sf::rgbToXyz(color), convert(imRgb2xyz, imTypeXyz)},
      Case{"xyzToRgb", sf::xyzToRgb(color), convert(imXyz2rgb, imTypeColor)},
      Case{"xyzToLab", sf::xyzToLab(color), convert(imXyz2lab, imTypeXyz)},
      Case{"labToXyz", sf::labToXyz(color), convert(imLab2xyz, imTypeXyz)},
      Case{"xyzToLuv", sf::xyzToLuv(color), convert(imXyz2luv, imTypeXyz)},
      Case{"luvToXyz", sf::luvToXyz(color), convert(imLuv2xyz, imTypeXyz)},
      Case{"rgbToYcbcr", sf::rgbToYcbcr(color), convert(imRgb2ycbcr, imTypeXyz)},
      Case{"ycbcrToRgb", sf::ycbcrToRgb(color), convert(imYcbcr2rgb, imTypeColor)},
      Case{"rgbToHsv", sf::rgbToHsv(color), convert(imRgb2hsv, imTypeXyz)},
      Case{"hsvToRgb", sf::hsvToRgb(color), convert(imHsv2rgb, imTypeColor)},
      Case{"rgbToLab", sf::rgbToLab(color), convert(imRgb2lab, imTypeXyz)},
      Case{"labToRgb", sf::labToRgb(color), convert(imLab2rgb, imTypeColor)},
      Case{"rgbToLuv", sf::rgbToLuv(color), convert(imRgb2luv, imTypeXyz)},
      Case{"luvToRgb", sf::luvToRgb(color), convert(imLuv2rgb, imTypeColor)},
      Case{"greyToRgb", sf::greyToRgb(grey),
           filled(grey, 3, imTypeColor, [&](imImage *out) { imPgm2rgb(g, out); })},
      Case{"overlay", sf::overlay(color, labels, {1, 2, 3}),
           given(imShowSegm(color.get(), labels.get(), 1, 2, 3))},
      Case{"highlight", sf::highlight(grey, shape, {1, 2, 3}),
           given(imHighlightElements(g, s, 1, 2, 3))},
      Case{"averageColors", sf::averageColors(color, labels),
           filled(color, 3, imTypeColor,
                  [&](imImage *out) { ifAverageColor(color.get(), out, labels.get()); })},
      Case{"paintCircles", sf::paintCircles(shape), given(imPaintCircles(s))},
      Case{"regionalMaxima", sf::regionalMaxima(grey), given(ifRegionalMaxima(g))},
      Case{"regionalMinima", sf::regionalMinima(grey), given(ifRegionalMinima(g))},
      Case{"components", labels.copy(), filled(shape, [&](imImage *out) { ifLabelImage(s, out); })},
      Case{"innerBorder", thin.copy(),
           filled(shape, [&](imImage *out) { ifRegionsToContours(labels.get(), out); })},
      Case{"contours", sf::contours(thin).labels,
           filled(shape, [&](imImage *out) { labelContours(thin.get(), out); })},
      Case{"contourDifferences", sf::contourDifferences(grey, labels, true),
           filled(grey, [&](imImage *out) { ifLabelDifferences(g, labels.get(), out, 1); })}));
  EXPECT_EQ(sf::components(shape).count, labels.maxValue());
  EXPECT_EQ(sf::contours(thin).count,
            static_cast<int>(std::ranges::count_if(thin.pixels(), [](int v) { return v > 0; })));
}

TEST_F(Interface, GivesRootsOfTheLibrary) {
  struct RootsCase {
    const char *name;
    sf::Roots got;
    ifRootsPtr expected;
  };
  const auto written = [](const std::function<void(ifRoots *)> &write) {
    ifRootsPtr roots(static_cast<ifRoots *>(std::calloc(1, sizeof(ifRoots))));
    write(roots.get());
    return roots;
  };
  imImage changed = *g;
  ifRoots2 followed = {};
  const sf::Image skeleton = given(ifSkel2Roots(s, &followed));
  std::free(followed.extra);
  std::vector<RootsCase> cases;
  const auto add = [&cases](const char *name, sf::Roots got, ifRootsPtr expected) {
    cases.push_back({name, std::move(got), std::move(expected)});
  };
  add("frame", sf::frameRoots(grey), ifRootsPtr(ifFrameAsRoots(g, 0, 0)));
  add("uniform frame", sf::frameRoots(grey, 7), ifRootsPtr(ifFrameAsRoots(g, 1, 7)));
  add("labels", sf::rootsOf(grey), ifRootsPtr(ifLabelsToRoots(g)));
  add("maxima", sf::regionalMaximaRoots(grey), ifRootsPtr(ifRegionalMaximaAsRoots(g)));
  add("minima", sf::regionalMinimaRoots(grey), ifRootsPtr(ifRegionalMinimaAsRoots(g)));
  add("cells", sf::cellRoots(grey, 3), nullptr);
  EXPECT_TRUE(isEmpty());
  cases.back().expected.reset(ifCellsRoots(&changed, 3));
  add("places", sf::contourRoots(shape),
      written([&](ifRoots *roots) { ifDistTransfRoots(s, roots, 1); }));
  add("objects", sf::contourRoots(shape, sf::BorderLabels::objects),
      written([&](ifRoots *roots) { ifDistTransfRoots(s, roots, 0); }));
  add("skeleton", sf::skeletonRoots(shape), written([&](ifRoots *roots) {
        *roots = {followed.pixel, followed.label, followed.value, followed.n};
      }));
  add("skeleton by curve", sf::skeletonRootsByCurve(shape),
      written([&](ifRoots *roots) { ifSkel2RootsSplit(s, roots); }));
  add("path", sf::shortestPath(grey, 0, 390), ifRootsPtr(ifEuclideanShortestPath(g, 0, 390)));
  for (const RootsCase &c : cases) {
    EXPECT_GT(c.got.size(), 0U) << c.name;
    EXPECT_EQ(listOf(c.got.get()), listOf(c.expected.get())) << c.name;
  }
}

TEST_F(Interface, GivesForestsAndFiltersOfTheLibrary) {
  sf::Roots roots = {{5, 1, 3}, {200, 2, 0}, {389, 1, 9}};
  const ifRoots *r = roots.get();
  expectForest("least", sf::forest(color, roots, sf::pathCost::max, sf::arcWeight::euclidean), grey,
               [&](imImage *out) {
                 iftNonNormalized(color.get(), out, imNeighborhood8, ifEuclideanDistance, 255,
                                  ifPathCostMax, r);
               });
  expectForest("greatest, 4 neighbours",
               sf::forest(grey, roots, sf::pathCost::min, sf::arcWeight::watershed,
                          {.adjacency = sf::Adjacency::four(), .best = sf::Best::greatest}),
               grey, [&](imImage *out) {
                 iftNonNormalizedInverted(g, out, imNeighborhood4, ifWatershedMetric, 40,
                                          ifPathCostMin, r);
               });
  expectForest(
      "scaled", sf::scaledForest(grey, roots, sf::pathCost::sum, sf::arcWeight::chamfer), grey,
      [&](imImage *out) { ift(g, out, imNeighborhood8, ifChanferDistance, ifPathCostSum, r); });
  expectForest(
      "scaled within",
      sf::scaledForest(grey, roots, sf::pathCost::max, sf::arcWeight::watershed, {.mask = &shape}),
      grey, [&](imImage *out) {
        iftMask(g, out, s, imNeighborhood8, ifWatershedMetric, ifPathCostMax, r);
      });
  const sf::ArcWeights weights = sf::gaussianWeights(grey, sf::Adjacency::four());
  const sf::Image expectedWeights = given(gaussianWF(g, imNeighborhood4));
  EXPECT_TRUE(weights.image == expectedWeights);
  expectForest("weights", sf::forest(weights, roots, sf::pathCost::max), grey,
               [&](imImage *out) { iftWF(g, out, expectedWeights.get(), ifPathCostMax, r); });
  expectForest(
      "weights within", sf::scaledForest(weights, roots, sf::pathCost::max, shape), grey,
      [&](imImage *out) { iftMaskWF(g, out, s, expectedWeights.get(), ifPathCostMax, r); });
  expectForest("distances", sf::distanceTransform(grey, roots), grey,
               [&](imImage *out) { iftEuclideanDT(g, out, imNeighborhood8, r); });
  const auto [labels, squared, pixels] = sf::exactDistanceTransform(grey, roots);
  expectForest("exact distances", {labels.copy(), squared.copy(), pixels.copy()}, grey,
               [&](imImage *out) { ifExactDistance(g, out, r); });
  const sf::SpanningTree tree = sf::spanningTree(grey, sf::arcWeight::largestDifference);
  const sf::Image prim = filled(
      grey, 2, imTypeWork, [&](imImage *out) { iftPrim(g, out, imNeighborhood8, ifMaxDistance); });
  const auto filter = [](const auto &operation) {
    imImage *result = nullptr;
    imImage *labels = nullptr;
    operation(&result, &labels);
    imReleaseImage(&labels);
    return given(result);
  };
  imImage changed = *g;
  const sf::Roots sides = {{5, 1, 3}, {200, 2, 30}};
  imImage *levelled = nullptr;
  ifLevel2(g, o, &levelled);
  imImage *skeleton = nullptr;
  EXPECT_EQ(sf::skeleton(shape, 2, sf::Side::both).largestScale, ifSkel(s, 0, 2, &skeleton));
  expectSame(table(
      Case{"tree costs", tree.costs.copy(), prim.copyBand(0)},
      Case{"tree", tree.predecessors.copy(), prim.copyBand(1)},
      Case{"cut", tree.cut(0.5),
           filled(grey, [&](imImage *out) { ifMstThreshold(prim.get(), out, 0.5); })},
      Case{"reconstruct", sf::reconstruct(grey, roots).image,
           filter([&](imImage **f, imImage **l) { ifReconstr(g, g, r, 1, f, l); })},
      Case{"locally", sf::reconstructLocally(grey, roots).image,
           filter([&](imImage **f, imImage **l) { ifReconstr(g, g, r, 0, f, l); })},
      Case{"dual", sf::reconstructDual(grey, roots).image,
           filter([&](imImage **f, imImage **l) { ifDualReconstr(g, g, r, 1, f, l); })},
      Case{"dual, locally", sf::reconstructDualLocally(grey, roots).image,
           filter([&](imImage **f, imImage **l) { ifDualReconstr(g, g, r, 0, f, l); })},
      Case{"areaOpen", sf::areaOpen(grey, 9).image,
           filter([&](imImage **f, imImage **l) { ifAreaOpen(g, f, l, 9); })},
      Case{"areaClose", sf::areaClose(grey, 9).image,
           filter([&](imImage **f, imImage **l) { ifAreaClose(&changed, f, l, 9); })},
      Case{"level", sf::level(grey, other, sides).image,
           filter([&](imImage **f, imImage **l) { ifLevel(g, o, sides.get(), f, l); })},
      Case{"level 2", sf::level(grey, other), given(levelled)},
      Case{"skeleton", sf::skeleton(shape, 2, sf::Side::both).squaredDistances, given(skeleton)},
      Case{"shape of a skeleton", sf::shapeOf(grey), given(iftSkelReconstr(g))},
      Case{"flatZones", sf::flatZones(shape, roots),
           filled(shape, [&](imImage *out) { ifConnectedComponents(s, out, r); })}));
}

TEST_F(Interface, GivesFuzzyObjectsOfTheLibrary) {
  const sf::Roots roots = {{5, 1}, {200, 2}};
  const std::vector<sf::FuzzyObject> objects = {{10, 50}, {30, 20}};
  const sf::Connectedness got = sf::fuzzyConnectedness(grey, roots, objects);
  EXPECT_TRUE(isEmpty());
  const std::array mean = {0, 10, 30};
  const std::array sigma = {0, 50, 20};
  const sf::Image labels(23, 17);
  const sf::Image costs = filled(grey, [&](imImage *out) {
    iftFuzzy(g, const_cast<imImage *>(labels.get()), out, imNeighborhood8, roots.get(), mean.data(),
             sigma.data(), 2);
  });
  EXPECT_TRUE(got.labels == labels);
  EXPECT_TRUE(got.costs == costs);
  const std::array links = {given(ifFuzzyEdgesWeight(g, imNeighborhood8, 10, 50)),
                            given(ifFuzzyEdgesWeight(g, imNeighborhood8, 30, 20))};
  EXPECT_TRUE(sf::fuzzyConnectedness(links, roots).labels == labels);
  EXPECT_THROW(sf::fuzzyConnectedness(std::span<const sf::Image>(), roots), sf::Error);
}

TEST_F(Interface, GivesRegionGraphsOfTheLibrary) {
  const sf::Image many = sf::components(sf::threshold(grey, 20, 40)).labels;
  const sf::Image numbered = sf::relabel(many).labels;
  const ifGraphPtr mosaic(ifMosaicToGraph(numbered.get()));
  const ifGraphPtr averages(ifComputeAverageColors(mosaic.get(), color.get()));
  const ifGraphPtr features(ifCreateFeaturesGraph(averages.get()));
  const ifGraphPtr tree(iftPrimGraph(features.get(), ifGraphEuclideanDistance));
  const auto printed = [](ifGraph *graph) {
    std::string text;
    const sf::ThrowingErrors scope([&text](sf::Notice, std::string_view line) { text += line; });
    graphPrint(graph);
    return text;
  };
  sf::RegionGraph regions(numbered, color);
  EXPECT_EQ(printed(regions.get()), printed(features.get()));
  sf::RegionGraph spanning = regions.spanningTree(sf::regionWeight::euclidean);
  EXPECT_EQ(printed(spanning.get()), printed(tree.get()));
  const std::span<const int> own = regions.data(1);
  const auto captured = [&](int u, int v) {
    return ifGraphEuclideanDistance(regions.get(), u, v) + 0 * own[0];
  };
  EXPECT_EQ(printed(regions.spanningTree(captured).get()), printed(tree.get()));
  EXPECT_EQ(printed(regions.copy().get()), printed(features.get()));
  const ifGraphPtr three(ifThresholdMST_nRegions(tree.get(), 3));
  const ifGraphPtr below(ifThresholdMST(tree.get(), 300));
  EXPECT_TRUE(regions.mergeTo(3) == given(imCopyImage(three->labelImage)));
  EXPECT_TRUE(regions.mergeBelow(300) == given(imCopyImage(below->labelImage)));
  EXPECT_TRUE(regions.paint() ==
              given(ifAverageColorsGraphToImage(features.get(), imTypeFeatures)));
  const ifGraphPtr areas(ifComputeArea(mosaic.get()));
  EXPECT_EQ(printed(regions.withAreas().get()),
            printed(ifGraphPtr(ifComputeArea(features.get())).get()));
  const std::vector<sf::Region> measured = sf::measure(numbered, color);
  ASSERT_EQ(static_cast<int>(measured.size()), numbered.maxValue());
  for (const sf::Region &region : measured) {
    EXPECT_EQ(region.area, areas->vertices[region.label].data[0]);
    const int *average = averages->vertices[region.label].data;
    EXPECT_EQ(region.averages, std::vector<int>(average, average + 3));
  }
}
