// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

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
imImage *filled(const sf::Image &like, int nbands, char type, const Fill &fill) {
  imImage *out = imCreateImage(nbands, type, like.ncols(), like.nrows());
  fill(out);
  return out;
}
imImage *filled(const sf::Image &like, const Fill &fill) {
  return filled(like, 1, imTypeAscii, fill);
}
sf::Image given(imImage *image) {
  return sf::Image(imImagePtr(image));
}

void expectSame(const char *name, const sf::Image &got, imImage *result) {
  const sf::Image expected = given(result);
  EXPECT_TRUE(got == expected) << name;
  EXPECT_EQ(got.type(), expected.type()) << name;
}

using Operation = void (*)(const imImage *in, imImage *out);
using Parameter = void (*)(const imImage *in, imImage *out, int parameter);

void expectForest(const char *name, const sf::Forest &got, const sf::Image &like,
                  const Fill &fill) {
  const sf::Image expected = given(filled(like, 3, imTypeWork, fill));
  EXPECT_TRUE(got.labels == expected.copyBand(0)) << name;
  EXPECT_TRUE(got.costs == expected.copyBand(1)) << name;
  EXPECT_TRUE(got.predecessors == expected.copyBand(2)) << name;
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
  expectSame("dilate", sf::dilate(color, 5), morph(imMorphDilate));
  expectSame("erode", sf::erode(color, 5), morph(imMorphErode));
  expectSame("open", sf::open(color, 5), morph(imMorphOpen));
  expectSame("close", sf::close(color, 5), morph(imMorphClose));
  expectSame("filter, opening", sf::alternatingFilter(color, 5), morph(imMorphAsfOC));
  expectSame("filter, closing", sf::alternatingFilter(color, 5, sf::First::close),
             morph(imMorphAsfCO));
  expectSame("gradient", sf::gradient(color),
             filled(color, [&](imImage *out) { imMorphGrad(color.get(), out); }));
  expectSame("threshold", sf::threshold(grey, 3, 20), imThreshold(g, imTypeAscii, 3, 20));
  expectSame("bandPass", sf::bandPass(grey, 3, 20), imBandPass(g, imTypeAscii, 3, 20));
  expectSame("negative", sf::negative(grey), imNegative(&changed, imTypeAscii));
  expectSame("complement", sf::complement(shape), imNegative2(s, imTypeAscii));
  expectSame("difference", sf::shapeDifference(grey, shape), imBinaryDifference(g, s, imTypeAscii));
  expectSame("union", sf::shapeUnion(grey, shape), imBinaryUnion(g, s, imTypeAscii));
  expectSame("masked", sf::masked(color, shape, 7), imMask(color.get(), s, 7));
  expectSame("addBorder", sf::addBorder(color, 2), imAddBorder(color.get(), 2));
  expectSame("removeBorder", sf::removeBorder(color, 2), imRemoveBorder(color.get(), 2));
  expectSame("upper", sf::upperEnvelope(grey, other), imUpperEnvelope(g, o));
  expectSame("lower", sf::lowerEnvelope(grey, other), imLowerEnvelope(g, o));
  expectSame("add", sf::add(grey, -7), imAddToPixelValues(g, -7));
  expectSame("subtract", sf::subtract(grey, other), imSubtractImage(g, o));
  expectSame("rgbToXyz", sf::rgbToXyz(color), convert(imRgb2xyz, imTypeXyz));
  expectSame("xyzToRgb", sf::xyzToRgb(color), convert(imXyz2rgb, imTypeColor));
  expectSame("xyzToLab", sf::xyzToLab(color), convert(imXyz2lab, imTypeXyz));
  expectSame("labToXyz", sf::labToXyz(color), convert(imLab2xyz, imTypeXyz));
  expectSame("xyzToLuv", sf::xyzToLuv(color), convert(imXyz2luv, imTypeXyz));
  expectSame("luvToXyz", sf::luvToXyz(color), convert(imLuv2xyz, imTypeXyz));
  expectSame("rgbToYcbcr", sf::rgbToYcbcr(color), convert(imRgb2ycbcr, imTypeXyz));
  expectSame("ycbcrToRgb", sf::ycbcrToRgb(color), convert(imYcbcr2rgb, imTypeColor));
  expectSame("rgbToHsv", sf::rgbToHsv(color), convert(imRgb2hsv, imTypeXyz));
  expectSame("hsvToRgb", sf::hsvToRgb(color), convert(imHsv2rgb, imTypeColor));
  expectSame("rgbToLab", sf::rgbToLab(color), convert(imRgb2lab, imTypeXyz));
  expectSame("labToRgb", sf::labToRgb(color), convert(imLab2rgb, imTypeColor));
  expectSame("rgbToLuv", sf::rgbToLuv(color), convert(imRgb2luv, imTypeXyz));
  expectSame("luvToRgb", sf::luvToRgb(color), convert(imLuv2rgb, imTypeColor));
  expectSame("greyToRgb", sf::greyToRgb(grey),
             filled(grey, 3, imTypeColor, [&](imImage *out) { imPgm2rgb(g, out); }));
  expectSame("overlay", sf::overlay(color, labels, {1, 2, 3}),
             imShowSegm(color.get(), labels.get(), 1, 2, 3));
  expectSame("highlight", sf::highlight(grey, shape, {1, 2, 3}),
             imHighlightElements(g, s, 1, 2, 3));
  expectSame("averageColors", sf::averageColors(color, labels),
             filled(color, 3, imTypeColor,
                    [&](imImage *out) { ifAverageColor(color.get(), out, labels.get()); }));
  expectSame("paintCircles", sf::paintCircles(shape), imPaintCircles(s));
  expectSame("regionalMaxima", sf::regionalMaxima(grey), ifRegionalMaxima(g));
  expectSame("regionalMinima", sf::regionalMinima(grey), ifRegionalMinima(g));
  expectSame("components", labels, filled(shape, [&](imImage *out) { ifLabelImage(s, out); }));
  expectSame("innerBorder", thin,
             filled(shape, [&](imImage *out) { ifRegionsToContours(labels.get(), out); }));
  expectSame("contours", sf::contours(thin).labels,
             filled(shape, [&](imImage *out) { labelContours(thin.get(), out); }));
  expectSame("contourDifferences", sf::contourDifferences(grey, labels, true),
             filled(grey, [&](imImage *out) { ifLabelDifferences(g, labels.get(), out, 1); }));
  EXPECT_EQ(sf::components(shape).count, labels.maxValue());
  EXPECT_EQ(sf::contours(thin).count,
            static_cast<int>(std::ranges::count_if(thin.pixels(), [](int v) { return v > 0; })));
}

