// Errors that a program survives: in a scope of ThrowingErrors every refusal is an exception whose
// text names the operation (or is the message that the operation has always had), and comes before
// any progress is told. What it leaves behind, the sanitizers see.
#include "base/error.h"

#include "graphs.h"
#include "ift/ift.h"
#include "image/image.h"

#include <functional>

namespace {

using seedforest::Error;
using seedforest::ThrowingErrors;

// What the calls below are given; images of 4 x 3 pixels unless their names say otherwise.
struct Things {
  imImagePtr grey = makeImage({{9, 1, 5, 5}, {1, 1, 0, 7}, {8, 1, 3, 2}}, imTypeGrey);
  imImagePtr mask = makeImage({{1, 0, 0, 1}, {1, 1, 1, 1}, {1, 1, 1, 0}});
  imImagePtr labels = makeImage({{1, 1, 2, 2}, {1, 3, 3, 2}, {0, 3, 3, 2}});
  imImagePtr shape = makeImage({{0, 0, 0, 0, 0, 0},
                                {0, 1, 1, 1, 1, 0},
                                {0, 1, 1, 1, 1, 0},
                                {0, 1, 1, 1, 1, 0},
                                {0, 0, 0, 0, 0, 0}});
  imImagePtr colour = blankLike(grey, 3, imTypeColor);
  imImagePtr bare = blankLike(grey, 0);
  imImagePtr out = blankLike(grey);
  imImagePtr forest = blankLike(grey, 5, imTypeWork);
  imImagePtr weights = imImagePtr(watershedWF(grey.get(), imNeighborhood4));
  imImagePtr small = blank(2, 2);
  imImagePtr row = blank(4, 1);
  imImagePtr ones = makeImage({{1, 1, 1, 1}});
  imImagePtr below = makeImage({{-1, -2, -1, -3}}); // all negative, as its maxValue is
  imImagePtr far = makeImage({{1, 5}});             // labels beyond its maxValue
  ifRootsPtr roots = makeRoots({{0, 1, 9}, {7, 2, 7}});
  ifRootsPtr outside = makeRoots({{12, 1, 0}});
  ifGraphPtr graph = withData({{0}, {3}, {9}, {4}}, {{1, 2, 5}, {2, 3, 7}});
  ifGraphPtr bareGraph = makeGraph(3, {{1, 2, 5}});
  ifGraphPtr unlabelled = ifGraphPtr(allocateGraph(3, 3));
  ifGraphPtr astray = makeGraph(3, {{1, 3, 5}}, 3); // an edge that leads nowhere
  ifGraphPtr tree = ifGraphPtr(iftPrimGraph(graph.get(), ifGraphEuclideanDistance));
  imImage *made = nullptr;
  imImage *made2 = nullptr;
  ifRoots set = {};
  ifRoots2 set2 = {};
  ufUnionFind sets = {};
  int count = 0;