TEST_F(Interface, GivesRootsOfTheLibrary) {
  const auto expect = [](const char *name, const sf::Roots &got, ifRoots *result) {
    const ifRootsPtr expected(result);
    EXPECT_GT(got.size(), 0U) << name;
    EXPECT_EQ(listOf(got.get()), listOf(result)) << name;
  };
  const auto written = [](const std::function<void(ifRoots *)> &write) {
    auto *roots = static_cast<ifRoots *>(std::calloc(1, sizeof(ifRoots)));
    write(roots);
    return roots;
  };
  imImage changed = *g;
  ifRoots2 followed = {};
  const sf::Image skeleton = given(ifSkel2Roots(s, &followed));
  std::free(followed.extra);
  expect("frame", sf::frameRoots(grey), ifFrameAsRoots(g, 0, 0));
  expect("uniform frame", sf::frameRoots(grey, 7), ifFrameAsRoots(g, 1, 7));
  expect("labels", sf::rootsOf(grey), ifLabelsToRoots(g));
  expect("maxima", sf::regionalMaximaRoots(grey), ifRegionalMaximaAsRoots(g));
  expect("minima", sf::regionalMinimaRoots(grey), ifRegionalMinimaAsRoots(g));
  const sf::Roots cells = sf::cellRoots(grey, 3);
  EXPECT_TRUE(isEmpty());
  expect("cells", cells, ifCellsRoots(&changed, 3));
  expect("places", sf::contourRoots(shape),
         written([&](ifRoots *roots) { ifDistTransfRoots(s, roots, 1); }));
  expect("objects", sf::contourRoots(shape, sf::BorderLabels::objects),
         written([&](ifRoots *roots) { ifDistTransfRoots(s, roots, 0); }));
  expect("skeleton", sf::skeletonRoots(shape), written([&](ifRoots *roots) {
           *roots = {followed.pixel, followed.label, followed.value, followed.n};
         }));
  expect("skeleton by curve", sf::skeletonRootsByCurve(shape),
         written([&](ifRoots *roots) { ifSkel2RootsSplit(s, roots); }));
  expect("path", sf::shortestPath(grey, 0, 390), ifEuclideanShortestPath(g, 0, 390));
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
  const auto grow = [&](imImage *out) { iftPrim(g, out, imNeighborhood8, ifMaxDistance); };
  const sf::Image prim = given(filled(grey, 2, imTypeWork, grow));
  const auto filter = [](const auto &operation) {
    imImage *result = nullptr, *labels = nullptr;
    operation(&result, &labels);
    imReleaseImage(&labels);
    return result;
  };
  imImage changed = *g;
  const sf::Roots sides = {{5, 1, 3}, {200, 2, 30}};
  imImage *levelled = nullptr;
  ifLevel2(g, o, &levelled);
  imImage *skeleton = nullptr;
  EXPECT_EQ(sf::skeleton(shape, 2, sf::Side::both).largestScale, ifSkel(s, 0, 2, &skeleton));
  expectSame("tree costs", tree.costs, imCopyBand(prim.get(), imTypeAscii, 0));
  expectSame("tree", tree.predecessors, imCopyBand(prim.get(), imTypeAscii, 1));
  expectSame("cut", tree.cut(0.5),
             filled(grey, [&](imImage *out) { ifMstThreshold(prim.get(), out, 0.5); }));
  expectSame("reconstruct", sf::reconstruct(grey, roots).image,
             filter([&](imImage **f, imImage **l) { ifReconstr(g, g, r, 1, f, l); }));
  expectSame("locally", sf::reconstructLocally(grey, roots).image,
             filter([&](imImage **f, imImage **l) { ifReconstr(g, g, r, 0, f, l); }));
  expectSame("dual", sf::reconstructDual(grey, roots).image,
             filter([&](imImage **f, imImage **l) { ifDualReconstr(g, g, r, 1, f, l); }));
  expectSame("dual, locally", sf::reconstructDualLocally(grey, roots).image,
             filter([&](imImage **f, imImage **l) { ifDualReconstr(g, g, r, 0, f, l); }));
  expectSame("areaOpen", sf::areaOpen(grey, 9).image,
             filter([&](imImage **f, imImage **l) { ifAreaOpen(g, f, l, 9); }));
  expectSame("areaClose", sf::areaClose(grey, 9).image,
             filter([&](imImage **f, imImage **l) { ifAreaClose(&changed, f, l, 9); }));
  expectSame("level", sf::level(grey, other, sides).image,
             filter([&](imImage **f, imImage **l) { ifLevel(g, o, sides.get(), f, l); }));
  expectSame("level 2", sf::level(grey, other), levelled);
  const sf::Image features = sf::featuresOf(grey);
  expectSame("features", features, ifCreateFeaturesVector(g));
  expectSame("one more", sf::withFeature(features, other),
             ifAddFeatureToVector(features.get(), o, 0));
  expectSame("shape of a skeleton", sf::shapeOf(grey), iftSkelReconstr(g));
  expectSame("skeleton", sf::skeleton(shape, 2, sf::Side::both).squaredDistances, skeleton);
  expectSame("flatZones", sf::flatZones(shape, roots),
             filled(shape, [&](imImage *out) { ifConnectedComponents(s, out, r); }));
}

TEST_F(Interface, GivesFuzzyObjectsOfTheLibrary) {
  const sf::Roots roots = {{5, 1}, {200, 2}};
  const std::vector<sf::FuzzyObject> objects = {{10, 50}, {30, 20}};
  const sf::Connectedness got = sf::fuzzyConnectedness(grey, roots, objects);
  EXPECT_TRUE(isEmpty());
  const std::array mean = {0, 10, 30};
  const std::array sigma = {0, 50, 20};
  const sf::Image labels(23, 17);
  const sf::Image costs = given(filled(grey, [&](imImage *out) {
    iftFuzzy(g, const_cast<imImage *>(labels.get()), out, imNeighborhood8, roots.get(), mean.data(),
             sigma.data(), 2);
  }));
  EXPECT_TRUE(got.labels == labels);
  EXPECT_TRUE(got.costs == costs);
  const std::array links = {given(ifFuzzyEdgesWeight(g, imNeighborhood8, 10, 50)),
                            given(ifFuzzyEdgesWeight(g, imNeighborhood8, 30, 20))};
  const sf::Connectedness same = sf::fuzzyConnectedness(links, roots); // the links of the objects
  EXPECT_TRUE(same.labels == labels && same.costs == costs);
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
  const auto expectLabels = [](const sf::Image &got, ifGraph *made) {
    EXPECT_TRUE(got == given(imCopyImage(ifGraphPtr(made)->labelImage)));
  };
  const auto &weigh = ifGraphEuclideanDistance;
  expectLabels(regions.removeSmall(4), ifEliminateSmallRegions(features.get(), 4, weigh));
  expectLabels(regions.mergeSimilar(300, captured),
               eliminateSimilarRegions(features.get(), 300, weigh));
  expectLabels(regions.mergeSimilarColors(color, 60),
               ifMergeSimilarColors(mosaic.get(), color.get(), 60, weigh));
  const sf::Roots marked = {{1, 1, 0}, {3, 2, 0}};
  const ifGraphPtr grown(iftGraph(features.get(), weigh, ifPathCostMax, 1000, marked.get()));
  EXPECT_EQ(printed(regions.forest(marked, sf::pathCost::max, captured).get()),
            printed(grown.get()));
  EXPECT_TRUE(regions.paint() ==
              given(ifAverageColorsGraphToImage(features.get(), imTypeFeatures)));
  const ifGraphPtr areas(ifComputeArea(mosaic.get()));
  const auto expectGraph = [&](const sf::RegionGraph &got, ifGraph *made) {
    EXPECT_EQ(printed(got.copy().get()), printed(ifGraphPtr(made).get()));
  };
  expectGraph(regions.withAreas(), ifComputeArea(features.get()));
  expectGraph(regions.withVolumes(grey), ifComputeVolume(features.get(), g));
  expectGraph(regions.withGradients(), ifMorphoGradGraph(features.get()));
  expectGraph(regions.collapsed(), ifColapseGraph(features.get()));
  EXPECT_TRUE(regions.labels() == numbered);
  const std::vector<sf::Region> measured = sf::measure(numbered, color);
  ASSERT_EQ(static_cast<int>(measured.size()), numbered.maxValue());
  for (const sf::Region &region : measured) {
    EXPECT_EQ(region.area, areas->vertices[region.label].data[0]);
    const int *average = averages->vertices[region.label].data;
    EXPECT_EQ(region.averages, std::vector<int>(average, average + 3));
  }
}