  Things() {
    below->maxValue = -1;
    far->maxValue = 1;
    setLabelImage(graph.get(), imCopyImage(labels.get()));
    astray->vertices[2].edges = nullptr;
    insertDirectedEdge(astray.get(), 2, 1, 1);
    astray->vertices[2].edges->target = 77;
    ufStartUnionFind(&sets, 12, 0);
  }
  ~Things() { ufReleaseUnionFind(&sets); }
};

struct Refusal {
  const char *start; // of the error's text
  std::function<void()> call;
};

void expectErrors(const std::vector<Refusal> &refusals) {
  for (const auto &[start, call] : refusals) {
    SCOPED_TRACE(start);
    std::string notices;
    const ThrowingErrors throwing([&](seedforest::Notice, std::string_view t) { notices += t; });
    try {
      call();
      ADD_FAILURE() << "no error";
    } catch (const Error &error) {
      const std::string text = error.what();
      EXPECT_TRUE(text.starts_with(start)) << text;
      EXPECT_EQ(text.find('\n'), text.npos);
    }
    EXPECT_EQ(notices, "");
  }
}

TEST(Errors, OfImages) {
  Things t;
  const imImage *none = nullptr;
  float *histogram = nullptr;
  imImage *strange = t.small.get();
  strange->type = 77;
  expectErrors({
      {"could not open file no/file", [&] { imReadImage("no/file", &t.made); }},
      {"could not open file no/file", [&] { imSaveImage("no/file", t.grey.get()); }},
      {"Could not allocate image!", [&] { static_cast<void>(imCreateImage(1, 1, 0, 5)); }},
      {"imReadImage", [&] { imReadImage(nullptr, &t.made); }},
      {"imCopyBand", [&] { t.made = imCopyBand(t.grey.get(), 2, 1); }},
      {"imHistogram", [&] { imHistogram(t.below.get(), t.ones.get(), &histogram, &t.count); }},
      {"imHistogram", [&] { imHistogram(t.grey.get(), t.small.get(), &histogram, &t.count); }},
      {"imPrintWindow", [&] { imPrintWindow(stdout, t.grey.get(), 12, 1); }},
      {"imPgm2rgb", [&] { imPgm2rgb(t.grey.get(), t.grey.get()); }},
      {"imThreshold", [&] { t.made = imThreshold(none, 2, 0, 1); }},
      {"imNegative", [&] { t.made = imNegative(nullptr, 2); }},
      {"imMask", [&] { t.made = imMask(t.grey.get(), t.small.get(), 0); }},
      {"imBinaryUnion", [&] { t.made = imBinaryUnion(t.grey.get(), t.bare.get(), 1); }},
      {"imAddBorder", [&] { t.made = imAddBorder(t.grey.get(), -1); }},
      {"imRemoveBorder", [&] { t.made = imRemoveBorder(t.grey.get(), 2); }},
      {"imUpperEnvelope", [&] { t.made = imUpperEnvelope(t.grey.get(), t.small.get()); }},
      {"imCombineImageWithGrad", [&] { imCombineImageWithGrad(t.grey.get(), t.bare.get()); }},
      {"imMorphDilate", [&] { imMorphDilate(t.grey.get(), t.small.get(), 1); }},
      {"imMorphAsfOC", [&] { imMorphAsfOC(t.colour.get(), t.out.get(), 1); }},
      {"imMorphGrad", [&] { imMorphGrad(none, t.out.get()); }},
      {"imRgb2lab", [&] { imRgb2lab(t.colour.get(), t.out.get()); }},
      {"imShowSegm", [&] { t.made = imShowSegm(t.grey.get(), t.bare.get(), 0, 0, 0); }},
      {"imPaintCircles", [&] { t.made = imPaintCircles(t.bare.get()); }},
      {"imMorphWindow", [&] { t.count = imMorphWindow(nullptr, -1); }},
  });
}

TEST(Errors, OfGraphs) {
  Things t;
  const int cyclic[][2] = {{0, 1}, {2, 0}, {4, 5}, {5, 0}, {1, 0}}; // 0 does not always represent
  for (const auto &link : cyclic)
    ufLink(&t.sets, link[0], link[1]);
  ifGraph *g = t.graph.get();
  ifGraph *none = nullptr;
  expectErrors({
      {"createGraph", [&] { t.graph.reset(createGraph(nullptr, 0)); }},
      {"in createGraph", [&] { static_cast<void>(createGraph(t.grey.get(), -1)); }},
      {"in allocateGraph", [&] { static_cast<void>(allocateGraph(maxInt, 0)); }},
      {"copyBaseGraph", [&] { static_cast<void>(copyBaseGraph(none, 0)); }},
      {"copyBaseGraph: vertex 77", [&] { static_cast<void>(copyBaseGraph(t.astray.get(), 0)); }},
      {"setLabelImage", [&] { setLabelImage(none, nullptr); }},
      {"insertEdge: vertex 4", [&] { insertEdge(g, 1, 4, 1); }},
      {"removeEdge: vertex -1", [&] { removeEdge(g, -1, 1); }},
      {"insertDirectedEdge", [&] { insertDirectedEdge(none, 0, 1, 1); }},
      {"removeDirectedEdge", [&] { removeDirectedEdge(g, 4, 1); }},
      {"createList", [&] { static_cast<void>(createList(-1)); }},
      {"listInsertEdge", [&] { listInsertEdge(nullptr, 1, 1); }},
      {"listRemoveEdge", [&] { listRemoveEdge(nullptr, 1); }},
      {"listDestroy", [&] { listDestroy(nullptr); }},
      {"listGetAndWalk", [&] { listGetAndWalk(nullptr); }},
      {"graphPrint", [&] { graphPrint(none); }},
      {"Union/find was not allocated", [&] { ufStartUnionFind(nullptr, 1, 0); }},
      {"Could not allocate structure", [&] { ufStartUnionFind(&t.sets, -1, 0); }},
      {"ufReleaseUnionFind", [&] { ufReleaseUnionFind(nullptr); }},
      {"ufLink", [&] { ufLink(nullptr, 1, 2); }},
      {"ufLink: element 12", [&] { ufLink(&t.sets, 1, 12); }},
      {"ufFindSet", [&] { ufFindSet(nullptr, 1); }},
      {"ufFindSet: element -1", [&] { ufFindSet(&t.sets, -1); }},
      {"ufFindSet: the parents of element 2", [&] { ufFindSet(&t.sets, 2); }},
  });
}

TEST(Errors, OfTransformsLabelsAndSeeds) {
  Things t;
  const imImage *none = nullptr;
  imImage *grey = t.grey.get(), *out = t.out.get(), *small = t.small.get();
  const ifRoots *outside = t.outside.get();
  const auto eight = imNeighborhood8;
  const auto transform = [&](imImage *forest, int bound, const ifRoots *roots) {
    iftNonNormalized(grey, forest, eight, ifWatershedMetric, bound, ifPathCostMax, roots);
  };
  expectErrors({
      {"ifAllocateRoots", [&] { ifAllocateRoots(&t.set, -1); }},
      {"Could not open file no/file", [&] { t.roots.reset(ifReadRoots("no/file", grey)); }},
      {"Could not open file no/file", [&] { ifSaveRoots("no/file", grey, outside); }},
      {"ifSaveRoots2", [&] { ifSaveRoots2("x", grey, nullptr); }},
      {"ifVisualizeRoots", [&] { t.made = ifVisualizeRoots(grey, outside); }},
      {"euclideanWF", [&] { t.made = euclideanWF(t.bare.get(), eight); }},
      {"iftNonNormalized", [&] { transform(out, 9, t.roots.get()); }},
      {"iftNonNormalized: -1", [&] { transform(t.forest.get(), -1, t.roots.get()); }},
      {"iftNonNormalized: pixel 12", [&] { transform(t.forest.get(), 9, outside); }},
      {"iftNonNormalized: there is no roots", [&] { transform(t.forest.get(), 9, nullptr); }},
      {"ift: there is no adjacency",
       [&] {
         ift(grey, t.forest.get(), nullptr, ifWatershedMetric, ifPathCostMax, t.roots.get());
       }},
      {"ift: there is no path cost",
       [&] { ift(grey, t.forest.get(), eight, ifWatershedMetric, nullptr, t.roots.get()); }},
      {"iftWF: the arc-weight",
       [&] { iftWF(grey, t.forest.get(), grey, ifPathCostMax, t.roots.get()); }},
      {"iftMask",
       [&] {
         iftMask(grey, t.forest.get(), small, eight, ifWatershedMetric, ifPathCostMax,
                 t.roots.get());
       }},
      {"iftEuclideanDT", [&] { iftEuclideanDT(grey, t.forest.get(), eight, outside); }},
      {"ifExactDistance: pixel 12", [&] { ifExactDistance(grey, t.forest.get(), outside); }},
      {"ifExactDistance", [&] { ifExactDistance(grey, out, t.roots.get()); }},
      {"iftFuzzy",
       [&] {
         const int parameters[] = {0, 0};
         iftFuzzy(grey, out, out, eight, t.roots.get(), parameters, parameters, 1);
       }},
      {"iftFuzzyEdges: there is no image",
       [&] {
         const imImage *const weights[] = {nullptr, nullptr};
         iftFuzzyEdges(grey, out, out, eight, t.roots.get(), weights, 1);
       }},
      {"ifLabelImage", [&] { ifLabelImage(grey, small); }},
      {"ifConnectedComponents", [&] { ifConnectedComponents(grey, out, nullptr); }},
      {"ifConnectedComponents: pixel 12", [&] { ifConnectedComponents(grey, out, outside); }},
      {"ifCorrectLabels", [&] { ifCorrectLabels(t.bare.get()); }},
      {"ifRegionsToContours", [&] { ifRegionsToContours(grey, small); }},
      {"labelContours", [&] { labelContours(none, out); }},
      {"ifLabelDifferences", [&] { ifLabelDifferences(grey, out, small, 0); }},
      {"ifContourFollow", [&] { ifContourFollow(nullptr, &t.count, 1, out, grey, 0, nullptr); }},
      {"ifContourFollow", [&] { ifContourFollow(&t.set2, nullptr, 1, out, grey, 0, nullptr); }},
      {"ifContourFollow", [&] { ifContourFollow(&t.set2, &t.count, 1, out, grey, 0, nullptr); }},
      {"ifContourFollow: pixel 12",
       [&] { ifContourFollow(&t.set2, &t.count, 1, out, grey, 12, nullptr); }},
      {"ifFrameAsRoots", [&] { t.roots.reset(ifFrameAsRoots(t.row.get(), 0, 1)); }},
      {"ifLabelsToRoots", [&] { t.roots.reset(ifLabelsToRoots(t.bare.get())); }},
      {"ifDistTransfRoots", [&] { ifDistTransfRoots(grey, nullptr, 0); }},
      {"ifSkel2Roots", [&] { t.made = ifSkel2Roots(grey, nullptr); }},
      {"ifSkel2RootsSplit", [&] { ifSkel2RootsSplit(none, &t.set); }},
      {"ifRegionalMinima", [&] { t.made = ifRegionalMinima(none); }},
      {"ifRegionalMaxima: -1", [&] { t.made = ifRegionalMaxima(t.below.get()); }},
      {"ifRegionalMaximaAsRoots: -1",
       [&] { t.roots.reset(ifRegionalMaximaAsRoots(t.below.get())); }},
      {"ifCellsRoots", [&] { t.roots.reset(ifCellsRoots(t.colour.get(), 1)); }},
      {"ifCellsRoots", [&] { t.roots.reset(ifCellsRoots(grey, maxInt)); }},
  });
}

TEST(Errors, OfOperatorsAndRegions) {
  Things t;
  imImage *grey = t.grey.get(), *out = t.out.get(), *small = t.small.get(), *below = t.below.get();
  imImage **made = &t.made, **made2 = &t.made2;
  const ifRoots *roots = t.roots.get(), *outside = t.outside.get();
  ifGraph *none = nullptr, *bare = t.bareGraph.get(), *astray = t.astray.get();
  ifGraph *unlabelled = t.unlabelled.get();
  const auto drop = [](ifGraph *graph) { destroyGraph(&graph); };
  unlabelled->vertices[2].data[2] = 88;
  expectErrors({
      {"ifReconstr", [&] { ifReconstr(grey, nullptr, nullptr, 1, made, made2); }},
      {"ifReconstr: pixel 12", [&] { ifReconstr(grey, nullptr, outside, 1, made, made2); }},
      {"ifReconstr: -1", [&] { ifReconstr(below, nullptr, makeRoots({}).get(), 1, made, made2); }},
      {"ifDualReconstr", [&] { ifDualReconstr(grey, nullptr, roots, 1, made, made2); }},
      {"ifDualReconstr", [&] { ifDualReconstr(grey, grey, roots, 1, nullptr, made2); }},
      {"ifAreaOpen", [&] { ifAreaOpen(grey, made, nullptr, 2); }},
      {"ifAreaOpen: -1", [&] { ifAreaOpen(below, made, made2, 2); }},
      {"ifAreaOpenOld: -1", [&] { ifAreaOpenOld(below, made, made2, 2); }},
      {"ifAreaClose", [&] { ifAreaClose(grey, nullptr, made2, 2); }},
      {"ifLevel", [&] { ifLevel(grey, small, roots, made, made2); }},
      {"ifLevel: -1", [&] { ifLevel(t.row.get(), below, makeRoots({}).get(), made, made2); }},
      {"ifLevel2", [&] { ifLevel2(grey, t.colour.get(), made); }},
      {"ifLevel2", [&] { ifLevel2(grey, grey, nullptr); }},
      {"iftSkelNova", [&] { iftSkelNova(grey, t.forest.get(), nullptr); }},
      {"ifSkel", [&] { ifSkel(grey, 0, 1, nullptr); }},
      {"ifEuclideanShortestPath: pixel 12",
       [&] { t.roots.reset(ifEuclideanShortestPath(grey, 0, 12)); }},
      {"iftSkelReconstr", [&] { t.made = iftSkelReconstr(t.bare.get()); }},
      {"ifSkel", [&] { ifSkel(t.colour.get(), 0, 1, made); }},
      {"ifMosaicToGraph", [&] { drop(ifMosaicToGraph(t.far.get())); }},
      {"ifMorphoGradGraph", [&] { drop(ifMorphoGradGraph(none)); }},
      {"ifMorphoGradGraph: vertex 77", [&] { drop(ifMorphoGradGraph(astray)); }},
      {"ifColapseGraph: vertices without", [&] { drop(ifColapseGraph(bare)); }},
      {"ifColapseGraph: vertex -1",
       [&] {
         t.graph->vertices[3].data[0] = -1;
         drop(ifColapseGraph(t.graph.get()));
       }},
      {"ifGraphEuclideanDistance", [&] { ifGraphEuclideanDistance(bare, 0, 1); }},
      {"ifGraphMinDistance: vertex 9", [&] { ifGraphMinDistance(t.graph.get(), 0, 9); }},
      {"iftPrim", [&] { iftPrim(grey, small, imNeighborhood8, ifWatershedMetric); }},
      {"iftPrim: there is no arc weight",
       [&] { iftPrim(grey, t.forest.get(), imNeighborhood8, nullptr); }},
      {"iftPrimGraph: there is no weight", [&] { drop(iftPrimGraph(t.graph.get(), nullptr)); }},
      {"iftPrimWF", [&] { iftPrimWF(grey, t.forest.get(), grey); }},
      {"iftPrimGraph", [&] { drop(iftPrimGraph(bare, ifGraphMinDistance)); }},
      {"ifMstThreshold", [&] { ifMstThreshold(grey, out, 0.5); }},
      {"ifThresholdGraph", [&] { drop(ifThresholdGraph(bare, 0.5)); }},
      {"ifThresholdGraph", [&] { drop(ifThresholdGraph(unlabelled, 0.5)); }},
      {"ifThresholdGraph: vertex 88",
       [&] {
         setLabelImage(unlabelled, imCopyImage(t.labels.get()));
         drop(ifThresholdGraph(unlabelled, 0.5));
       }},
      {"ifThresholdMST: vertex 77", [&] { drop(ifThresholdMST(astray, 1)); }},
      {"ifThresholdMST: labels",
       [&] {
         bare->labelImage->band[0][0] = 9;
         drop(ifThresholdMST(bare, 1));
       }},
      {"ifThresholdMST_nRegions", [&] { drop(ifThresholdMST_nRegions(none, 2)); }},
      {"ifInitColorData", [&] { ifInitColorData(&t.sets, t.colour.get()); }},
      {"ifInitAreaData", [&] { ifInitAreaData(nullptr, grey); }},
      {"ifEdgeWeightArea", [&] { ifEdgeWeightArea(grey, &t.sets, 0, 1); }},
      {"ifUpdateColorData: elements with 1",
       [&] {
         ufReleaseUnionFind(&t.sets);
         ufStartUnionFind(&t.sets, 12, 1);
         t.sets.merge = ifUpdateColorData;
         ufLink(&t.sets, 0, 1);
       }},
      {"ifComputeArea: vertex 77", [&] { drop(ifComputeArea(astray)); }},
      {"ifComputeVolume", [&] { drop(ifComputeVolume(t.graph.get(), small)); }},
      {"ifAverageColor: labels", [&] { ifAverageColor(t.far.get(), t.far.get(), t.far.get()); }},
      {"ifCreateFeaturesVector", [&] { t.made = ifCreateFeaturesVector(nullptr); }},
      {"ifComputeAverageColors", [&] { drop(ifComputeAverageColors(t.graph.get(), small)); }},
      {"ifAverageColorsGraphToImage", [&] { t.made = ifAverageColorsGraphToImage(none, 2); }},
      {"ifCreateFeaturesGraph: vertex 77", [&] { drop(ifCreateFeaturesGraph(astray)); }},
  });
}

} // namespace