TEST_F(Interface, GivesSmallThings) {
  const sf::Roots roots = {{5, 1, 3}, {200, 2}};
  sf::writeRoots(roots, grey, "roots");
  EXPECT_TRUE(sf::readRoots("roots", grey) == sf::decodeRoots(contentsOf("roots"), grey));
  expectSame("painted", sf::paintRoots(grey, roots), ifVisualizeRoots(g, roots.get()));
  expectSame("euclidean", sf::euclideanWeights(grey).image, euclideanWF(g, imNeighborhood8));
  expectSame("step", sf::stepWeights(grey).image, gaussian2WF(g, imNeighborhood8));
  expectSame("watershed", sf::watershedWeights(grey).image, watershedWF(g, imNeighborhood8));
  const sf::Forest forest = sf::watershed(grey, roots);
  EXPECT_EQ(forest.root(390), forest.path(390).back());
  sf::Image below = grey.copy();
  sf::Image above = sf::add(grey, 5);
  below.setMaxValue(45); // what negatives are taken from
  above.setMaxValue(45);
  const sf::Image dual = sf::reconstructDual(below, above).image;
  const sf::Image filled = sf::reconstruct(sf::negative(below), sf::negative(above)).image;
  for (std::size_t p = 0; p < dual.pixels().size(); ++p)
    EXPECT_EQ(dual.pixels()[p], 45 - filled.pixels()[p]);
  float *counts = nullptr;
  int size = 0;
  imHistogram(g, s, &counts, &size);
  EXPECT_EQ(sf::histogram(grey, shape), std::vector<float>(counts, counts + size));
  std::free(counts);
  EXPECT_EQ(sf::Adjacency::window(2).displacements().size(), 25U);

  sf::Graph graph(3, 2);
  graph.insertEdge(1, 3, 7);
  EXPECT_EQ(graph.edges(3), (std::vector<sf::Graph::Edge>{{1, 7}}));
  graph.removeEdge(3, 1);
  EXPECT_TRUE(graph.edges(1).empty());
  EXPECT_THROW(graph.data(4), sf::Error);
}
